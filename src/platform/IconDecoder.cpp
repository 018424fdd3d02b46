#include "platform/IconDecoder.h"

#include <QtEndian>

#include <algorithm>
#include <vector>

namespace IconDecoder {
namespace {

constexpr qsizetype PngHeaderEnd = 24; // signature, IHDR length and type, width, height
constexpr qsizetype DibHeaderSize = 40;

quint16 u16At(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

quint32 u32At(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

struct IconEntry {
    QSize size;
    int bits = 0;
    qsizetype offset = 0;
    bool png = false;
};

// The directory's entries that can hold a picture, largest first (then the
// deepest colour, then the first listed). Sizes come from the images
// themselves, which directories sometimes misstate.
std::vector<IconEntry> iconEntries(const QByteArray &file)
{
    std::vector<IconEntry> entries;
    const int count = file.size() >= 6 ? u16At(file, 4) : 0;
    for (int i = 0; i < count && 6 + 16 * (i + 1) <= file.size(); ++i) {
        IconEntry entry;
        entry.offset = u32At(file, 6 + 16 * i + 12);
        if (entry.offset < 6 || entry.offset + PngHeaderEnd > file.size())
            continue;
        entry.png = file.mid(entry.offset, 8) == QByteArray("\x89PNG\r\n\x1a\n", 8);
        if (!entry.png && entry.offset + DibHeaderSize > file.size())
            continue; // every field read below lies in the 40-byte header
        if (entry.png) {
            const qint64 width = qFromBigEndian<quint32>(file.constData() + entry.offset + 16);
            const qint64 height = qFromBigEndian<quint32>(file.constData() + entry.offset + 20);
            if (width < 1 || height < 1 || width > LargestPngSide || height > LargestPngSide)
                continue;
            entry.size = QSize(int(width), int(height));
            entry.bits = 32;
        } else {
            const quint32 headerSize = u32At(file, entry.offset);
            const qint32 width = qint32(u32At(file, entry.offset + 4));
            const qint32 height = qint32(u32At(file, entry.offset + 8)) / 2; // picture and mask
            entry.bits = u16At(file, entry.offset + 14);
            if (headerSize < 40 || width < 1 || height < 1 || width > LargestDibSide
                || height > LargestDibSide || entry.bits < 1 || entry.bits > 32)
                continue;
            entry.size = QSize(width, height);
            // A length that could hold a header but not the picture means a
            // damaged entry; one too short for even a header is no length.
            const quint32 colours = u32At(file, entry.offset + 32);
            const qint64 palette = entry.bits <= 8 ? 4 * qint64(colours ? colours : 1u << entry.bits) : 0;
            const qint64 rows = (qint64(width) * entry.bits + 31) / 32 * 4 * height;
            const qint64 mask = entry.bits == 32 ? 0 : (qint64(width) + 31) / 32 * 4 * height;
            const quint32 declared = u32At(file, 6 + 16 * i + 8);
            if (declared >= 40 && declared < headerSize + palette + rows + mask)
                continue;
        }
        // The directory's size (0 for 256) must be the picture's own.
        const int listedWidth = uchar(file[6 + 16 * i]) ? uchar(file[6 + 16 * i]) : 256;
        const int listedHeight = uchar(file[6 + 16 * i + 1]) ? uchar(file[6 + 16 * i + 1]) : 256;
        if (entry.size != QSize(listedWidth, listedHeight))
            continue;
        entries.push_back(entry);
    }
    std::stable_sort(entries.begin(), entries.end(), [](const IconEntry &a, const IconEntry &b) {
        const qint64 areaA = qint64(a.size.width()) * a.size.height();
        const qint64 areaB = qint64(b.size.width()) * b.size.height();
        return areaA != areaB ? areaA > areaB : a.bits > b.bits;
    });
    return entries;
}

// Qt's icon reader gets a one-entry icon (type 1) with the entry's true
// size and depth, so cursors and odd directories read too.
QImage decodeIconEntry(const QByteArray &file, const IconEntry &entry)
{
    const QByteArray data = file.mid(entry.offset);
    if (entry.png)
        return QImage::fromData(data, "PNG");
    QByteArray single(22, '\0');
    single[2] = 1;
    single[4] = 1;
    single[6] = char(entry.size.width() & 0xff); // 256 is written as 0
    single[7] = char(entry.size.height() & 0xff);
    single[10] = 1;
    qToLittleEndian<quint16>(quint16(entry.bits), single.data() + 12);
    qToLittleEndian<quint32>(quint32(data.size()), single.data() + 14);
    qToLittleEndian<quint32>(22, single.data() + 18);
    return QImage::fromData(single + data, "ICO");
}

} // namespace

QImage decode(const QByteArray &file)
{
    for (const IconEntry &entry : iconEntries(file)) {
        const QImage image = decodeIconEntry(file, entry);
        if (!image.isNull())
            return image;
    }
    return {};
}

} // namespace IconDecoder
