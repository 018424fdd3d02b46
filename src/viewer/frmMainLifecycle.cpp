#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/FormTexts.h"
#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
#include "display/FilterItemDelegate.h"
#include "platform/Drives.h"
#include "platform/LanguageChoice.h"
#include "platform/MoviePlayer.h"
#include "system/AssociationGroups.h"
#include "viewer/StartupRules.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>

namespace {
const QString UserDef = QStringLiteral("UserDef");
}

void frmMain::Form_Load(const QString &commandLine)
{
    SettingsStore &settings = m_state.settings;
    MessageCatalogue &messages = m_state.messages;
    const QString programFolder = StartupRules::withoutTrailingSlash(m_state.ProgramFolder);

    setWindowTitle(QStringLiteral(" Vimora"));

    QString language = settings.read(UserDef, QStringLiteral("Language"));
    messages.setLanguageCode(language);
    if (language.isEmpty())
        ChooseLanguage(m_state, m_prompts);
    m_state.HelpFilePath = helpFilePath(m_state.ProgramFolder, messages.languageCode());
    messages.setMessageFilePath(m_state.ProgramFolder + QStringLiteral("PRMSG"));
    FormTexts::ApplyCaptions(this, messages);

    setWaitCursor(true);
    fillTypeFilterList();

    const bool withFile = !commandLine.isEmpty();
    if (!withFile) {
        const QString stored = settings.read(UserDef, QStringLiteral("Path"), programFolder);
        settings.deleteKey(UserDef, QStringLiteral("Path"));
        settings.flush(); // on disk now, so that a crash leaves no folder to return to
        const QList<Drive> drives = m_listDrives();
        m_context.setFolder(StartupRules::startFolder(stored, m_state.ProgramFolder,
                                                          Testa_CDRom(stored, drives), isNetworkPath(stored, drives)));
    } else {
        const StartupRules::CommandLineFile file = StartupRules::splitCommandLine(commandLine);
        m_context.setCurrentFileName(file.name);
        m_context.setFolder(file.folder);
    }

    ChkCicle->setChecked(false);
    m_state.SlideSeconds = StartupRules::slideSecondsFromStore(settings.readInt(UserDef, QStringLiteral("xTime"), 5));
    txtTime->setText(QString::number(m_state.SlideSeconds));

    m_state.ShowTooltips = settings.readBool(UserDef, QStringLiteral("SWTIPS"), true);
    FormTexts::ApplyTooltips(this, messages, m_state.ShowTooltips);

    if (m_context.CurrentFolder().compare(programFolder, Qt::CaseInsensitive) != 0
        && !QDir::setCurrent(m_context.CurrentFolder()))
        m_context.setFolder(programFolder);

    Carica_URL();
    setPathBoxText(m_context.CurrentFolder());
    cmdAbout->setText(messages.GetMsg(311, QStringLiteral("A&bout")));
    cmdAbout->setAccessibleName(cmdAbout->text().remove(QLatin1Char('&')));

    m_state.SaveFolder = settings.read(UserDef, QStringLiteral("savDir"), m_context.CurrentFolder());
    m_state.AnimateGifs = settings.readBool(UserDef, QStringLiteral("swAnim"), true);
    chkAnim->setChecked(m_state.AnimateGifs);

    Option1[1]->setChecked(true);

    fillDrives();
    m_browserReady = false;
    setDir1Path(m_context.CurrentFolder());
    QCoreApplication::processEvents();
    layoutStatusRow();

    show();

    m_context.setTypeFilter(QStringLiteral("ALLSUP"), 0);

    if (withFile) {
        ChkAuto->setChecked(true);
        m_state.AutoPlayMovies = true;
        m_browserReady = false;
        CboType->setCurrentIndex(0);
        m_browserReady = true;
        const QString target = m_context.CurrentFolder();
        m_context.setFolder(QString()); // so that the folder counts as changed
        if (dir1Path() == target)
            Dir1_Change();
        else
            setDir1Path(target);
    } else {
        m_browserReady = false;
        setDir1Path(m_context.CurrentFolder());
        m_browserReady = true;
        CboType->setCurrentIndex(m_context.TypeFilterIndex());
        CboType_Click();
    }

    QCoreApplication::processEvents();
    if (m_context.listIsEmpty()) {
        cmdAdd->setEnabled(false);
        if (m_context.TypeFilterCode() != u"*")
            CboType->setCurrentIndex(0);
    } else {
        cmdAdd->setEnabled(true);
    }

    setWaitCursor(false);

    m_browserReady = false;
    if (ChkCicle->isChecked())
        m_state.SlideshowOn = true;
    HScroll1->setValue(m_state.SlideSeconds);
    txtTime->setText(QString::number(m_state.SlideSeconds));
    m_browserReady = true;

    m_state.LinkedTypes = AssociationGroups::readLinked(settings);
    cmdLink->setEnabled(true);
}

