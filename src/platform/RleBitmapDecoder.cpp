#include "platform/RleBitmapDecoder.h"

#include <QList>
#include <QtEndian>

#include <limits>
#include <optional>

namespace RleBitmapDecoder {
namespace {

constexpr qsizetype FileHeaderSize = 14;
constexpr quint32 SmallestInfoHeader = 40; // BITMAPINFOHEADER; OS/2 2.x and V4/V5 extend it
constexpr quint32 LargestInfoHeader = 124; // BITMAPV5HEADER
constexpr quint32 Rle8 = 1;
constexpr quint32 Rle4 = 2;

quint16 u16At(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

quint32 u32At(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

struct Header {
    int width = 0;
    int height = 0;
    bool topDown = false;
    int bitsPerPixel = 0;
    QList<QRgb> palette; // always 2^bitsPerPixel entries; missing ones black
    qsizetype pixelOffset = 0;
};

std::optional<Header> readHeader(const QByteArray &file)
{
    if (file.size() < FileHeaderSize + qsizetype(SmallestInfoHeader) || !file.startsWith("BM"))
        return std::nullopt;
    const quint32 infoSize = u32At(file, 14);
    if (infoSize < SmallestInfoHeader || infoSize > LargestInfoHeader
        || FileHeaderSize + qsizetype(infoSize) > file.size())
        return std::nullopt;

    const qint32 width = qint32(u32At(file, 18));
    const qint32 height = qint32(u32At(file, 22));
    const int bits = u16At(file, 28);
    const quint32 compression = u32At(file, 30);
    const quint32 compressedSize = u32At(file, 34);
    const quint32 coloursUsed = u32At(file, 46);

    // RLE8 is only defined for 8-bit pixels and RLE4 for 4-bit ones.
    if (!(compression == Rle8 && bits == 8) && !(compression == Rle4 && bits == 4))
        return std::nullopt;
    if (width <= 0 || height == 0 || height == std::numeric_limits<qint32>::min())
        return std::nullopt;
    // A size past 2 GB cannot describe real data: the header is broken.
    if (qint32(compressedSize) < 0)
        return std::nullopt;

    const qsizetype paletteOffset = FileHeaderSize + infoSize;
    const qsizetype pixelOffset = u32At(file, 10);
    if (pixelOffset < paletteOffset || pixelOffset >= file.size())
        return std::nullopt;

    const int paletteCapacity = 1 << bits;
    qsizetype colours = coloursUsed == 0 || coloursUsed > quint32(paletteCapacity) ? paletteCapacity
                                                                                    : coloursUsed;
    colours = qMin(colours, (pixelOffset - paletteOffset) / 4);
    if (colours == 0)
        return std::nullopt;

    Header header;
    header.width = width;
    header.height = height < 0 ? -height : height;
    header.topDown = height < 0;
    header.bitsPerPixel = bits;
    header.pixelOffset = pixelOffset;
    header.palette.fill(qRgb(0, 0, 0), paletteCapacity);
    for (qsizetype i = 0; i < colours; ++i) {
        const auto *bgr = reinterpret_cast<const uchar *>(file.constData() + paletteOffset + 4 * i);
        header.palette[i] = qRgb(bgr[2], bgr[1], bgr[0]);
    }
    return header;
}

// Writes decoded pixels into the picture, dropping those outside it.
class PixelCursor {
public:
    PixelCursor(QImage &image, bool topDown) : m_image(image), m_topDown(topDown) { }

    bool pastLastRow() const { return m_row >= m_image.height(); }
    void put(QRgb colour)
    {
        if (m_x < m_image.width() && !pastLastRow()) {
            const int line = m_topDown ? m_row : m_image.height() - 1 - m_row;
            reinterpret_cast<QRgb *>(m_image.scanLine(line))[m_x] = colour;
        }
        ++m_x;
    }
    void endOfLine()
    {
        m_x = 0;
        ++m_row;
    }
    void move(int dx, int dy)
    {
        m_x += dx;
        m_row += dy;
    }

private:
    QImage &m_image;
    bool m_topDown;
    qint64 m_x = 0; // runs past the right edge keep counting; 64 bits cannot overflow
    qint64 m_row = 0;
};

} // namespace

bool isRleBitmap(const QByteArray &fileStart)
{
    if (fileStart.size() < FileHeaderSize + qsizetype(SmallestInfoHeader) || !fileStart.startsWith("BM"))
        return false;
    const quint32 infoSize = u32At(fileStart, 14);
    const quint32 compression = u32At(fileStart, 30);
    return infoSize >= SmallestInfoHeader && infoSize <= LargestInfoHeader
        && (compression == Rle8 || compression == Rle4);
}

QSize sizeOf(const QByteArray &file)
{
    const auto header = readHeader(file);
    return header ? QSize(header->width, header->height) : QSize();
}

QImage decode(const QByteArray &file, qint64 maxPixels)
{
    const auto header = readHeader(file);
    if (!header || qint64(header->width) * header->height > maxPixels)
        return {};
    QImage image(header->width, header->height, QImage::Format_ARGB32);
    if (image.isNull())
        return {};
    image.fill(Qt::transparent);

    const auto *data = reinterpret_cast<const uchar *>(file.constData()) + header->pixelOffset;
    const qsizetype size = file.size() - header->pixelOffset;
    const bool fourBits = header->bitsPerPixel == 4;
    const QList<QRgb> &palette = header->palette;
    PixelCursor cursor(image, header->topDown);

    // Every pass consumes at least two bytes, so the loop ends with the data.
    qsizetype at = 0;
    while (at + 2 <= size && !cursor.pastLastRow()) {
        const int count = data[at];
        const int value = data[at + 1];
        at += 2;
        if (count > 0) { // encoded mode: a run of one index (RLE4: two alternating)
            for (int i = 0; i < count; ++i)
                cursor.put(palette[fourBits ? (i % 2 == 0 ? value >> 4 : value & 0x0f) : value]);
            continue;
        }
        switch (value) {
        case 0:
            cursor.endOfLine();
            break;
        case 1:
            return image;
        case 2:
            if (at + 2 > size)
                return image;
            cursor.move(data[at], data[at + 1]);
            at += 2;
            break;
        default: { // absolute mode: `value` literal indices, padded to 16 bits
            const qsizetype bytes = fourBits ? (value + 1) / 2 : value;
            for (int i = 0; i < value; ++i) {
                const qsizetype byteAt = at + (fourBits ? i / 2 : i);
                if (byteAt >= size)
                    return image;
                const int packed = data[byteAt];
                cursor.put(palette[fourBits ? (i % 2 == 0 ? packed >> 4 : packed & 0x0f) : packed]);
            }
            at += bytes + (bytes % 2);
            break;
        }
        }
    }
    return image;
}

} // namespace RleBitmapDecoder
