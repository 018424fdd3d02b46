#include "viewer/DroppedFile.h"

#include <QMimeData>
#include <QUrl>

QString droppedTextPath(const QString &text)
{
    const QString first = text.section(QLatin1Char('\n'), 0, 0).trimmed();
    if (!first.startsWith(QStringLiteral("file:"), Qt::CaseInsensitive))
        return first;
    const QUrl url(first);
    if (url.isValid() && url.isLocalFile())
        return url.toLocalFile();
    return QUrl::fromPercentEncoding(first.mid(5).toUtf8());
}

QString droppedFilePath(const QMimeData &data)
{
    for (const QUrl &url : data.urls())
        if (url.isLocalFile())
            return url.toLocalFile();
    return data.hasText() ? droppedTextPath(data.text()) : QString();
}
