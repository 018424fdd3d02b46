#pragma once

#include <QImage>
#include <QWidget>

class QPainter;

// The picture control: shows one picture stretched to its own size. Its
// position and size are set by the view geometry of the main window.
class PictureView : public QWidget {
    Q_OBJECT
public:
    explicit PictureView(QWidget *parent = nullptr);

    // part: what picture holds of the whole, in its pixels at 100 %
    // (invalid: all of it, possibly decoded smaller).
    void setPicture(const QImage &picture, QSize naturalSize = {}, QRect part = {});
    void clear();
    bool isEmpty() const { return m_picture.isNull(); }
    const QImage &picture() const { return m_picture; }
    // The picture's size in pixels as stored in its file (a picture decoded
    // at a reduced scale still reports its full size here).
    QSize naturalSize() const { return m_naturalSize; }
    bool holdsPart() const { return m_part.isValid(); }
    // A drawing can be drawn at any size: zoomed past its natural size it
    // lacks pixels too, and is drawn again, sharp.
    void setDrawing(bool drawing) { m_drawing = drawing; }
    bool isDrawing() const { return m_drawing; }
    // What of the picture shows inside the parent, in its pixels at 100 %.
    QRect visiblePart() const;
    // Whether what shows needs pixels not held: a part panned or zoomed
    // past, or a picture decoded smaller than it is now drawn.
    bool lacksPixels() const;

signals:
    // The control moved or was resized so that it lacks pixels.
    void partNeeded();

    void pressed(QMouseEvent *event);
    void moved(QMouseEvent *event);
    void released(QMouseEvent *event);
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QImage m_picture;
    QSize m_naturalSize;
    QRect m_part; // invalid while the whole picture is held
    bool m_partRequested = false;
    bool m_drawing = false;
    void requestPartIfNeeded();
    void paintPart(QPainter &painter, const QRect &exposed);
    // An opaque picture shrunk to the control's size, drawn once by the same
    // smooth painting and then copied: repaints of a fitted picture (status
    // row, tooltips, exposure) cost a copy instead of a new scaling.
    QImage m_shrunk;
};
