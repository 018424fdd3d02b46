#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
#include "platform/ColourManagement.h"
#include "platform/DataFolder.h"
#include "platform/Launcher.h"
#include "platform/Prompts.h"
#include "platform/ScreenProfile.h"
#include "viewer/StartupRules.h"
#include "viewer/frmMain.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QScreen>

#include <clocale>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vimora"));
    QApplication::setApplicationVersion(QStringLiteral(VIMORA_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("vimora"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("vimora")));
    std::setlocale(LC_NUMERIC, "C"); // libmpv refuses to start otherwise

    IniSettingsStore settings;
    MessageCatalogue messages;
    AppState state(settings, messages);
    state.ProgramFolder = DataFolder::locate(QCoreApplication::applicationDirPath());
    if (QApplication::windowIcon().isNull())
        QApplication::setWindowIcon(QIcon(state.ProgramFolder + QStringLiteral("hicolor/scalable/vimora.svg")));

    // Pictures are shown in the colours of the primary screen.
    const QScreen *screen = QGuiApplication::primaryScreen();
    ColourManagement::setDisplayColourSpace(
        ColourManagement::screenColourSpace(ScreenProfile::read(0, screen ? screen->name() : QString())));

    QtPrompts prompts;
    ProcessLauncher launcher;
    ViewerContext context(messages);
    frmMain window(state, context, prompts, launcher);

    // The command line is one file path, taken whole: a path with blanks
    // arrives split into several arguments and is joined again.
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const QString commandLine = StartupRules::absoluteCommandLine(arguments.join(QLatin1Char(' ')), QDir::currentPath());
    window.Form_Load(StartupRules::folderOpenedWhole(commandLine, QFileInfo(commandLine).isDir()));
    return QApplication::exec();
}
