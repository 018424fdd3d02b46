#include "display/ZoomRules.h"

#include "display/ViewGeometry.h"

#include <algorithm>
#include <cmath>

using namespace ViewGeometry;

namespace ZoomRules {

int roundHalfEven(double value)
{
    return int(std::nearbyint(value)); // the default rounding mode is to nearest, ties to even
}

int zoomIn(double currentPercent)
{
    return currentPercent > 0 ? roundHalfEven(currentPercent * ZoomStep) : 115;
}

int zoomOut(double currentPercent)
{
    return currentPercent > 0 ? roundHalfEven(currentPercent / ZoomStep) : 85;
}

double fitRatio(QSizeF picture, QSizeF window)
{
    if (picture.width() <= 0 || picture.height() <= 0)
        return 0;
    const double ratioW = (window.width() - SideReserve) / picture.width();
    const double ratioH = (window.height() - DisplayTop - BottomReserve) / picture.height();
    return ratioH < ratioW ? ratioH : ratioW;
}

double resizeFitRatio(QSizeF picture, QSizeF window, double pictureTop)
{
    if (picture.width() <= 0 || picture.height() <= 0)
        return 0;
    const double ratioW = (window.width() - 100) / picture.width();
    const double ratioH = (window.height() - (pictureTop + 120)) / picture.height();
    return ratioH < ratioW ? ratioH : ratioW;
}

QPointF centredPosition(QSizeF target, QSizeF window)
{
    const double areaWidth = window.width();
    const double areaHeight = window.height() - DisplayTop - BottomReserve;
    const double left = target.width() > areaWidth ? 0 : (areaWidth - target.width()) / 2 - 50;
    const double top = target.height() > areaHeight ? DisplayTop : (areaHeight - target.height()) / 2 + DisplayTop;
    return {left, top};
}

int movieZoomPercent(int requested, QSizeF natural, QSizeF window)
{
    int percent = requested;
    if (natural.width() <= 0 || natural.height() <= 0)
        return percent;
    const double maxWidth = window.width() - SideReserve;
    const double maxHeight = window.height() - DisplayTop - BottomReserve;
    if (natural.width() * percent / 100 > maxWidth)
        percent = roundHalfEven(maxWidth / natural.width() * 100);
    if (natural.height() * percent / 100 > maxHeight)
        percent = roundHalfEven(maxHeight / natural.height() * 100);
    return percent;
}

bool fitsInArea(QSizeF picture, QSizeF window)
{
    return picture.width() < window.width() && window.height() - DisplayTop > picture.height();
}

QRectF selectionRect(QPointF anchor, QPointF corner)
{
    return QRectF(anchor, corner).normalized();
}

bool selectionBigEnough(QPointF anchor, QPointF end)
{
    return std::abs(end.x() - anchor.x()) >= 10 && std::abs(end.y() - anchor.y()) >= 10;
}

QPointF clampToTarget(QPointF point, QSizeF target)
{
    return {std::clamp(point.x(), 0.0, target.width()), std::clamp(point.y(), 0.0, target.height())};
}

QPointF panPosition(QPointF proposed, QSizeF target, QSizeF window)
{
    double left = proposed.x();
    double top = proposed.y();
    if (left > window.width() - 250)
        left = window.width() - 250;
    if (target.width() + left < 150)
        left = 150 - target.width();
    if (target.height() + top < 3000)
        top = 3000 - target.height();
    if (top > window.height() - BottomReserve - 100)
        top = window.height() - 810;
    return {left, top};
}

} // namespace ZoomRules
