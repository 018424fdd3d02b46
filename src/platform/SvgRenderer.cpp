#include "platform/SvgRenderer.h"

#include <QPainter>
#include <QSvgRenderer>

namespace SvgRenderer {

bool isSvg(const QByteArray &fileStart, const QString &path)
{
    if (fileStart.contains("<svg"))
        return true;
    if (!path.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive)
        && !path.endsWith(QLatin1String(".svgz"), Qt::CaseInsensitive))
        return false;
    if (fileStart.startsWith("\x1f\x8b"))
        return true;
    QByteArray text = fileStart;
    if (text.startsWith("\xEF\xBB\xBF"))
        text.remove(0, 3);
    return text.trimmed().startsWith('<');
}

Drawn paint(const QByteArray &file, const QSize &bound, Fit fit)
{
    QSvgRenderer renderer(file);
    if (!renderer.isValid() || bound.isEmpty())
        return {};
    const QSize natural = renderer.defaultSize();
    if (natural.isEmpty())
        return {};
    QSize drawn = natural;
    if (fit == Fit::Fill || drawn.width() > bound.width() || drawn.height() > bound.height())
        drawn = drawn.scaled(bound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    QImage picture(drawn, QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull())
        return {};
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    renderer.render(&painter, QRectF(QPointF(0, 0), drawn));
    painter.end();
    return {picture, natural};
}

} // namespace SvgRenderer
