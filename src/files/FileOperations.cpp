#include "files/FileOperations.h"

#include "core/MessageCatalogue.h"
#include "files/FilePaths.h"
#include "platform/DataFolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QString LineBreaks = QStringLiteral("\r\n\r\n");

QString systemError(int error) { return QString::fromLocal8Bit(std::strerror(error)); }

void reportFailure(const FileContext &context, int number, const char *english, const QString &path,
                   const QString &why)
{
    QString text = context.messages.GetMsg(number, QString::fromUtf8(english)) + LineBreaks + path;
    if (!why.isEmpty())
        text += LineBreaks + why;
    context.prompts.inform(text, PromptIcon::Critical);
}

QString incompleteText(const FileContext &context)
{
    return context.messages.GetMsg(20608,
                                   QStringLiteral("The copy is not complete: the source changed or the disk failed."));
}

// The copy part of a copy or a move; true when the target is complete.
FileResult copyOnto(const QString &source, const QString &target, const FileContext &context, int failureNumber,
                    const char *failureText)
{
    const CopyBytesResult copied = copyFileBytes(source, target, context.copy);
    switch (copied.status) {
    case CopyStatus::Copied:
        return {FileOutcome::Done, {}};
    case CopyStatus::Cancelled:
        return {FileOutcome::Cancelled, {}};
    case CopyStatus::Incomplete:
        reportFailure(context, failureNumber, failureText, target, incompleteText(context));
        break;
    case CopyStatus::Failed:
        reportFailure(context, failureNumber, failureText, target, copied.error);
        break;
    }
    return {FileOutcome::Failed, {}};
}

} // namespace

