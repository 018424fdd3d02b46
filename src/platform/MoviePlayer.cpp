#include "platform/MoviePlayer.h"

#include "platform/MovieControlBar.h"
#include "platform/MovieEngine.h"
#include "platform/MoviePlaylist.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QStyle>
#include <QWindow>

#include <algorithm>

namespace {

bool isModifierKey(int key)
{
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta
        || key == Qt::Key_AltGr || key == Qt::Key_CapsLock || key == Qt::Key_NumLock;
}

} // namespace

struct MoviePlayer::Private {
    explicit Private(MoviePlayer *owner) : q(owner), bar(new MovieControlBar(owner)) {}

    MoviePlayer *q;
    MovieControlBar *bar;

    QString fileName;
    MovieEngine *engine = nullptr; // a child of the player while a file is set
    bool stopped = false;          // paused at 0 by Stop, or opened without autoStart
    bool failureToReport = false;
    int playState = Closed;
    QSize shownVideoSize;

    int displaySize = FitToControl;
    int sizeBeforeFullScreen = FitToControl;
    bool madeWindow = false;
    Qt::WindowFlags flagsBeforeFullScreen;
    QRect geometryBeforeFullScreen;

    bool autoStart = false;
    bool barShown = true;
    bool menuEnabled = true;
    Qt::CursorShape cursor = Qt::ArrowCursor;
    int volume = 100;
    MenuTexts menuTexts;

    bool loaded() const { return engine && engine->isLoaded(); }
    void open(const QString &path, bool play);
    void closeEngine();
    void engineFailed();
    int currentState() const;
    void publish();
    void onFrameReady();
    QSize renderTargetSize() const;
    void layoutBar();
    void enterFullScreen();
    void leaveFullScreen();
    void showMenu(const QPoint &globalPos);
};

void MoviePlayer::Private::open(const QString &path, bool play)
{
    closeEngine();
    fileName = path;
    failureToReport = false;
    if (!path.isEmpty()) {
        const MovieSource source = MoviePlaylist::resolve(path);
        if (!source.isEmpty())
            engine = new MovieEngine(source, play, volume, q);
        if (engine && engine->isRunning()) {
            stopped = !play;
            QObject::connect(engine, &MovieEngine::changed, q, [this] { publish(); });
            QObject::connect(engine, &MovieEngine::frameReady, q, [this] { onFrameReady(); });
            QObject::connect(engine, &MovieEngine::failed, q, [this] { engineFailed(); });
        } else {
            closeEngine();
            failureToReport = true;
        }
    }
    q->update();
    publish(); // Closed until the file has opened
}

void MoviePlayer::Private::closeEngine()
{
    if (!engine)
        return;
    // The engine may be the sender of the signal being handled.
    engine->disconnect(q);
    engine->shutdown();
    engine->deleteLater();
    engine = nullptr;
    stopped = false;
    q->update();
}

// A file that does not play holds no engine; Play tries it again.
void MoviePlayer::Private::engineFailed()
{
    closeEngine();
    failureToReport = true;
    publish();
}

int MoviePlayer::Private::currentState() const
{
    if (!loaded())
        return Closed;
    if (stopped)
        return Stopped;
    return engine->isPaused() ? Paused : Playing;
}

void MoviePlayer::Private::publish()
{
    const int state = currentState();
    bar->setMediaOpen(loaded());
    bar->setTimes(q->CurrentPosition(), q->Duration());
    bar->setPlaying(state == Playing);
    if (q->naturalSize() != shownVideoSize) {
        shownVideoSize = q->naturalSize();
        q->update();
        if (shownVideoSize.isValid())
            emit q->videoSizeKnown();
    }
    const MovieEngine *current = engine;
    const QString currentFile = fileName;
    if (state != playState) {
        const int old = playState;
        playState = state;
        emit q->PlayStateChange(old, state);
        // A receiver may have opened another file meanwhile.
        if (engine != current || fileName != currentFile)
            return;
    }
    if (failureToReport) {
        failureToReport = false;
        emit q->mediaFailed();
    }
}

