#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <QWidget>

#include <memory>

// An embedded movie player over libmpv with the members the windows use.
// libmpv renders in software into a QImage that the widget paints, so it
// works on X11, Wayland, Xvfb and the offscreen platform alike. A player
// without a file holds no mpv handle: the thumbnail index keeps 24 of them.
//
// Everything here returns at once: files open, seek and fail in libmpv's
// threads, and their outcome arrives as state changes. A file that does not
// open leaves the player Closed (with its FileName kept) and emits
// mediaFailed; nothing is shown to the user.
class MoviePlayer : public QWidget {
    Q_OBJECT
public:
    enum PlayStateValue { Stopped = 0, Paused = 1, Playing = 2, Closed = 6 };
    enum DisplaySizeValue { NormalSize = 0, FullScreen = 3, FitToControl = 4 };

    explicit MoviePlayer(QWidget *parent = nullptr);
    ~MoviePlayer() override;

    // "" closes the file. Opening starts playing when autoStart is set.
    // Playlists (ASX family, "[Reference]", RAM lists) play their entries;
    // an IFO plays the DVD of its VIDEO_TS folder.
    QString FileName() const;
    void setFileName(const QString &path);

    // Reads back a position set before the file finished opening; the seek
    // is made once it has.
    double CurrentPosition() const;
    void setCurrentPosition(double seconds);
    double Duration() const; // 0 until known, and for live streams
    QSize naturalSize() const; // the video's size in pixels; empty before it is known

    // NormalSize shows the video at its size, centred; any other windowed
    // value fits it into the control keeping its proportions. FullScreen
    // makes the player a full-screen window of its own until another value
    // is set, a key other than space is pressed, or it is closed.
    int DisplaySize() const;
    void setDisplaySize(int size);

    // Closed while no file is open (also while one is still opening). The
    // end of a movie is Paused at its last frame; Play then starts over.
    // Stop is a pause at position 0.
    int PlayState() const;
    void Play();
    void Pause();
    void Stop();

    // Roles of the original control's settings.
    bool autoStart() const;
    void setAutoStart(bool on);
    bool controlBarShown() const;
    void setControlBarShown(bool on);
    void setControlNames(const QString &playPause, const QString &stop, const QString &position,
                         const QString &volume);
    // The player's own menu (play, pause, stop, full screen) on a right
    // press that no receiver of mousePressed accepted, and full screen on a
    // double click; off while a crop rectangle is drawn.
    bool contextMenuEnabled() const;
    void setContextMenuEnabled(bool on);
    Qt::CursorShape videoCursor() const;
    void setVideoCursor(Qt::CursorShape shape);

    int volume() const; // 0 to 100
    void setVolume(int volume);

    // Texts of the player's own menu, in the user's language.
    struct MenuTexts {
        QString play = QStringLiteral("Play");
        QString pause = QStringLiteral("Pause");
        QString stop = QStringLiteral("Stop");
        QString fullScreen = QStringLiteral("Full Screen");
        QString restore = QStringLiteral("Restore");
    };
    void setMenuTexts(const MenuTexts &texts);

    // The frame as last rendered (for grabbing and tests); rendered now at
    // the video's size if the widget has not painted one yet.
    QImage currentFrame() const;

    // Whether an mpv handle exists (a file is set and has not failed).
    bool hasEngine() const;

    // Where the video goes inside the area for a video of that size, in
    // logical pixels: at NormalSize each video pixel covers one device pixel.
    static QRect videoFrameRect(const QSize &video, const QRect &area, int displaySize, qreal devicePixelRatio = 1);
    // The widget's area above the control bar.
    QRect videoArea() const;

signals:
    void PlayStateChange(int oldState, int newState);
    // Mouse and key events over the video, before the player acts on them.
    // A receiver that handles a right press calls event->accept() to keep
    // the player's own menu away.
    void mousePressed(QMouseEvent *event);
    void mouseMoved(QMouseEvent *event);
    void mouseReleased(QMouseEvent *event);
    void keyPressed(QKeyEvent *event);
    void mediaFailed();
    void displaySizeChanged(int displaySize);
    void videoSizeKnown(); // naturalSize() has a new value

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
