#include "files/Favourites.h"

#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
#include "files/FilePaths.h"
#include "core/FileSizeText.h"

#include <QFileInfo>

namespace Favourites {

QStringList load(const SettingsStore &settings)
{
    QStringList entries;
    for (int i = 0;; ++i) {
        const QString path = settings.read(Section, QString::number(i));
        if (path.isEmpty())
            return entries;
        entries.append(path);
    }
}

void save(SettingsStore &settings, const QStringList &entries, int storedCount)
{
    for (int i = 0; i <= storedCount; ++i)
        settings.deleteKey(Section, QString::number(i));
    for (int i = 0; i < entries.size(); ++i)
        settings.write(Section, QString::number(i), entries.at(i));
}

int find(const QStringList &entries, const QString &path)
{
    for (int i = 0; i < entries.size(); ++i)
        if (SamePathIgnoringCase(entries.at(i), path))
            return i;
    return -1;
}

QString selectionSizeText(const QStringList &paths, const MessageCatalogue &messages)
{
    double total = 0;
    for (const QString &path : paths) {
        const QFileInfo info(path);
        if (info.isFile())
            total += double(info.size());
    }
    if (total == 0)
        return {};
    return messages.GetMsg(50, QStringLiteral("Size of selected files :")) + QLatin1Char(' ')
         + sizeTextPrecise(total, messages.GetMsg(100, QStringLiteral("bytes")));
}

bool askRemoveMissing(const QString &path, const FileContext &context)
{
    ReportMissingFile(path, context);
    const QString offer =
        context.messages.GetMsg(1026, QStringLiteral("Remove from list ?")) + QStringLiteral("\r\n\r\n") + path;
    return context.prompts.confirm(offer) == PromptAnswer::Yes;
}

namespace {
// True when the file is there; else the missing-file questions were asked.
bool presentOrOffered(const QString &path, const FileContext &context, BatchResult &result)
{
    if (IsExistingFile(path))
        return true;
    if (askRemoveMissing(path, context))
        result.removed.append(path);
    return false;
}
} // namespace

BatchResult copyEntries(const QStringList &selected, const QString &folder, const FileContext &context)
{
    BatchResult result;
    for (const QString &path : selected) {
        if (!presentOrOffered(path, context, result))
            continue;
        if (CopyThisFile(path, folder, context).outcome == FileOutcome::Cancelled) {
            result.cancelled = true;
            break;
        }
    }
    return result;
}

BatchResult moveEntries(const QStringList &selected, const QString &folder, const FileContext &context)
{
    BatchResult result;
    for (const QString &path : selected) {
        if (!presentOrOffered(path, context, result))
            continue;
        const QString target = PathInFolder(folder, QFileInfo(path).fileName());
        if (IsSameFile(path, target))
            continue;
        if (QFileInfo::exists(target)) {
            const PromptAnswer answer = AskReplace(target, PromptButtons::YesNoCancel, context);
            if (answer == PromptAnswer::Cancel) {
                result.cancelled = true;
                break;
            }
            if (answer != PromptAnswer::Yes)
                continue;
        }
        if (context.releasePlayers)
            context.releasePlayers(path);
        const FileResult moved = MoveFileTo(path, target, context);
        if (moved.outcome == FileOutcome::Cancelled) {
            result.cancelled = true;
            break;
        }
        if (moved.done()) {
            result.moved.append({path, target});
            result.gone.append(path);
        }
    }
    return result;
}

BatchResult deleteEntries(const QStringList &selected, const FileContext &context)
{
    BatchResult result;
    QStringList request;
    for (const QString &path : selected) {
        if (!presentOrOffered(path, context, result))
            continue;
        if (context.releasePlayers)
            context.releasePlayers(path);
        request.append(path);
    }
    QStringList inTrash;
    if (RecycleFiles(request, context, &inTrash) == RecycleCancelled) {
        result.cancelled = true; // a file gone meanwhile stays listed: the user said no
        return result;
    }
    for (qsizetype i = 0; i < request.size(); ++i) {
        const QString &path = request[i];
        if (!QFileInfo::exists(path)) {
            result.removed.append(path);
            result.gone.append(path);
            if (!inTrash.value(i).isEmpty())
                result.trashed.append({path, inTrash.value(i)});
        }
    }
    return result;
}

} // namespace Favourites
