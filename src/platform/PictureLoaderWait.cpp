#include "platform/PictureLoaderWait.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace PictureLoader {

namespace {
// Shared by the waiter and the decoding thread, which may outlive the wait.
struct Pending {
    std::mutex lock;
    std::condition_variable finished;
    bool done = false;
    Picture picture;
};

// Short enough that a repaint is not noticed as late.
constexpr int EventSliceMs = 15;
} // namespace

Picture loadWithinLimit(const QString &path, const Options &options, int limitMs, const Decode &decode)
{
    auto pending = std::make_shared<Pending>();
    std::thread([pending, path, options, decode] {
        Picture picture = decode(path, options);
        const std::lock_guard guard(pending->lock);
        pending->picture = std::move(picture);
        pending->done = true;
        pending->finished.notify_all();
    }).detach();

    QElapsedTimer clock;
    clock.start();
    std::unique_lock guard(pending->lock);
    for (;;) {
        const qint64 left = limitMs - clock.elapsed();
        if (left <= 0)
            return {};
        const auto slice = std::chrono::milliseconds(qMin<qint64>(left, EventSliceMs));
        if (pending->finished.wait_for(guard, slice, [&] { return pending->done; }))
            return std::move(pending->picture);
        guard.unlock();
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        guard.lock();
    }
}

} // namespace PictureLoader
