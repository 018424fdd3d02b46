#pragma once

#include "files/FileOperations.h"

#include <QString>
#include <QStringList>

struct AppState;
class frmMessage;
class QWidget;

// The per-file commands shared by the main window, the thumbnail index and
// the favourites window, after the window has worked out which file.
namespace FileCommands {

// The rename after the box: `typed` is a new name, or a new path when it
// holds a separator. Players are released first. Returns the new path, or
// "" when nothing was renamed (empty text, refused, failed).
QString renameFile(const QString &path, const QString &typed, const FileContext &context);

// Releases the players, asks and sends the file to the Trash. True when
// the file is gone; the caller then drops it from its lists. inTrash gets
// where it went.
bool deleteFile(const QString &path, const FileContext &context, QString *inTrash = nullptr);

// The information panel, or "File Not Found !" and the path when the file
// is missing (nullptr then). The index asks with the second button as
// default, as its own message boxes do.
frmMessage *showInfo(QWidget *parent, const AppState &state, const FileContext &context, const QString &path,
                     const QString &detail, const QString &typeCode, bool secondButtonDefault = false);

// The cell of the index that shows the path: the first whose player holds
// it or whose picture tag, up to its first " / ", is it (any letter case).
// -1 when none does.
int cellShowing(const QStringList &cellPlayerFiles, const QStringList &cellPictureTags, const QString &path);

} // namespace FileCommands
