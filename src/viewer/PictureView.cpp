#include "viewer/PictureView.h"

#include <QMouseEvent>
#include <QPainter>

PictureView::PictureView(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setMouseTracking(true);
}

void PictureView::setPicture(const QImage &picture, QSize naturalSize)
{
    m_picture = picture;
    m_naturalSize = naturalSize.isValid() ? naturalSize : picture.size();
    update();
}

void PictureView::clear()
{
    m_picture = QImage();
    m_naturalSize = QSize();
    update();
}

void PictureView::paintEvent(QPaintEvent *event)
{
    if (m_picture.isNull())
        return;
    QPainter painter(this);
    // Smooth scaling only where the picture is shrunk or modestly enlarged;
    // painting only the exposed part keeps large zooms cheap.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, width() <= m_picture.width() * 2);
    const QRect exposed = event->rect();
    const double sx = double(m_picture.width()) / qMax(1, width());
    const double sy = double(m_picture.height()) / qMax(1, height());
    const QRectF source(exposed.x() * sx, exposed.y() * sy, exposed.width() * sx, exposed.height() * sy);
    painter.drawImage(QRectF(exposed), m_picture, source);
}

void PictureView::mousePressEvent(QMouseEvent *event) { emit pressed(event); }
void PictureView::mouseMoveEvent(QMouseEvent *event) { emit moved(event); }
void PictureView::mouseReleaseEvent(QMouseEvent *event) { emit released(event); }
void PictureView::mouseDoubleClickEvent(QMouseEvent *) { emit doubleClicked(); }
