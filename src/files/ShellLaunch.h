#pragma once

#include "platform/Launcher.h"

#include <QSet>
#include <QString>

#include <functional>

class MessageCatalogue;
class Prompts;

// Handing a file, a folder or the home page to the desktop's programs. The
// results are the launch result codes the error texts are numbered by:
// above 32 for success, 1 to 31 for a failure to report.
namespace ShellLaunch {

inline const QString HomePage = QStringLiteral("https://vimora.org/");
constexpr int Launched = 33;

// Local reasons a file cannot be opened, found before anything is started:
// 2 file not found, 3 folder not found, 5 access denied; Launched otherwise.
int checkTarget(const QString &path);
// How xdg-open ended, as a result code.
int resultOf(const LaunchExit &exit);
// The text of a result code, empty for codes that are not reported.
QString errorText(int result, const MessageCatalogue &messages);

// Opens the target (the home page when empty) and reports a failure in a
// message box; the report comes when xdg-open has ended.
void OpenWithShell(const QString &target, Launcher &launcher, Prompts &prompts, const MessageCatalogue &messages);

using FindProgram = std::function<QString(const QString &)>;
QString findProgram(const QString &name); // on PATH, "" when missing

// "open" and "edit" of a file and "Explore" of a folder report nothing.
void shellOpen(const QString &path, Launcher &launcher);
// The desktop has no "edit" verb: the first editor found for pictures or
// movies, or the default program when there is none.
QString editorFor(const QString &path, const FindProgram &find);
void shellEdit(const QString &path, Launcher &launcher, const FindProgram &find = findProgram);
LaunchResult explore(const QString &folder, Launcher &launcher);

// The thumbnail index's "Shell Open": nothing for a type linked to Vimora,
// which would only come back here. True when something was started.
bool indexShellOpen(const QString &path, const QSet<QString> &linked, Launcher &launcher);

} // namespace ShellLaunch