void MoviePlayer::Private::onFrameReady()
{
    const QWindow *window = q->window()->windowHandle();
    if (q->isVisible() && window && window->isExposed()) {
        q->update(q->videoArea());
    } else {
        // Nobody will paint: take the frame anyway, or libmpv stalls on it.
        const QSize size = engine->videoSize();
        engine->renderFrame(size.isEmpty() ? QSize(16, 16) : size);
    }
}

QSize MoviePlayer::Private::renderTargetSize() const
{
    const qreal ratio = q->devicePixelRatioF();
    const QRect target = videoFrameRect(q->naturalSize(), q->videoArea(), displaySize, ratio);
    return QSize(qRound(target.width() * ratio), qRound(target.height() * ratio));
}

void MoviePlayer::Private::layoutBar()
{
    if (!barShown) {
        bar->hide();
        return;
    }
    const int height = bar->sizeHint().height();
    bar->setGeometry(0, q->height() - height, q->width(), height);
    bar->show();
}

void MoviePlayer::Private::enterFullScreen()
{
    madeWindow = !q->isWindow();
    geometryBeforeFullScreen = q->geometry();
    if (madeWindow) {
        // A window of its own keeps its place in the parent's layout, which
        // skips windows until the player comes back.
        flagsBeforeFullScreen = q->windowFlags();
        q->setWindowFlags(flagsBeforeFullScreen | Qt::Window);
    }
    // Without a window manager the full-screen state alone changes nothing.
    if (const QScreen *screen = q->screen())
        q->setGeometry(screen->geometry());
    q->showFullScreen();
    q->activateWindow();
    q->setFocus(Qt::OtherFocusReason);
}

void MoviePlayer::Private::leaveFullScreen()
{
    if (madeWindow) {
        madeWindow = false;
        q->setWindowFlags(flagsBeforeFullScreen);
        q->setGeometry(geometryBeforeFullScreen);
        q->show();
    } else {
        q->showNormal();
    }
}

void MoviePlayer::Private::showMenu(const QPoint &globalPos)
{
    QMenu menu(q);
    const bool playing = playState == Playing;
    QAction *playAction = menu.addAction(q->style()->standardIcon(playing ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay),
                                         playing ? menuTexts.pause : menuTexts.play);
    QAction *stopAction = menu.addAction(q->style()->standardIcon(QStyle::SP_MediaStop), menuTexts.stop);
    stopAction->setEnabled(playState == Playing || playState == Paused);
    menu.addSeparator();
    QAction *fullAction = menu.addAction(displaySize == FullScreen ? menuTexts.restore : menuTexts.fullScreen);
    const QPointer<MoviePlayer> player(q);
    QAction *chosen = menu.exec(globalPos);
    if (!player || !chosen)
        return;
    if (chosen == playAction)
        playing ? q->Pause() : q->Play();
    else if (chosen == stopAction)
        q->Stop();
    else if (chosen == fullAction)
        q->setDisplaySize(displaySize == FullScreen ? sizeBeforeFullScreen : FullScreen);
}

MoviePlayer::MoviePlayer(QWidget *parent) : QWidget(parent), d(std::make_unique<Private>(this))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::ClickFocus);
    connect(d->bar, &MovieControlBar::playPauseClicked, this, [this] { PlayState() == Playing ? Pause() : Play(); });
    connect(d->bar, &MovieControlBar::stopClicked, this, &MoviePlayer::Stop);
    connect(d->bar, &MovieControlBar::seekRequested, this, &MoviePlayer::setCurrentPosition);
    connect(d->bar, &MovieControlBar::volumeRequested, this, &MoviePlayer::setVolume);
    d->layoutBar();
}

MoviePlayer::~MoviePlayer()
{
    d->closeEngine();
}

