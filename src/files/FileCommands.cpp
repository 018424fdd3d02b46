#include "files/FileCommands.h"

#include "core/AppState.h"
#include "files/FilePaths.h"
#include "files/TechRen.h"
#include "files/frmMessage.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace FileCommands {

QString renameFile(const QString &path, const QString &typed, const FileContext &context)
{
    if (typed.isEmpty() || !IsExistingFile(path))
        return {};
    const QString target = RenameTargetOf(path, typed);
    if (context.releasePlayers)
        context.releasePlayers(path);
    QCoreApplication::processEvents();
    const bool renamed = RenameThisFile(path, target, context).done();
    QCoreApplication::processEvents();
    return renamed ? target : QString();
}

bool deleteFile(const QString &path, const FileContext &context, QString *inTrash)
{
    if (!IsExistingFile(path))
        return false;
    if (context.releasePlayers)
        context.releasePlayers(path);
    QStringList trashed;
    RecycleFiles({path}, context, &trashed);
    QCoreApplication::processEvents();
    if (inTrash)
        *inTrash = trashed.value(0);
    return !QFileInfo::exists(path);
}

frmMessage *showInfo(QWidget *parent, const AppState &state, const FileContext &context, const QString &path,
                     const QString &detail, const QString &typeCode, bool secondButtonDefault)
{
    if (!IsExistingFile(path)) {
        ReportMissingFile(path, context, secondButtonDefault ? 2 : 1);
        return nullptr;
    }
    return ShowFileInfo(parent, state.ProgramFolder, context.messages, path, detail, typeCode);
}

int cellShowing(const QStringList &cellPlayerFiles, const QStringList &cellPictureTags, const QString &path)
{
    if (path.isEmpty())
        return -1;
    const qsizetype cells = qMax(cellPlayerFiles.size(), cellPictureTags.size());
    for (qsizetype i = 0; i < cells; ++i) {
        const QString tag = cellPictureTags.value(i);
        const qsizetype cut = tag.indexOf(QStringLiteral(" / "));
        if (SamePathIgnoringCase(cellPlayerFiles.value(i), path)
            || SamePathIgnoringCase(cut < 0 ? tag : tag.left(cut), path))
            return int(i);
    }
    return -1;
}

} // namespace FileCommands
