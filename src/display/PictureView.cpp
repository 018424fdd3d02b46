#include "display/PictureView.h"

#include "display/ViewGeometry.h"
#include "platform/PictureLoader.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

#include <cmath>

PictureView::PictureView(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setMouseTracking(true);
}

void PictureView::setPicture(const QImage &picture, QSize naturalSize, QRect part)
{
    m_picture = picture;
    m_shrunk = QImage();
    m_naturalSize = naturalSize.isValid() ? naturalSize : picture.size();
    m_part = part.isValid() && part != QRect(QPoint(0, 0), m_naturalSize) ? part : QRect();
    update();
}

QRect PictureView::visiblePart() const
{
    if (!parentWidget() || width() <= 0 || height() <= 0 || m_naturalSize.isEmpty())
        return {};
    const QRect shown = rect() & parentWidget()->rect().translated(-pos());
    const double toNaturalX = double(m_naturalSize.width()) / width();
    const double toNaturalY = double(m_naturalSize.height()) / height();
    const QRect visible(QPoint(int(shown.left() * toNaturalX), int(shown.top() * toNaturalY)),
                        QPoint(int(std::ceil((shown.right() + 1) * toNaturalX)) - 1,
                               int(std::ceil((shown.bottom() + 1) * toNaturalY)) - 1));
    return visible & QRect(QPoint(0, 0), m_naturalSize);
}

bool PictureView::lacksPixels() const
{
    if (m_picture.isNull())
        return false;
    if (holdsPart())
        return !m_part.contains(visiblePart());
    // A pixel or two less comes from rounding the fitted size, not from a zoom.
    const int needed = qRound(width() * devicePixelRatioF());
    const int largest = m_drawing ? PictureLoader::MaxMetafileSide : m_naturalSize.width();
    return m_picture.width() + 2 < needed && m_picture.width() < largest;
}

void PictureView::moveEvent(QMoveEvent *) { requestPartIfNeeded(); }
void PictureView::resizeEvent(QResizeEvent *) { requestPartIfNeeded(); }

// Asked once per turn of the event loop: a drag moves the control many times.
void PictureView::requestPartIfNeeded()
{
    if (m_partRequested || !lacksPixels())
        return;
    m_partRequested = true;
    QTimer::singleShot(0, this, [this] {
        m_partRequested = false;
        if (lacksPixels())
            emit partNeeded();
    });
}

void PictureView::clear()
{
    m_picture = QImage();
    m_shrunk = QImage();
    m_naturalSize = QSize();
    m_part = QRect();
    update();
}

void PictureView::paintEvent(QPaintEvent *event)
{
    if (m_picture.isNull())
        return;
    QPainter painter(this);
    if (holdsPart()) {
        paintPart(painter, event->rect());
        return;
    }
    // Drawn at device resolution: a picture shrunk to the control's device
    // pixels, or at " 100% " each of its pixels on one device pixel.
    const qreal ratio = devicePixelRatioF();
    const QSize device = (QSizeF(size()) * ratio).toSize();
    if (ViewGeometry::coversAtActualSize(device, m_picture.size(), ratio)) {
        m_shrunk = QImage();
        const QRect exposed = event->rect();
        painter.drawImage(QRectF(exposed), m_picture,
                          QRectF(exposed.x() * ratio, exposed.y() * ratio, exposed.width() * ratio,
                                 exposed.height() * ratio));
        return;
    }
    const bool shrunk = device.width() <= m_picture.width() && device.height() <= m_picture.height()
                     && device != m_picture.size();
    if (shrunk && !m_picture.hasAlphaChannel()) {
        if (m_shrunk.size() != device) {
            m_shrunk = QImage(device, QImage::Format_RGB32);
            QPainter shrinking(&m_shrunk);
            shrinking.setRenderHint(QPainter::SmoothPixmapTransform);
            shrinking.drawImage(QRectF(m_shrunk.rect()), m_picture, QRectF(m_picture.rect()));
        }
        const QRect exposed = event->rect();
        painter.drawImage(QRectF(exposed), m_shrunk,
                          QRectF(exposed.x() * ratio, exposed.y() * ratio, exposed.width() * ratio,
                                 exposed.height() * ratio));
        return;
    }
    m_shrunk = QImage();
    // Smooth scaling only where the picture is shrunk or modestly enlarged;
    // painting only the exposed part keeps large zooms cheap.
    painter.setRenderHint(QPainter::SmoothPixmapTransform,
                          device != m_picture.size() && device.width() <= m_picture.width() * 2);
    const QRect exposed = event->rect();
    const double sx = double(m_picture.width()) / qMax(1, width());
    const double sy = double(m_picture.height()) / qMax(1, height());
    const QRectF source(exposed.x() * sx, exposed.y() * sy, exposed.width() * sx, exposed.height() * sy);
    painter.drawImage(QRectF(exposed), m_picture, source);
}

// The held part where it lies in the whole; what lies outside it waits for
// its own decoding.
void PictureView::paintPart(QPainter &painter, const QRect &exposed)
{
    const double toNaturalX = double(m_naturalSize.width()) / qMax(1, width());
    const double toNaturalY = double(m_naturalSize.height()) / qMax(1, height());
    const QRectF exposedNatural(exposed.x() * toNaturalX, exposed.y() * toNaturalY, exposed.width() * toNaturalX,
                                exposed.height() * toNaturalY);
    const QRectF shown = exposedNatural & QRectF(m_part);
    if (shown != exposedNatural)
        painter.fillRect(exposed, palette().window()); // until the missing pixels come
    if (shown.isEmpty())
        return;
    const qreal ratio = devicePixelRatioF();
    if ((QSizeF(size()) * ratio).toSize() == m_naturalSize) {
        // At 100 % a plain copy, one pixel on one device pixel: no scaling path, however large the part.
        const QRect copied = shown.toAlignedRect() & m_part;
        painter.drawImage(QRectF(QPointF(copied.topLeft()) / ratio, QSizeF(copied.size()) / ratio), m_picture,
                          QRectF(copied.translated(-m_part.topLeft())));
        return;
    }
    const QRectF target(shown.x() / toNaturalX, shown.y() / toNaturalY, shown.width() / toNaturalX,
                        shown.height() / toNaturalY);
    const QRectF source(shown.translated(-m_part.topLeft()));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, toNaturalX > 0.5);
    painter.drawImage(target, m_picture, source);
}

void PictureView::mousePressEvent(QMouseEvent *event) { emit pressed(event); }
void PictureView::mouseMoveEvent(QMouseEvent *event) { emit moved(event); }
void PictureView::mouseReleaseEvent(QMouseEvent *event) { emit released(event); }
void PictureView::mouseDoubleClickEvent(QMouseEvent *) { emit doubleClicked(); }
