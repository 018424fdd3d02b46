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
    m_shrunk = QImage();
    m_naturalSize = naturalSize.isValid() ? naturalSize : picture.size();
    update();
}

void PictureView::clear()
{
    m_picture = QImage();
    m_shrunk = QImage();
    m_naturalSize = QSize();
    update();
}

void PictureView::paintEvent(QPaintEvent *event)
{
    if (m_picture.isNull())
        return;
    QPainter painter(this);
    const bool shrunk = width() <= m_picture.width() && height() <= m_picture.height() && size() != m_picture.size();
    if (shrunk && !m_picture.hasAlphaChannel() && devicePixelRatioF() == 1) {
        if (m_shrunk.size() != size()) {
            m_shrunk = QImage(size(), QImage::Format_RGB32);
            QPainter shrinking(&m_shrunk);
            shrinking.setRenderHint(QPainter::SmoothPixmapTransform);
            shrinking.drawImage(QRectF(rect()), m_picture, QRectF(m_picture.rect()));
        }
        painter.drawImage(event->rect(), m_shrunk, event->rect());
        return;
    }
    m_shrunk = QImage();
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
