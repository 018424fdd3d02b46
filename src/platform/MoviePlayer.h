#pragma once

#include <QImage>
#include <QString>
#include <QWidget>

#include <memory>

// An embedded movie player over libmpv with the members the windows use.
// libmpv renders in software into a QImage that the widget paints, so it
// works on X11, Wayland, Xvfb and the offscreen platform alike. A player
// without a file holds no mpv handle: the thumbnail index keeps 24 of them.
class MoviePlayer : public QWidget {
    Q_OBJECT
public:
    enum PlayStateValue { Stopped = 0, Paused = 1, Playing = 2, Closed = 6 };
    enum DisplaySizeValue { NormalSize = 0, FullScreen = 3, FitToControl = 4 };

    explicit MoviePlayer(QWidget *parent = nullptr);
    ~MoviePlayer() override;

    // "" closes the file. Opening starts playing when autoStart is set.
    QString FileName() const;
    void setFileName(const QString &path);

    double CurrentPosition() const;
    void setCurrentPosition(double seconds);
    double Duration() const;
    QSize naturalSize() const; // the video's size in pixels; empty before it is known

    int DisplaySize() const;
    void setDisplaySize(int size);

    int PlayState() const;
    void Play();
    void Pause();
    void Stop();

    // Roles of the original control's settings.
    bool autoStart() const;
    void setAutoStart(bool on);
    bool controlBarShown() const;
    void setControlBarShown(bool on);
    bool contextMenuEnabled() const; // the player's own menu; off while a crop rectangle is drawn
    void setContextMenuEnabled(bool on);
    Qt::CursorShape videoCursor() const;
    void setVideoCursor(Qt::CursorShape shape);

    // The frame as last rendered (for grabbing and tests).
    QImage currentFrame() const;

signals:
    void PlayStateChange(int oldState, int newState);
    void mousePressed(QMouseEvent *event);
    void mouseMoved(QMouseEvent *event);
    void mouseReleased(QMouseEvent *event);
    void keyPressed(QKeyEvent *event);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
