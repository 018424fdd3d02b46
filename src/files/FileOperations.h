#pragma once

#include "files/FileCopy.h"
#include "platform/Prompts.h"

#include <QString>
#include <QStringList>

#include <functional>

class MessageCatalogue;

// An error of a file primitive: its number and where it was raised.
struct FileError {
    int number = 0;
    QString source;
};

inline constexpr int CopySourceMissing = 3013;
inline constexpr int RenameSourceMissing = 3001;

// Declined: the user answered No to a question; Refused: the primitive
// would not start (missing source, name in use).
enum class FileOutcome { Done, Declined, Cancelled, Refused, Failed };

struct FileResult {
    FileOutcome outcome = FileOutcome::Failed;
    FileError error;
    bool done() const { return outcome == FileOutcome::Done; }
};

// What the primitives need from the window that calls them.
struct FileContext {
    Prompts &prompts;
    const MessageCatalogue &messages;
    // Lets every movie player that holds the path let go of it.
    std::function<void(const QString &path)> releasePlayers;
    CopyHooks copy;
};

// Copies the source into the destination folder (an existing folder, or a
// path ending in a separator) or onto the destination path. An existing
// target is replaced only after the replace question; failures are shown.
FileResult CopyThisFile(const QString &source, const QString &destination, const FileContext &context);

// Renames within or across folders and file systems. An existing other
// file of the new name is never replaced: the user is told and nothing
// happens.
FileResult RenameThisFile(const QString &oldPath, const QString &newPath, const FileContext &context);

// Results of RecycleFiles besides 0 (all went to the Trash).
inline constexpr int RecycleCancelled = 1223; // the code the desktop shell gives for "cancelled by the user"
inline constexpr int RecycleFailed = 1;

// One confirmation for the whole list, then every path to the freedesktop
// Trash. Players are not released here: callers release each path first.
// inTrash, when given, gets for each path where it went in the Trash ("" for
// a file that did not go).
int RecycleFiles(const QStringList &paths, const FileContext &context, QStringList *inTrash = nullptr);

// Asks for a folder and moves the file there after the replace question.
// Returns the new path after a move, else the path unchanged (also when
// the move failed, which is shown to the user).
QString MoveFileToFolder(const QString &path, const FileContext &context);

// Moves onto the target without asking, replacing it: a rename, or across
// file systems a copy that is flushed and checked before the source goes.
FileResult MoveFileTo(const QString &path, const QString &target, const FileContext &context);

// "file : <target>", two line breaks, "ALREADY EXISTING ... REPLACE ?",
// question icon, No (the second button) as default.
PromptAnswer AskReplace(const QString &target, PromptButtons buttons, const FileContext &context);

// "File Not Found !", two line breaks and the path, critical icon.
void ReportMissingFile(const QString &path, const FileContext &context, int defaultButton = 1);

// Whether both paths lead to the same file (hard links and letter case on
// case-blind file systems included).
bool IsSameFile(const QString &a, const QString &b);

// Renames within one file system, never over an existing file, in one step
// (no check then rename). False with errno set: EEXIST when the name is taken.
bool RenameWithoutReplacing(const QString &from, const QString &to);