QString frmMain::typeFilterText() const { return CboType->currentData().toString(); }

void frmMain::fillTypeFilterList()
{
    const MessageCatalogue &messages = m_state.messages;
    FileTypeCatalogue::GroupLabels labels;
    labels.allSupported = messages.GetMsg(381, labels.allSupported);
    labels.images = messages.GetMsg(386, labels.images);
    labels.movies = messages.GetMsg(387, labels.movies);
    labels.allFiles = messages.GetMsg(382, labels.allFiles);
    const bool ready = m_browserReady;
    const int selected = qMax(0, CboType->currentIndex());
    const bool lastWasSelected = m_lastTypeText == typeFilterText();
    m_browserReady = false;
    CboType->clear();
    // The box shows and a screen reader reads the label; the code and
    // patterns after it are the filter's own.
    for (const QString &item : FileTypeCatalogue::typeFilterItems(labels))
        CboType->addItem(FilterItemDelegate::visibleLabel(item), item);
    CboType->setCurrentIndex(selected);
    if (lastWasSelected && !m_lastTypeText.isEmpty())
        m_lastTypeText = typeFilterText(); // same filter, other language: no reload
    m_browserReady = ready;
    m_state.OpenFileFilter = FileTypeCatalogue::openFileFilter(labels);
}

void frmMain::Form_Unload()
{
    if (m_unloaded)
        return;
    m_unloaded = true;
    stopIndexPage();
    m_context.cancelListing();
    m_context.clearList();
    QCoreApplication::processEvents();
    unloadIndex();

    if (!MediaPlayer1->FileName().isEmpty()) {
        MediaPlayer1->Stop();
        MediaPlayer1->hide();
        MediaPlayer1->setFileName(QString());
    }
    QCoreApplication::processEvents();
    SaveFavourites();
    SaveUserSettings();
}

void frmMain::SaveUserSettings()
{
    SettingsStore &settings = m_state.settings;
    QCoreApplication::processEvents();

    settings.write(UserDef, QStringLiteral("xTime"), QString::number(m_state.SlideSeconds));
    settings.write(UserDef, QStringLiteral("Path"), m_context.CurrentFolder());
    settings.write(UserDef, QStringLiteral("iTyp"), QString::number(m_context.TypeFilterIndex()));
    settings.write(UserDef, QStringLiteral("cicle"), SettingsText::fromCheckState(ChkCicle->isChecked()));
    settings.write(UserDef, QStringLiteral("savDir"), m_state.SaveFolder);
    settings.write(UserDef, QStringLiteral("frmMainLeft"), QString::number(qRound(m_twips.fromPixelsX(x()))));
    settings.write(UserDef, QStringLiteral("frmMainTop"), QString::number(qRound(m_twips.fromPixelsY(y()))));
    settings.write(UserDef, QStringLiteral("opt1i0"), SettingsText::fromOption(fitsWindow()));
    settings.write(UserDef, QStringLiteral("swAnim"), SettingsText::fromBool(m_state.AnimateGifs));
    settings.flush();

    m_state.ProgramClosing = true;
    QCoreApplication::processEvents();
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window != this && window->isVisible())
            window->close();
}
