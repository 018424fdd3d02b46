#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

// Zoom, fit, centring, crop and pan arithmetic of the display area. All
// values are twips; the window converts at its boundary.
namespace ZoomRules {

constexpr double ZoomStep = 1.15;

// "Zoom +" and "Zoom -" from the zoom in force (0 when fit or actual size):
// 115 % or 85 % from no zoom, else one step from the whole number shown.
int zoomIn(double currentPercent);
int zoomOut(double currentPercent);

// Round half to even, as the zoom steps are rounded.
int roundHalfEven(double value);

// The fit command's ratio: the smaller of the width and height ratios
// (the width one on a tie); the picture is enlarged as well as reduced.
double fitRatio(QSizeF picture, QSizeF window);

// The fit applied while the window is resized, with its own margins: 100
// twips at the side, 120 below the picture's current top.
double resizeFitRatio(QSizeF picture, QSizeF window, double pictureTop);

// Where a target of this size goes in the display area: centred, 50 twips
// left of the middle, or pinned at the area's top-left when it is larger.
QPointF centredPosition(QSizeF target, QSizeF window);

// A movie is never zoomed beyond the display area: the percentage is
// lowered to what fits.
int movieZoomPercent(int requested, QSizeF natural, QSizeF window);

// The picture fits the display area (no pan possible).
bool fitsInArea(QSizeF picture, QSizeF window);

// The rubber band between the anchor and the moving corner, whichever way
// the mouse went; the selection is kept only when both sides reach 10 twips.
QRectF selectionRect(QPointF anchor, QPointF corner);
bool selectionBigEnough(QPointF anchor, QPointF end);

// A point pressed outside the picture, clamped to its edge.
QPointF clampToTarget(QPointF point, QSizeF target);

// The new top-left of a panned picture, kept partly inside the window.
QPointF panPosition(QPointF proposedTopLeft, QSizeF target, QSizeF window);

} // namespace ZoomRules
