#include "context/PartRules.h"

namespace PartRules {

QRect partToDecode(const QRect &visible, const QSize &natural)
{
    const QRect whole(QPoint(0, 0), natural);
    const QRect shown = visible & whole;
    if (shown.isEmpty())
        return {};
    const int marginX = shown.width() / 4;
    const int marginY = shown.height() / 4;
    const QRect part = shown.adjusted(-marginX, -marginY, marginX, marginY) & whole;
    // Past two thirds of the picture, cutting saves less than a second
    // decoding on the next pan costs.
    if (qint64(part.width()) * part.height() * 3 >= qint64(whole.width()) * whole.height() * 2)
        return {};
    return part;
}

QRect visibleAtActualSize(const QSize &natural, const QSize &viewport)
{
    if (natural.isEmpty() || viewport.isEmpty())
        return {};
    return {0, 0, qMin(natural.width(), viewport.width()), qMin(natural.height(), viewport.height())};
}

} // namespace PartRules
