#pragma once

#include <QByteArray>
#include <QString>

// The freedesktop Trash's note on each file it holds ("info/<name>.trashinfo").
namespace TrashInfo {

// The note beside a file in a Trash's "files" folder.
QString notePathOf(const QString &pathInTrash);

// The folder a Trash's relative paths start from: the Trash sits in it as
// ".Trash-<uid>" or ".Trash/<uid>".
QString topFolderOf(const QString &pathInTrash);

// The path a note gives for its file: "Path=" of "[Trash Info]",
// percent-decoded; a relative one is taken from topFolder. "" when there
// is none or it does not name a file.
QString originalPath(const QByteArray &note, const QString &topFolder);

} // namespace TrashInfo
