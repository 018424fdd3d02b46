#pragma once

#include "platform/PictureLoader.h"

#include <QFuture>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QThreadPool>

#include <atomic>
#include <memory>
#include <vector>

// A few pictures decoded ahead on worker threads, each held with the file's
// stamp when it was read, so that a file changed since is decoded again
// rather than shown stale.
class PicturePrefetch {
public:
    // What identifies one state of a file on disk.
    struct Stamp {
        qint64 size = -1;
        qint64 modifiedNs = 0;
        quint64 inode = 0;
        bool operator==(const Stamp &) const = default;
    };
    static Stamp stampOf(const QString &path); // size -1 when it cannot be read

    // What a picture is decoded for: fitted into fitInto (when valid), or at
    // actual size in a viewport of that size, where a large JPEG is decoded
    // only as far as it shows at first; or whole.
    struct Target {
        QSize fitInto;
        QSize viewport;
        bool operator==(const Target &) const = default;
        static Target fitted(QSize fitInto) { return {fitInto, {}}; }
        static Target actualSize(QSize viewport) { return {{}, viewport}; }
    };
    static PictureLoader::Picture loadFor(const QString &path, const Target &target);

    PicturePrefetch();
    ~PicturePrefetch(); // waits for the decoding under way

    // The picture of path for target: the one held when the file is
    // unchanged (waiting for its decoding if under way), else decoded now.
    // Either way it is then held, for going back to it. A decoding that
    // takes longer than limitMs gives a null picture.
    PictureLoader::Picture obtain(const QString &path, const Target &target, int limitMs);

    // Whether obtain() would give the picture at once: held, decoded, and
    // the file unchanged since.
    bool isReady(const QString &path, const Target &target) const;

    // Holds exactly these paths for target: decoding starts for those
    // missing, the others are dropped (jobs not started yet are skipped).
    void hold(const QStringList &paths, const Target &target);

    void clear();
    int heldCount() const { return int(m_entries.size()); }
    int hits() const { return m_hits; } // pictures obtain() found held
    void waitForIdle() { m_pool.waitForDone(); }

private:
    struct Entry {
        QString path;
        Target target;
        Stamp stamp;
        QFuture<PictureLoader::Picture> picture;
        std::shared_ptr<std::atomic_bool> wanted;
    };
    std::vector<Entry>::iterator drop(std::vector<Entry>::iterator entry);

    std::vector<Entry> m_entries;
    QThreadPool m_pool;
    int m_hits = 0;
};
