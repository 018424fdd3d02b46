#include "files/TrashInfo.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace TrashInfo {

namespace {
// By the text alone: the folders of a note may be gone.
QString parentOf(const QString &path) { return QFileInfo(path).path(); }
} // namespace

QString notePathOf(const QString &pathInTrash)
{
    const QString trash = parentOf(parentOf(pathInTrash));
    return trash + QStringLiteral("/info/") + QFileInfo(pathInTrash).fileName() + QStringLiteral(".trashinfo");
}

QString topFolderOf(const QString &pathInTrash)
{
    const QString top = parentOf(parentOf(parentOf(pathInTrash))); // above <top>/<Trash>/files/<name>
    return QFileInfo(top).fileName() == QLatin1String(".Trash") ? parentOf(top) : top;
}

QString originalPath(const QByteArray &note, const QString &topFolder)
{
    bool inGroup = false;
    for (const QByteArray &raw : note.split('\n')) {
        const QByteArray line = raw.trimmed();
        if (line.startsWith('[')) {
            inGroup = line == "[Trash Info]";
            continue;
        }
        if (!inGroup || !line.startsWith("Path="))
            continue;
        const QString path = QUrl::fromPercentEncoding(line.mid(5));
        if (path.isEmpty() || path.contains(QChar(0)))
            return {};
        // By the leading slash alone: Qt would take ":/..." for one of its resources.
        const bool absolute = path.startsWith(QLatin1Char('/'));
        const QString full = QDir::cleanPath(absolute ? path : topFolder + QLatin1Char('/') + path);
        if (!full.startsWith(QLatin1Char('/')) || full == QLatin1String("/") || QFileInfo(full).fileName().isEmpty())
            return {};
        return full;
    }
    return {};
}

} // namespace TrashInfo