QString MoviePlayer::FileName() const
{
    return d->fileName;
}

void MoviePlayer::setFileName(const QString &path)
{
    d->open(path, d->autoStart);
}

double MoviePlayer::CurrentPosition() const
{
    return d->engine ? d->engine->position() : 0;
}

void MoviePlayer::setCurrentPosition(double seconds)
{
    if (!d->engine)
        return;
    seconds = std::max(0.0, seconds);
    if (d->engine->duration() > 0)
        seconds = std::min(seconds, d->engine->duration());
    d->engine->seek(seconds);
    d->publish();
}

double MoviePlayer::Duration() const
{
    return d->engine ? d->engine->duration() : 0;
}

QSize MoviePlayer::naturalSize() const
{
    const QSize size = d->engine ? d->engine->videoSize() : QSize();
    return size.isEmpty() ? QSize() : size;
}

int MoviePlayer::DisplaySize() const
{
    return d->displaySize;
}

void MoviePlayer::setDisplaySize(int size)
{
    if (size == d->displaySize)
        return;
    const int old = d->displaySize;
    d->displaySize = size;
    if (size == FullScreen) {
        d->sizeBeforeFullScreen = old;
        d->enterFullScreen();
    } else if (old == FullScreen) {
        d->leaveFullScreen();
    }
    update();
    emit displaySizeChanged(size);
}

int MoviePlayer::PlayState() const
{
    return d->playState;
}

void MoviePlayer::Play()
{
    if (!d->engine) {
        // Closed after a failure: try the file again, as the user asked.
        if (!d->fileName.isEmpty())
            d->open(d->fileName, true);
        return;
    }
    MovieEngine *engine = d->engine;
    // From the end, play starts over.
    if (engine->isLoaded()
        && (engine->isAtEnd() || (engine->duration() > 0 && engine->position() >= engine->duration() - 0.05)))
        engine->seek(0);
    d->stopped = false;
    engine->setPaused(false);
    d->publish();
}

void MoviePlayer::Pause()
{
    if (!d->engine)
        return;
    d->stopped = false;
    d->engine->setPaused(true);
    d->publish();
}

void MoviePlayer::Stop()
{
    if (!d->engine)
        return;
    d->stopped = true;
    d->engine->setPaused(true);
    d->engine->seek(0);
    d->publish();
}

bool MoviePlayer::autoStart() const
{
    return d->autoStart;
}

void MoviePlayer::setAutoStart(bool on)
{
    d->autoStart = on;
}

void MoviePlayer::setControlNames(const QString &playPause, const QString &stop, const QString &position,
                                  const QString &volume)
{
    d->bar->setControlNames(playPause, stop, position, volume);
}

bool MoviePlayer::controlBarShown() const
{
    return d->barShown;
}

void MoviePlayer::setControlBarShown(bool on)
{
    d->barShown = on;
    d->layoutBar();
    update();
}

bool MoviePlayer::contextMenuEnabled() const
{
    return d->menuEnabled;
}

void MoviePlayer::setContextMenuEnabled(bool on)
{
    d->menuEnabled = on;
}

Qt::CursorShape MoviePlayer::videoCursor() const
{
    return d->cursor;
}

void MoviePlayer::setVideoCursor(Qt::CursorShape shape)
{
    d->cursor = shape;
    setCursor(shape);
}

int MoviePlayer::volume() const
{
    return d->volume;
}

void MoviePlayer::setVolume(int volume)
{
    d->volume = std::clamp(volume, 0, 100);
    d->bar->setVolume(d->volume);
    if (d->engine)
        d->engine->setVolume(d->volume);
}

void MoviePlayer::setMenuTexts(const MenuTexts &texts)
{
    d->menuTexts = texts;
}

