#include "files/ShellLaunch.h"

#include "core/FileTypeCatalogue.h"
#include "core/MessageCatalogue.h"
#include "platform/Prompts.h"
#include "system/AssociationGroups.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace ShellLaunch {

int checkTarget(const QString &path)
{
    const QFileInfo info(path);
    if (!QFileInfo(info.absolutePath()).isDir())
        return 3;
    if (!info.exists())
        return 2;
    if (!info.isReadable())
        return 5;
    return Launched;
}

int resultOf(const LaunchExit &exit)
{
    if (!exit.started)
        return 27; // no xdg-open: the desktop cannot open anything
    if (exit.crashed)
        return 1;
    // xdg-open: 2 a file does not exist, 3 a tool it needs is missing,
    // 4 the action failed, which is what it says for a type without program.
    switch (exit.exitCode) {
    case 0: return Launched;
    case 2: return 2;
    case 3: return 27;
    case 4: return 31;
    default: return 1;
    }
}

QString errorText(int result, const MessageCatalogue &messages)
{
    switch (result) {
    case 2: return messages.GetMsg(1101, QStringLiteral("File not found"));
    case 3: return messages.GetMsg(1102, QStringLiteral("Path not found"));
    case 5: return messages.GetMsg(1103, QStringLiteral("Access denied"));
    case 8: return messages.GetMsg(1104, QStringLiteral("Out of memory"));
    case 11: return messages.GetMsg(1112, QStringLiteral("Invalid EXE file or error in EXE image"));
    case 26: return messages.GetMsg(1106, QStringLiteral("A sharing violation occurred"));
    case 27: return messages.GetMsg(1107, QStringLiteral("Incomplete or invalid file association"));
    case 28: return messages.GetMsg(1108, QStringLiteral("DDE Time out"));
    case 29: return messages.GetMsg(1109, QStringLiteral("DDE transaction failed"));
    case 30: return messages.GetMsg(1110, QStringLiteral("DDE busy"));
    case 31: return messages.GetMsg(1111, QStringLiteral("No association for file extension"));
    default:
        if (result >= 1 && result <= 31)
            return messages.GetMsg(1113, QStringLiteral("Unknown error"));
        return {};
    }
}

void OpenWithShell(const QString &target, Launcher &launcher, Prompts &prompts, const MessageCatalogue &messages)
{
    const QString what = target.isEmpty() ? HomePage : target;
    auto report = [&prompts, &messages](int result) {
        const QString text = errorText(result, messages);
        if (!text.isEmpty())
            prompts.ask({text, PromptButtons::Ok, PromptIcon::None, 1, QStringLiteral("Vimora")});
    };
    if (!what.contains(QStringLiteral("://"))) {
        if (const int result = checkTarget(what); result != Launched) {
            report(result);
            return;
        }
    }
    // The prompts and messages outlive every launch: main keeps them to the end.
    launcher.startWatched(QStringLiteral("xdg-open"), {what}, [report](const LaunchExit &exit) {
        report(resultOf(exit));
    });
}

QString findProgram(const QString &name)
{
    return QStandardPaths::findExecutable(name);
}

void shellOpen(const QString &path, Launcher &launcher)
{
    launcher.openWithDefault(path);
}

QString editorFor(const QString &path, const FindProgram &find)
{
    static const QStringList pictureEditors{"gimp", "krita", "pinta", "kolourpaint", "mtpaint"};
    static const QStringList movieEditors{"shotcut", "kdenlive", "openshot-qt", "pitivi", "avidemux3_qt5"};
    const QString code = FileTypeCatalogue::normalisedTypeCode(FileTypeCatalogue::extensionOf(path));
    const FileTypeCatalogue::MediaClass media = FileTypeCatalogue::mediaClassOf(code);
    if (media == FileTypeCatalogue::MediaClass::Slides)
        return {};
    for (const QString &editor : media == FileTypeCatalogue::MediaClass::Movie ? movieEditors : pictureEditors)
        if (const QString program = find(editor); !program.isEmpty())
            return program;
    return {};
}

void shellEdit(const QString &path, Launcher &launcher, const FindProgram &find)
{
    const QString editor = editorFor(path, find);
    if (editor.isEmpty())
        launcher.openWithDefault(path);
    else
        launcher.start(editor, {path});
}

LaunchResult explore(const QString &folder, Launcher &launcher)
{
    return launcher.openWithDefault(folder);
}

bool indexShellOpen(const QString &path, const QSet<QString> &linked, Launcher &launcher)
{
    if (!AssociationGroups::shellOpenAvailable(AssociationGroups::typeTextOfPath(path), linked))
        return false;
    shellOpen(path, launcher);
    return true;
}

} // namespace ShellLaunch
