#pragma once

#include <QImage>
#include <QSize>
#include <QString>

// The freedesktop thumbnail cache ($XDG_CACHE_HOME/thumbnails/normal and
// large): PNGs named by the MD5 of the file's URI, valid while their
// Thumb::URI and Thumb::MTime match the file. Thumbnails written here are
// shared with file managers, so they follow the same rules: at most 128
// (normal) or 256 (large) pixels, written atomically, private to the user.
// Safe to use from several threads at once.
class ThumbnailCache {
public:
    enum class Flavour { Normal, Large };

    // root: the "thumbnails" folder; empty for the user's own.
    explicit ThumbnailCache(QString root = {});

    static int maxSide(Flavour flavour) { return flavour == Flavour::Normal ? 128 : 256; }
    // The smallest flavour whose thumbnails cover a box of that many pixels.
    static Flavour flavourFor(QSize box);
    static QByteArray uriOf(const QString &absolutePath);
    QString thumbnailPath(const QString &absolutePath, Flavour flavour) const;

    struct Entry {
        QImage image;
        QSize naturalSize; // Thumb::Image::Width / Height; invalid when not recorded
        bool isNull() const { return image.isNull(); }
    };
    // A null entry when there is none, or it is stale or unreadable.
    Entry read(const QString &absolutePath, Flavour flavour) const;

    // What a thumbnail file holds, before it is matched with its picture.
    struct Stored {
        QImage image; // null when the bytes are no thumbnail of the flavour
        QByteArray uri;
        QString mtime;
        QString size; // empty when not recorded
        QSize naturalSize; // invalid when not recorded
    };
    static Stored decode(QByteArray bytes, Flavour flavour);
    // image: the picture already fitted into maxSide(flavour). Failing to
    // write is silent: the cache is an accelerator only.
    bool write(const QString &absolutePath, Flavour flavour, const QImage &image, QSize naturalSize) const;

private:
    QString m_root;
};
