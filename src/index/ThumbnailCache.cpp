#include "index/ThumbnailCache.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>
#include <QtEndian>

namespace {

const QString UriKey = QStringLiteral("Thumb::URI");
const QString MTimeKey = QStringLiteral("Thumb::MTime");
const QString SizeKey = QStringLiteral("Thumb::Size");
const QString WidthKey = QStringLiteral("Thumb::Image::Width");
const QString HeightKey = QStringLiteral("Thumb::Image::Height");

QString mtimeText(const QFileInfo &info)
{
    return QString::number(info.lastModified().toSecsSinceEpoch());
}

// Thumbnails are a few kilobytes; anything far larger is not one.
constexpr qint64 LargestThumbnailFile = 4 * 1024 * 1024;

// Whether every PNG chunk lies within the file. libpng allocates what a
// chunk's length claims before it reads, so a flipped length byte in a
// small file would cost a gigabyte.
bool chunksFit(const QByteArray &png)
{
    constexpr qsizetype SignatureBytes = 8;
    constexpr qsizetype ChunkFrameBytes = 12; // length, type, CRC
    if (!png.startsWith("\x89PNG\r\n\x1a\n"))
        return false;
    qsizetype at = SignatureBytes;
    while (at + ChunkFrameBytes <= png.size()) {
        const qint64 length = qFromBigEndian<quint32>(png.constData() + at);
        if (length > png.size() - at - ChunkFrameBytes)
            return false;
        if (png.mid(at + 4, 4) == "IEND")
            return true;
        at += ChunkFrameBytes + length;
    }
    return false;
}

} // namespace

ThumbnailCache::ThumbnailCache(QString root)
    : m_root(std::move(root))
{
    if (m_root.isEmpty())
        m_root = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + QStringLiteral("/thumbnails");
}

ThumbnailCache::Flavour ThumbnailCache::flavourFor(QSize box)
{
    return qMax(box.width(), box.height()) <= maxSide(Flavour::Normal) ? Flavour::Normal : Flavour::Large;
}

QByteArray ThumbnailCache::uriOf(const QString &absolutePath)
{
    return QUrl::fromLocalFile(absolutePath).toEncoded();
}

QString ThumbnailCache::thumbnailPath(const QString &absolutePath, Flavour flavour) const
{
    const QByteArray md5 = QCryptographicHash::hash(uriOf(absolutePath), QCryptographicHash::Md5).toHex();
    return m_root + (flavour == Flavour::Normal ? QStringLiteral("/normal/") : QStringLiteral("/large/"))
         + QString::fromLatin1(md5) + QStringLiteral(".png");
}

ThumbnailCache::Entry ThumbnailCache::read(const QString &absolutePath, Flavour flavour) const
{
    const QFileInfo file(absolutePath);
    if (!file.exists())
        return {};
    QFile thumbnail(thumbnailPath(absolutePath, flavour));
    if (!thumbnail.open(QIODevice::ReadOnly) || thumbnail.size() > LargestThumbnailFile)
        return {};
    Stored stored = decode(thumbnail.readAll(), flavour);
    if (stored.image.isNull() || stored.uri != uriOf(absolutePath) || stored.mtime != mtimeText(file))
        return {};
    if (!stored.size.isEmpty() && stored.size != QString::number(file.size()))
        return {};
    return Entry{std::move(stored.image), stored.naturalSize};
}

ThumbnailCache::Stored ThumbnailCache::decode(QByteArray bytes, Flavour flavour)
{
    if (!chunksFit(bytes))
        return {};
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, "png");
    // Checked before decoding: a broken or hostile entry claiming a huge
    // picture would cost seconds and a gigabyte for a tiny thumbnail.
    const QSize claimed = reader.size();
    if (!claimed.isValid() || claimed.width() > maxSide(flavour) || claimed.height() > maxSide(flavour))
        return {};
    Stored stored;
    stored.image = reader.read();
    if (stored.image.isNull())
        return {};
    stored.uri = stored.image.text(UriKey).toUtf8();
    stored.mtime = stored.image.text(MTimeKey);
    stored.size = stored.image.text(SizeKey);
    stored.naturalSize = QSize(stored.image.text(WidthKey).toInt(), stored.image.text(HeightKey).toInt());
    if (stored.naturalSize.isEmpty())
        stored.naturalSize = QSize();
    return stored;
}

bool ThumbnailCache::write(const QString &absolutePath, Flavour flavour, const QImage &image, QSize naturalSize) const
{
    const QFileInfo file(absolutePath);
    const QString target = thumbnailPath(absolutePath, flavour);
    // Thumbnails of thumbnails would only grow the cache.
    if (image.isNull() || !file.exists() || file.absolutePath().startsWith(m_root))
        return false;
    const QString folder = QFileInfo(target).absolutePath();
    if (!QDir().mkpath(folder))
        return false;
    QFile::setPermissions(m_root, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    QImage tagged = image;
    tagged.setText(UriKey, QString::fromUtf8(uriOf(absolutePath)));
    tagged.setText(MTimeKey, mtimeText(file));
    tagged.setText(SizeKey, QString::number(file.size()));
    if (naturalSize.isValid()) {
        tagged.setText(WidthKey, QString::number(naturalSize.width()));
        tagged.setText(HeightKey, QString::number(naturalSize.height()));
    }
    tagged.setText(QStringLiteral("Software"), QStringLiteral("Vimora"));

    // QSaveFile writes beside the target and renames: a reader sees the old
    // thumbnail or the new one, never half of one.
    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly))
        return false;
    out.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    QImageWriter writer(&out, "png");
    if (!writer.write(tagged)) {
        out.cancelWriting();
        return false;
    }
    return out.commit();
}
