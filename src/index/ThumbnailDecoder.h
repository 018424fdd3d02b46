#pragma once

#include "index/ThumbnailCache.h"

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>
#include <QThreadPool>

#include <atomic>
#include <memory>

// Decodes thumbnails on a pool of its own, one thread per core, at the size
// they are shown (JPEG at a reduced DCT scale), through the shared
// thumbnail cache. Results come back on the owner's thread in the order
// they finish. cancel() drops every request not yet started and silences
// the running ones, so a page left behind costs no more than the pictures
// already being decoded.
class ThumbnailDecoder : public QObject {
    Q_OBJECT
public:
    explicit ThumbnailDecoder(ThumbnailCache cache = ThumbnailCache(), QObject *parent = nullptr);
    ~ThumbnailDecoder() override;

    struct Result {
        int cell = -1;
        QString path;
        QImage image;       // fitted into the requested box, in the display's colours; null when the file does not decode
        QSize naturalSize;  // of the picture, in pixels
        bool fromCache = false;
    };

    // box: device pixels the thumbnail may take.
    void request(int cell, const QString &path, QSize box);
    void cancel();
    int pending() const { return m_pending; }
    void waitForDone() { m_pool.waitForDone(); }

    // The work of one request, for callers that already run off the GUI thread.
    static Result decode(const ThumbnailCache &cache, const QString &path, QSize box);

signals:
    void thumbnailReady(const ThumbnailDecoder::Result &result);
    void allDone();

private:
    ThumbnailCache m_cache;
    QThreadPool m_pool;
    std::shared_ptr<std::atomic<quint64>> m_generation;
    int m_pending = 0;
};

Q_DECLARE_METATYPE(ThumbnailDecoder::Result)
