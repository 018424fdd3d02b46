#include "files/FilePaths.h"

#include <QFileInfo>

namespace {
QChar separatorOf(const QString &path)
{
    return path.contains(QLatin1Char('\\')) ? QLatin1Char('\\') : QLatin1Char('/');
}
} // namespace

QString FolderOf(const QString &path, const QString &otherwise)
{
    const qsizetype cut = path.lastIndexOf(separatorOf(path));
    return cut < 0 ? otherwise : path.left(cut);
}

QString FileNameOfPath(const QString &path)
{
    const QChar separator = separatorOf(path);
    qsizetype start = 0;
    while (start < path.size() && path.at(start) == separator)
        ++start;
    const QString rest = path.mid(start);
    return rest.mid(rest.lastIndexOf(separator) + 1);
}

bool IsExistingFile(const QString &path)
{
    if (path.isEmpty() || path.contains(QLatin1Char('*')) || path.contains(QLatin1Char('?')))
        return false;
    const QFileInfo info(path);
    return info.isFile() && !info.isHidden();
}

QString PathInFolder(const QString &folder, const QString &name)
{
    if (folder.endsWith(QLatin1Char('/')))
        return folder + name;
    return folder + QLatin1Char('/') + name;
}

bool SamePathIgnoringCase(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}
