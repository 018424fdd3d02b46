#pragma once

#include "platform/MoviePlaylist.h"

#include <QImage>
#include <QObject>
#include <QSize>

#include <atomic>

struct mpv_handle;
struct mpv_render_context;
struct mpv_event;
struct mpv_event_property;

// One libmpv instance playing one MovieSource and rendering in software.
// It reports what libmpv says; MoviePlayer decides what the user sees.
// Nothing here waits for libmpv: requests are asynchronous and the answers
// arrive as signals on the GUI thread.
//
// End it with shutdown() and deleteLater(): a receiver of its signals may
// be the one that ends it.
class MovieEngine : public QObject {
    Q_OBJECT
public:
    // libmpv starts here, opening the source paused or playing.
    MovieEngine(const MovieSource &source, bool play, int volume, QObject *parent = nullptr);
    ~MovieEngine() override;

    // False when libmpv could not start, and after shutdown().
    bool isRunning() const { return m_mpv != nullptr; }
    // No signal after this; libmpv ends on a pool thread of the application.
    void shutdown();

    bool isLoaded() const { return m_loaded; }
    bool isPaused() const { return m_paused; } // as asked, or at the end
    bool isAtEnd() const { return m_atEnd; }
    double position() const { return m_position; }
    double duration() const { return m_duration; }
    QSize videoSize() const { return m_videoSize; }

    void setPaused(bool paused);
    // Reads back at once; made when the file has opened if it has not yet.
    void seek(double seconds);
    void setVolume(int volume);

    // The current frame at that size into frame(); false when there is none.
    bool renderFrame(QSize size);
    bool hasFrame() const { return m_frameRendered; }
    const QImage &frame() const { return m_frame; }

signals:
    void changed();    // after every report of libmpv
    void failed();     // no entry of the source could be played
    void frameReady(); // a new frame waits to be rendered

private:
    enum class Report { Nothing, Changed, Failed };

    static void wakeup(void *context);
    static void renderUpdate(void *context);
    bool start(const MovieSource &source, bool play, int volume);
    void drainEvents();
    void takeFrameUpdate();
    Report handleEvent(const mpv_event &event);
    Report takeProperty(uint64_t id, const mpv_event_property &property);

    mpv_handle *m_mpv = nullptr;
    mpv_render_context *m_render = nullptr;
    std::atomic_bool m_eventsQueued{false};
    std::atomic_bool m_frameQueued{false};
    qsizetype m_entries = 0;

    bool m_started = false;
    bool m_loaded = false;
    bool m_paused = true;
    bool m_atEnd = false;
    int m_loadsFailed = 0;
    int m_seeksPending = 0;
    double m_position = 0;
    double m_duration = 0;
    double m_pendingStart = -1;
    QSize m_videoSize;

    unsigned char *m_pixels = nullptr;
    size_t m_stride = 0;
    QSize m_frameSize;
    QImage m_frame; // over m_pixels
    bool m_frameRendered = false;
};
