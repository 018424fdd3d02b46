#include "index/ExifThumbnail.h"

#include <QTransform>
#include <QtEndian>

#include <cstdlib>

namespace ExifThumbnail {
namespace {

constexpr int MaxSegmentsBeforeExif = 16;
constexpr quint16 OrientationTag = 0x0112;
constexpr quint16 CompressionTag = 0x0103;
constexpr quint16 ThumbnailOffsetTag = 0x0201;
constexpr quint16 ThumbnailLengthTag = 0x0202;
constexpr int EntrySize = 12;

// A TIFF block (the EXIF payload) read with range checks on every access.
class Tiff {
public:
    explicit Tiff(QByteArrayView bytes) : m_bytes(bytes)
    {
        if (bytes.size() < 8)
            return;
        if (bytes.first(4) == QByteArrayView("II*\0", 4))
            m_little = true;
        else if (bytes.first(4) != QByteArrayView("MM\0*", 4))
            return;
        m_valid = true;
    }
    bool valid() const { return m_valid; }
    bool has(qint64 at, qint64 length) const { return at >= 0 && length >= 0 && at + length <= m_bytes.size(); }
    quint16 u16(qint64 at) const
    {
        const uchar *p = reinterpret_cast<const uchar *>(m_bytes.data()) + at;
        return m_little ? qFromLittleEndian<quint16>(p) : qFromBigEndian<quint16>(p);
    }
    quint32 u32(qint64 at) const
    {
        const uchar *p = reinterpret_cast<const uchar *>(m_bytes.data()) + at;
        return m_little ? qFromLittleEndian<quint32>(p) : qFromBigEndian<quint32>(p);
    }
    QByteArrayView bytes() const { return m_bytes; }

private:
    QByteArrayView m_bytes;
    bool m_little = false;
    bool m_valid = false;
};

struct Ifd {
    bool valid = false;
    qint64 start = 0;
    int count = 0;
    qint64 next = 0; // offset of the following IFD, 0 when none
};

Ifd readIfd(const Tiff &tiff, qint64 at)
{
    if (at < 8 || !tiff.has(at, 2))
        return {};
    const int count = tiff.u16(at);
    if (!tiff.has(at + 2, qint64(count) * EntrySize + 4))
        return {};
    return {true, at + 2, count, tiff.u32(at + 2 + qint64(count) * EntrySize)};
}

// The value of a SHORT or LONG entry with one value; -1 when absent or of
// another shape.
qint64 valueOf(const Tiff &tiff, const Ifd &ifd, quint16 tag)
{
    for (int i = 0; i < ifd.count; ++i) {
        const qint64 entry = ifd.start + qint64(i) * EntrySize;
        if (tiff.u16(entry) != tag)
            continue;
        const quint16 type = tiff.u16(entry + 2);
        if (tiff.u32(entry + 4) != 1)
            return -1;
        if (type == 3)
            return tiff.u16(entry + 8);
        if (type == 4)
            return tiff.u32(entry + 8);
        return -1;
    }
    return -1;
}

// The EXIF payload of the first APP1 "Exif" segment before the picture data.
QByteArrayView exifPayload(const QByteArray &file)
{
    const auto *bytes = reinterpret_cast<const uchar *>(file.constData());
    if (file.size() < 4 || bytes[0] != 0xFF || bytes[1] != 0xD8)
        return {};
    qsizetype at = 2;
    for (int segment = 0; segment < MaxSegmentsBeforeExif; ++segment) {
        if (at + 4 > file.size() || bytes[at] != 0xFF)
            return {};
        const uchar marker = bytes[at + 1];
        if (marker == 0xDA || marker == 0xD9)
            return {}; // the picture data: no EXIF block came first
        const int length = qFromBigEndian<quint16>(bytes + at + 2);
        if (length < 2 || at + 2 + length > file.size())
            return {};
        const QByteArrayView data(file.constData() + at + 4, length - 2);
        if (marker == 0xE1 && data.startsWith(QByteArrayView("Exif\0\0", 6)))
            return data.sliced(6);
        at += 2 + length;
    }
    return {};
}

} // namespace

Found find(const QByteArray &fileStart)
{
    const Tiff tiff(exifPayload(fileStart));
    if (!tiff.valid())
        return {};
    const Ifd ifd0 = readIfd(tiff, tiff.u32(4));
    if (!ifd0.valid)
        return {};
    Found found;
    const qint64 orientation = valueOf(tiff, ifd0, OrientationTag);
    found.orientation = orientation >= 1 && orientation <= 8 ? int(orientation) : 1;
    if (ifd0.next == 0 || ifd0.next == tiff.u32(4))
        return found;
    const Ifd ifd1 = readIfd(tiff, ifd0.next);
    if (!ifd1.valid)
        return found;
    const qint64 compression = valueOf(tiff, ifd1, CompressionTag);
    const qint64 offset = valueOf(tiff, ifd1, ThumbnailOffsetTag);
    const qint64 length = valueOf(tiff, ifd1, ThumbnailLengthTag);
    if ((compression != -1 && compression != 6) || offset < 8 || length < 4 || !tiff.has(offset, length))
        return found;
    const QByteArrayView jpeg = tiff.bytes().sliced(offset, length);
    if (uchar(jpeg[0]) == 0xFF && uchar(jpeg[1]) == 0xD8)
        found.jpeg = jpeg.toByteArray();
    return found;
}

bool standsFor(QSize thumbSize, QSize pictureSize, int side)
{
    if (thumbSize.isEmpty() || pictureSize.isEmpty())
        return false;
    const QSize made = pictureSize.width() <= side && pictureSize.height() <= side
                           ? pictureSize
                           : pictureSize.scaled(side, side, Qt::KeepAspectRatio);
    if (thumbSize.width() < made.width() || thumbSize.height() < made.height())
        return false;
    const double expectedHeight = double(thumbSize.width()) * pictureSize.height() / pictureSize.width();
    return std::abs(thumbSize.height() - expectedHeight) <= qMax(1.0, thumbSize.height() * 0.01);
}

QImage oriented(const QImage &stored, int orientation)
{
    // Mirror or flip first, then a quarter turn clockwise: the order of
    // Qt's own reader.
    switch (orientation) {
    case 2: return stored.mirrored(true, false);
    case 3: return stored.mirrored(true, true);
    case 4: return stored.mirrored(false, true);
    case 5: return stored.mirrored(false, true).transformed(QTransform().rotate(90));
    case 6: return stored.transformed(QTransform().rotate(90));
    case 7: return stored.mirrored(true, false).transformed(QTransform().rotate(90));
    case 8: return stored.transformed(QTransform().rotate(270));
    default: return stored;
    }
}

} // namespace ExifThumbnail
