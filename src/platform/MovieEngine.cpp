#include "platform/MovieEngine.h"

#include <QCoreApplication>
#include <QFile>
#include <QThreadPool>

#include <mpv/client.h>
#include <mpv/render.h>

#include <cstdlib>

namespace {

// reply_userdata of observed properties and of asynchronous requests.
enum Request : uint64_t {
    AnyReply = 0,
    TimePosProperty,
    DurationProperty,
    EofProperty,
    WidthProperty,
    HeightProperty,
    IdleProperty,
    LoadReply,
    SeekReply,
};

// Larger targets are clamped: a corrupt size must not allocate gigabytes.
constexpr int MaxRenderSide = 8192;

// mpv's software renderer is fastest with 64-byte aligned rows.
constexpr size_t RowAlignment = 64;

// Freeing the renderer waits for libmpv's video thread, up to 200 ms while
// that holds a frame nobody takes, and a page of the index closes 24
// players. So libmpv ends on threads of a pool that the application owns
// and waits for when the program ends.
void destroyLater(mpv_render_context *render, mpv_handle *mpv)
{
    const auto destroy = [render, mpv] {
        if (render)
            mpv_render_context_free(render);
        if (mpv)
            mpv_terminate_destroy(mpv);
    };
    QCoreApplication *app = QCoreApplication::instance();
    if (!app) {
        destroy();
        return;
    }
    const QString poolName = QStringLiteral("vimora-movie-engine-teardown");
    auto *pool = app->findChild<QThreadPool *>(poolName, Qt::FindDirectChildrenOnly);
    if (!pool) {
        pool = new QThreadPool(app);
        pool->setObjectName(poolName);
        pool->setMaxThreadCount(8);
    }
    pool->start(destroy);
}

} // namespace

MovieEngine::MovieEngine(const MovieSource &source, bool play, int volume, QObject *parent) : QObject(parent)
{
    if (!start(source, play, volume))
        shutdown();
}

MovieEngine::~MovieEngine()
{
    shutdown();
    std::free(m_pixels);
}