QImage MoviePlayer::currentFrame() const
{
    if (!d->loaded())
        return {};
    if (!d->engine->hasFrame() && naturalSize().isValid())
        d->engine->renderFrame(naturalSize());
    return d->engine->hasFrame() ? d->engine->frame().copy() : QImage();
}

bool MoviePlayer::hasEngine() const
{
    return d->engine != nullptr;
}

QRect MoviePlayer::videoFrameRect(const QSize &video, const QRect &area, int displaySize, qreal devicePixelRatio)
{
    if (video.isEmpty() || area.isEmpty())
        return {};
    const qreal ratio = devicePixelRatio > 0 ? devicePixelRatio : 1;
    const QSize size = displaySize == NormalSize ? QSize(qRound(video.width() / ratio), qRound(video.height() / ratio))
                                                 : video.scaled(area.size(), Qt::KeepAspectRatio);
    return QRect(area.x() + (area.width() - size.width()) / 2, area.y() + (area.height() - size.height()) / 2,
                 size.width(), size.height());
}

QRect MoviePlayer::videoArea() const
{
    QRect area = rect();
    if (d->barShown)
        area.setBottom(area.bottom() - d->bar->height());
    return area;
}

void MoviePlayer::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect area = videoArea();
    painter.fillRect(area, Qt::black);
    const QRect target = videoFrameRect(naturalSize(), area, d->displaySize, devicePixelRatioF());
    if (!d->loaded() || target.isEmpty())
        return;
    // Render on every paint: a paused player gets no new update, and a
    // frame that is not taken soon is dropped.
    if (!d->engine->renderFrame(d->renderTargetSize()))
        return;
    painter.setClipRect(area);
    const QImage &frame = d->engine->frame();
    // libmpv rendered it at the device size: a plain copy then, which
    // smoothing would blur at a fractional ratio.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, frame.size() != d->renderTargetSize());
    painter.drawImage(target, frame);
}

void MoviePlayer::resizeEvent(QResizeEvent *event)
{
    d->layoutBar();
    QWidget::resizeEvent(event);
}

void MoviePlayer::mousePressEvent(QMouseEvent *event)
{
    event->ignore();
    emit mousePressed(event);
    const bool handled = event->isAccepted();
    event->accept();
    if (!handled && event->button() == Qt::RightButton && d->menuEnabled && d->engine)
        d->showMenu(event->globalPosition().toPoint());
}

void MoviePlayer::mouseMoveEvent(QMouseEvent *event)
{
    emit mouseMoved(event);
    event->accept();
}

void MoviePlayer::mouseReleaseEvent(QMouseEvent *event)
{
    emit mouseReleased(event);
    event->accept();
}

void MoviePlayer::mouseDoubleClickEvent(QMouseEvent *event)
{
    event->ignore();
    emit mousePressed(event);
    const bool handled = event->isAccepted();
    event->accept();
    if (handled || !d->menuEnabled || !d->engine)
        return;
    if (event->button() == Qt::LeftButton)
        setDisplaySize(d->displaySize == FullScreen ? d->sizeBeforeFullScreen : FullScreen);
    else if (event->button() == Qt::RightButton)
        d->showMenu(event->globalPosition().toPoint());
}

void MoviePlayer::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space) {
        if (d->engine)
            PlayState() == Playing ? Pause() : Play();
    } else if (d->displaySize == FullScreen && !isModifierKey(event->key())) {
        setDisplaySize(d->sizeBeforeFullScreen);
    }
    emit keyPressed(event);
    event->accept();
}

void MoviePlayer::contextMenuEvent(QContextMenuEvent *event)
{
    // The menu, if any, was shown on the press; windows below get none.
    event->accept();
}

void MoviePlayer::closeEvent(QCloseEvent *event)
{
    if (d->displaySize == FullScreen && d->madeWindow) {
        // Closing the full-screen window brings the player back, not away.
        event->ignore();
        setDisplaySize(d->sizeBeforeFullScreen);
        return;
    }
    QWidget::closeEvent(event);
}
