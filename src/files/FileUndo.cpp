#include "files/FileUndo.h"

#include "files/TrashInfo.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

namespace {

constexpr qsizetype KeptRecords = 100;

bool taken(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

enum class PutBack { Done, Kept, Failed };

PutBack putBackOne(const QString &from, const QString &to, const FileContext &context)
{
    if (!taken(from)) {
        ReportMissingFile(from, context);
        return PutBack::Failed;
    }
    if (context.releasePlayers)
        context.releasePlayers(from);
    QDir().mkpath(QFileInfo(to).absolutePath()); // its folder may have gone since, as a file manager's restore allows
    if (!taken(to)) {
        if (RenameWithoutReplacing(from, to))
            return PutBack::Done;
        if (errno != EEXIST)
            return MoveFileTo(from, to, context).done() ? PutBack::Done : PutBack::Failed; // another file system
    }
    // Another file has taken the name meanwhile: it goes only if the user says so.
    if (!IsSameFile(from, to) && AskReplace(to, PromptButtons::YesNo, context) != PromptAnswer::Yes)
        return PutBack::Kept;
    return MoveFileTo(from, to, context).done() ? PutBack::Done : PutBack::Failed;
}

} // namespace

namespace FileUndo {

QString putBackPathOf(const ChoreStep &step)
{
    QFile note(TrashInfo::notePathOf(step.now));
    if (note.open(QIODevice::ReadOnly)) {
        const QString named = TrashInfo::originalPath(note.read(64 * 1024), TrashInfo::topFolderOf(step.now));
        if (!named.isEmpty())
            return named;
    }
    return step.original;
}

Result undo(const UndoRecord &record, const FileContext &context)
{
    Result result;
    for (auto step = record.steps.crbegin(); step != record.steps.crend(); ++step) {
        const bool fromTrash = record.kind == ChoreKind::Trash;
        const QString to = fromTrash ? putBackPathOf(*step) : step->original;
        switch (putBackOne(step->now, to, context)) {
        case PutBack::Done:
            if (fromTrash)
                QFile::remove(TrashInfo::notePathOf(step->now));
            result.putBack.prepend({to, step->now, step->favourite});
            break;
        case PutBack::Kept:
            result.kept.prepend(*step);
            break;
        case PutBack::Failed:
            break;
        }
    }
    return result;
}

} // namespace FileUndo

void UndoHistory::record(UndoRecord record)
{
    if (record.steps.isEmpty())
        return;
    m_records.append(std::move(record));
    if (m_records.size() > KeptRecords)
        m_records.removeFirst();
}