bool MovieEngine::start(const MovieSource &source, bool play, int volume)
{
    m_mpv = mpv_create();
    if (!m_mpv)
        return false;
    const auto option = [this](const char *name, const QByteArray &value) {
        mpv_set_option_string(m_mpv, name, value.constData());
    };
    // Lean: a page of the index holds 24 players.
    option("config", "no");
    option("terminal", "no");
    option("vo", "libmpv");
    option("hwdec", "no");
    option("vd-lavc-threads", "1");
    option("cache", "no");
    option("demuxer-max-bytes", "2MiB");
    option("demuxer-max-back-bytes", "0");
    // Each built-in script is a thread of its own; none is wanted here.
    option("osc", "no");
    option("ytdl", "no");
    option("load-scripts", "no");
    option("load-stats-overlay", "no");
    option("load-osd-console", "no");
    option("load-auto-profiles", "no");
    option("input-default-bindings", "no");
    option("input-vo-keyboard", "no");
    option("sub-auto", "no");
    option("audio-file-auto", "no");
    option("audio-display", "no");
    // The end of a movie stays on its last frame, paused.
    option("keep-open", "yes");
    option("idle", "yes");
    // Only outputs whose state lives in the handle: SDL's audio is one
    // process-wide subsystem that libmpv's threads start and stop without a
    // lock, so players opening and closing side by side crashed or hung in
    // it. PipeWire desktops serve the pulse protocol too. Machines without
    // a sound server or device still play the picture.
    option("ao", "pulse,alsa,null");
    option("audio-fallback-to-null", "yes");
    option("pause", play ? "no" : "yes");
    option("volume", QByteArray::number(volume));
    if (!source.dvdDevice.isEmpty())
        option("dvd-device", QFile::encodeName(source.dvdDevice));
    if (mpv_initialize(m_mpv) < 0)
        return false;

    mpv_render_param params[] = {
        {MPV_RENDER_PARAM_API_TYPE, const_cast<char *>(MPV_RENDER_API_TYPE_SW)},
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    if (mpv_render_context_create(&m_render, m_mpv, params) < 0) {
        m_render = nullptr;
        return false;
    }
    mpv_observe_property(m_mpv, TimePosProperty, "time-pos", MPV_FORMAT_DOUBLE);
    mpv_observe_property(m_mpv, DurationProperty, "duration", MPV_FORMAT_DOUBLE);
    mpv_observe_property(m_mpv, EofProperty, "eof-reached", MPV_FORMAT_FLAG);
    mpv_observe_property(m_mpv, WidthProperty, "dwidth", MPV_FORMAT_INT64);
    mpv_observe_property(m_mpv, HeightProperty, "dheight", MPV_FORMAT_INT64);
    mpv_observe_property(m_mpv, IdleProperty, "idle-active", MPV_FORMAT_FLAG);
    mpv_render_context_set_update_callback(m_render, &MovieEngine::renderUpdate, this);
    mpv_set_wakeup_callback(m_mpv, &MovieEngine::wakeup, this);

    m_paused = !play;
    m_entries = source.urls.size();
    for (qsizetype i = 0; i < source.urls.size(); ++i) {
        const QString &url = source.urls.at(i);
        const QByteArray target = url.startsWith(QLatin1Char('/')) ? QFile::encodeName(url) : url.toUtf8();
        const char *args[] = {"loadfile", target.constData(), i == 0 ? "replace" : "append", nullptr};
        if (mpv_command_async(m_mpv, LoadReply, args) < 0)
            ++m_loadsFailed;
    }
    return m_loadsFailed < m_entries;
}

void MovieEngine::shutdown()
{
    // The callbacks go first: nothing may be posted for a dead handle.
    if (m_render)
        mpv_render_context_set_update_callback(m_render, nullptr, nullptr);
    if (m_mpv)
        mpv_set_wakeup_callback(m_mpv, nullptr, nullptr);
    if (m_render || m_mpv)
        destroyLater(m_render, m_mpv);
    m_render = nullptr;
    m_mpv = nullptr;
    m_loaded = false;
    m_frameRendered = false;
}

// Both callbacks come on libmpv's threads: the work is posted to the GUI
// thread, once per batch. Posted calls die with this object.
void MovieEngine::wakeup(void *context)
{
    auto *self = static_cast<MovieEngine *>(context);
    if (!self->m_eventsQueued.exchange(true))
        QMetaObject::invokeMethod(self, &MovieEngine::drainEvents, Qt::QueuedConnection);
}

void MovieEngine::renderUpdate(void *context)
{
    auto *self = static_cast<MovieEngine *>(context);
    if (!self->m_frameQueued.exchange(true))
        QMetaObject::invokeMethod(self, &MovieEngine::takeFrameUpdate, Qt::QueuedConnection);
}

void MovieEngine::drainEvents()
{
    m_eventsQueued = false;
    // A receiver may shut the engine down: the loop ends with the handle.
    while (m_mpv) {
        const mpv_event *event = mpv_wait_event(m_mpv, 0);
        if (event->event_id == MPV_EVENT_NONE)
            break;
        switch (handleEvent(*event)) {
        case Report::Changed:
            emit changed();
            break;
        case Report::Failed:
            emit changed();
            if (m_mpv)
                emit failed();
            break;
        case Report::Nothing:
            break;
        }
    }
}

void MovieEngine::takeFrameUpdate()
{
    m_frameQueued = false;
    if (m_render && (mpv_render_context_update(m_render) & MPV_RENDER_UPDATE_FRAME))
        emit frameReady();
}

MovieEngine::Report MovieEngine::handleEvent(const mpv_event &event)
{
    switch (event.event_id) {
    case MPV_EVENT_PROPERTY_CHANGE:
    case MPV_EVENT_GET_PROPERTY_REPLY:
        if (event.error < 0)
            return Report::Nothing;
        return takeProperty(event.reply_userdata, *static_cast<const mpv_event_property *>(event.data));
    case MPV_EVENT_START_FILE:
        m_started = true;
        return Report::Nothing;
    case MPV_EVENT_FILE_LOADED:
        m_loaded = true;
        m_atEnd = false;
        if (m_pendingStart > 0)
            seek(m_pendingStart);
        m_pendingStart = -1;
        return Report::Changed;
    case MPV_EVENT_END_FILE:
        // The next entry of a playlist, if any, follows.
        m_loaded = false;
        m_atEnd = false;
        m_position = 0;
        m_duration = 0;
        return Report::Changed;
    case MPV_EVENT_COMMAND_REPLY:
        if (event.reply_userdata == SeekReply && m_seeksPending > 0 && --m_seeksPending == 0) {
            // What changed while seeking was skipped as stale: ask again.
            mpv_get_property_async(m_mpv, TimePosProperty, "time-pos", MPV_FORMAT_DOUBLE);
            mpv_get_property_async(m_mpv, EofProperty, "eof-reached", MPV_FORMAT_FLAG);
        } else if (event.reply_userdata == LoadReply && event.error < 0 && ++m_loadsFailed >= m_entries
                   && !m_started) {
            return Report::Failed;
        }
        return Report::Nothing;
    default:
        return Report::Nothing;
    }
}

MovieEngine::Report MovieEngine::takeProperty(uint64_t id, const mpv_event_property &property)
{
    const bool isDouble = property.format == MPV_FORMAT_DOUBLE;
    const bool isFlag = property.format == MPV_FORMAT_FLAG;
    const bool isInt = property.format == MPV_FORMAT_INT64;
    switch (id) {
    case TimePosProperty:
        if (!isDouble || m_seeksPending > 0 || !m_loaded)
            return Report::Nothing;
        m_position = *static_cast<const double *>(property.data);
        return Report::Changed;
    case DurationProperty:
        m_duration = isDouble ? *static_cast<const double *>(property.data) : 0;
        return Report::Changed;
    case EofProperty:
        if (!isFlag || m_seeksPending > 0)
            return Report::Nothing;
        m_atEnd = *static_cast<const int *>(property.data) != 0;
        if (m_atEnd) // keep-open has paused libmpv on the last frame
            m_paused = true;
        return Report::Changed;
    case WidthProperty:
    case HeightProperty: {
        const int value = isInt ? static_cast<int>(*static_cast<const int64_t *>(property.data)) : 0;
        if (id == WidthProperty)
            m_videoSize.setWidth(value);
        else
            m_videoSize.setHeight(value);
        return Report::Changed;
    }
    case IdleProperty:
        // Idle after a file started, with none loaded: every entry failed.
        if (isFlag && *static_cast<const int *>(property.data) && m_started && !m_loaded)
            return Report::Failed;
        return Report::Nothing;
    default:
        return Report::Nothing;
    }
}

void MovieEngine::setPaused(bool paused)
{
    if (!m_mpv)
        return;
    m_paused = paused;
    int flag = paused ? 1 : 0;
    mpv_set_property_async(m_mpv, AnyReply, "pause", MPV_FORMAT_FLAG, &flag);
}

void MovieEngine::seek(double seconds)
{
    if (!m_mpv)
        return;
    m_position = seconds;
    if (m_duration <= 0 || seconds < m_duration)
        m_atEnd = false;
    if (!m_loaded) {
        m_pendingStart = seconds;
        return;
    }
    const QByteArray target = QByteArray::number(seconds, 'f', 3);
    const char *args[] = {"seek", target.constData(), "absolute+exact", nullptr};
    if (mpv_command_async(m_mpv, SeekReply, args) >= 0)
        ++m_seeksPending;
}

void MovieEngine::setVolume(int volume)
{
    if (!m_mpv)
        return;
    double value = volume;
    mpv_set_property_async(m_mpv, AnyReply, "volume", MPV_FORMAT_DOUBLE, &value);
}

bool MovieEngine::renderFrame(QSize size)
{
    if (!m_render || size.isEmpty())
        return false;
    size = size.boundedTo(QSize(MaxRenderSide, MaxRenderSide));
    if (size != m_frameSize) {
        m_frame = QImage();
        std::free(m_pixels);
        m_stride = (static_cast<size_t>(size.width()) * 4 + RowAlignment - 1) / RowAlignment * RowAlignment;
        m_pixels = static_cast<unsigned char *>(std::aligned_alloc(RowAlignment, m_stride * size.height()));
        if (!m_pixels) {
            m_frameSize = QSize();
            m_frameRendered = false;
            return false;
        }
        m_frameSize = size;
        m_frame = QImage(m_pixels, size.width(), size.height(), static_cast<qsizetype>(m_stride),
                         QImage::Format_RGB32);
    }
    int surface[2] = {size.width(), size.height()};
    char format[] = "bgr0";
    int block = 0; // a paint must never wait for the frame's display time
    mpv_render_param params[] = {
        {MPV_RENDER_PARAM_SW_SIZE, surface},
        {MPV_RENDER_PARAM_SW_FORMAT, format},
        {MPV_RENDER_PARAM_SW_STRIDE, &m_stride},
        {MPV_RENDER_PARAM_SW_POINTER, m_pixels},
        {MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &block},
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    m_frameRendered = mpv_render_context_render(m_render, params) >= 0;
    return m_frameRendered;
}
