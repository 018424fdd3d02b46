#pragma once

#include <QImage>
#include <QWidget>

// The picture control: shows one picture stretched to its own size. Its
// position and size are set by the view geometry of the main window.
class PictureView : public QWidget {
    Q_OBJECT
public:
    explicit PictureView(QWidget *parent = nullptr);

    void setPicture(const QImage &picture, QSize naturalSize = {});
    void clear();
    bool isEmpty() const { return m_picture.isNull(); }
    const QImage &picture() const { return m_picture; }
    // The picture's size in pixels as stored in its file (a picture decoded
    // at a reduced scale still reports its full size here).
    QSize naturalSize() const { return m_naturalSize; }

signals:
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

private:
    QImage m_picture;
    QSize m_naturalSize;
    // An opaque picture shrunk to the control's size, drawn once by the same
    // smooth painting and then copied: repaints of a fitted picture (status
    // row, tooltips, exposure) cost a copy instead of a new scaling.
    QImage m_shrunk;
};