bool IsSameFile(const QString &a, const QString &b)
{
    struct stat first {}, second {};
    if (::stat(QFile::encodeName(a).constData(), &first) != 0
        || ::stat(QFile::encodeName(b).constData(), &second) != 0)
        return false;
    return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

PromptAnswer AskReplace(const QString &target, PromptButtons buttons, const FileContext &context)
{
    const QString text = QStringLiteral("file : ") + target + LineBreaks
                       + context.messages.GetMsg(1020, QStringLiteral("ALREADY EXISTING ... REPLACE ?"));
    return context.prompts.ask({text, buttons, PromptIcon::Question, 2});
}

void ReportMissingFile(const QString &path, const FileContext &context, int defaultButton)
{
    context.prompts.ask({context.messages.GetMsg(1022, QStringLiteral("File Not Found !")) + LineBreaks + path,
                         PromptButtons::Ok, PromptIcon::Critical, defaultButton});
}

FileResult CopyThisFile(const QString &source, const QString &destination, const FileContext &context)
{
    if (!IsExistingFile(source))
        return {FileOutcome::Refused, {CopySourceMissing, QStringLiteral("FileOperations::CopyThisFile")}};
    QCoreApplication::processEvents();

    const bool intoFolder = QFileInfo(destination).isDir() || destination.endsWith(QLatin1Char('/'))
                         || destination.endsWith(QLatin1Char('\\'));
    const QString target = intoFolder ? PathInFolder(destination, QFileInfo(source).fileName()) : destination;
    if (IsSameFile(source, target))
        return {FileOutcome::Declined, {}}; // a file copied onto itself: nothing to do
    if (QFileInfo(target).isDir()) {
        reportFailure(context, 20601, "The file could not be copied:", target, {});
        return {FileOutcome::Failed, {}};
    }
    if (QFileInfo::exists(target) && AskReplace(target, PromptButtons::YesNo, context) != PromptAnswer::Yes)
        return {FileOutcome::Declined, {}};
    return copyOnto(source, target, context, 20601, "The file could not be copied:");
}

FileResult MoveFileTo(const QString &path, const QString &target, const FileContext &context)
{
    if (std::rename(QFile::encodeName(path).constData(), QFile::encodeName(target).constData()) == 0)
        return {FileOutcome::Done, {}};
    if (errno != EXDEV) {
        reportFailure(context, 20607, "The file could not be moved:", path, systemError(errno));
        return {FileOutcome::Failed, {}};
    }
    // Another file system: the source goes only once the copy is whole.
    const FileResult copied = copyOnto(path, target, context, 20607, "The file could not be moved:");
    if (!copied.done())
        return copied;
    if (!QFile::remove(path)) {
        reportFailure(context, 20609, "The file was copied but the original could not be removed:", path, {});
        return {FileOutcome::Failed, {}};
    }
    return {FileOutcome::Done, {}};
}

bool RenameWithoutReplacing(const QString &from, const QString &to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // A file system without it: a hard link also fails on a taken name.
    if (::link(source.constData(), target.constData()) != 0)
        return false;
    if (::unlink(source.constData()) != 0) {
        const int error = errno;
        ::unlink(target.constData());
        errno = error;
        return false;
    }
    return true;
}

FileResult RenameThisFile(const QString &oldPath, const QString &newPath, const FileContext &context)
{
    if (!IsExistingFile(oldPath))
        return {FileOutcome::Refused, {RenameSourceMissing, QStringLiteral("FileOperation::RenameThisFile")}};
    if (oldPath == newPath)
        return {FileOutcome::Declined, {}};
    // Another file of that name is never replaced; the same file under
    // other letters (a case-blind file system) may be renamed.
    const QFileInfo target(newPath);
    const bool sameFile = IsSameFile(oldPath, newPath);
    if ((target.exists() || target.isSymLink()) && !sameFile) {
        reportFailure(context, 20602, "A file with this name already exists:", newPath, {});
        return {FileOutcome::Refused, {}};
    }
    if (sameFile)
        return MoveFileTo(oldPath, newPath, context);
    // The check above tells the user; this keeps a file that takes the name
    // meanwhile from being replaced.
    if (RenameWithoutReplacing(oldPath, newPath))
        return {FileOutcome::Done, {}};
    if (errno == EEXIST) {
        reportFailure(context, 20602, "A file with this name already exists:", newPath, {});
        return {FileOutcome::Refused, {}};
    }
    return MoveFileTo(oldPath, newPath, context); // another file system, or a fault it reports
}

int RecycleFiles(const QStringList &paths, const FileContext &context, QStringList *inTrash)
{
    if (paths.isEmpty())
        return 0;
    const QString question = paths.size() == 1
        ? context.messages.GetMsg(20604, QStringLiteral("Move this file to the Trash?")) + LineBreaks + paths.first()
        : context.messages.GetMsg(20605, QStringLiteral("Move these %1 files to the Trash?")).arg(paths.size());
    if (context.prompts.confirm(question) != PromptAnswer::Yes)
        return RecycleCancelled;

    DataFolder::userDataFolder(); // without $XDG_DATA_HOME, Qt makes a Trash in the working folder
    QStringList failed;
    for (const QString &path : paths) {
        QString trashed;
        if (!QFile::moveToTrash(path, &trashed))
            failed.append(path);
        if (inTrash)
            inTrash->append(trashed);
    }
    if (failed.isEmpty())
        return 0;
    reportFailure(context, 20606, "These files could not be moved to the Trash:", failed.join(QLatin1Char('\n')), {});
    return RecycleFailed;
}

QString MoveFileToFolder(const QString &path, const FileContext &context)
{
    const QString title =
        context.messages.GetMsg(388, QStringLiteral("Choose the folder where MOVE the file")) + QLatin1Char(' ') + path;
    const QString folder = context.prompts.chooseFolder(title, QFileInfo(path).absolutePath());
    if (folder.isEmpty())
        return path;
    const QString target = PathInFolder(folder, QFileInfo(path).fileName());
    if (SamePathIgnoringCase(target, path) || IsSameFile(target, path))
        return path;
    if (QFileInfo::exists(target) && AskReplace(target, PromptButtons::YesNo, context) != PromptAnswer::Yes)
        return path;
    if (context.releasePlayers)
        context.releasePlayers(path);
    QCoreApplication::processEvents();
    const FileResult moved = MoveFileTo(path, target, context);
    QCoreApplication::processEvents();
    return moved.done() ? target : path;
}
