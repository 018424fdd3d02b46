#include "platform/MetafileAnswer.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace MetafileAnswer {
namespace {

constexpr char Magic[4] = {'V', 'M', 'F', '1'};

quint32 fieldAt(const QByteArray &bytes, int field)
{
    return qFromLittleEndian<quint32>(bytes.constData() + sizeof Magic + field * 4);
}

void append(QByteArray &bytes, quint32 value)
{
    char field[4];
    qToLittleEndian(value, field);
    bytes.append(field, 4);
}

} // namespace

QByteArray encode(const QImage &picture, const QSize &naturalSize)
{
    const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QByteArray bytes;
    bytes.append(Magic, sizeof Magic);
    for (const int value : {pixels.width(), pixels.height(), naturalSize.width(), naturalSize.height()})
        append(bytes, quint32(value));
    const qsizetype rowBytes = qsizetype(pixels.width()) * 4;
    bytes.resize(HeaderBytes + rowBytes * pixels.height());
    for (int y = 0; y < pixels.height(); ++y)
        qToLittleEndian<quint32>(pixels.constScanLine(y), pixels.width(), bytes.data() + HeaderBytes + rowBytes * y);
    return bytes;
}

std::optional<Header> readHeader(const QByteArray &bytes, const QSize &bound, bool mayEnlarge)
{
    if (bytes.size() < HeaderBytes || std::memcmp(bytes.constData(), Magic, sizeof Magic) != 0)
        return std::nullopt;
    const quint32 width = fieldAt(bytes, 0);
    const quint32 height = fieldAt(bytes, 1);
    const quint32 naturalWidth = fieldAt(bytes, 2);
    const quint32 naturalHeight = fieldAt(bytes, 3);
    const auto within = [](quint32 value, qint64 largest) { return value >= 1 && value <= largest; };
    if (!within(width, bound.width()) || !within(height, bound.height())
        || !within(naturalWidth, LargestNaturalSide) || !within(naturalHeight, LargestNaturalSide))
        return std::nullopt;
    // Drawn at the natural size or scaled down, never up (one pixel of
    // rounding), unless a zoomed-in drawing was asked for.
    if (!mayEnlarge && (width > naturalWidth + 1 || height > naturalHeight + 1))
        return std::nullopt;
    return Header{QSize(int(width), int(height)), QSize(int(naturalWidth), int(naturalHeight))};
}

QImage readPixels(const Header &header, const QByteArray &pixels)
{
    if (pixels.size() != header.pixelBytes())
        return {};
    QImage picture(header.size, QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull())
        return {};
    const char *from = pixels.constData();
    for (int y = 0; y < picture.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x, from += 4) {
            const QRgb pixel = qFromLittleEndian<quint32>(from);
            const int alpha = qAlpha(pixel);
            row[x] = qRgba(std::min(qRed(pixel), alpha), std::min(qGreen(pixel), alpha),
                           std::min(qBlue(pixel), alpha), alpha);
        }
    }
    return picture;
}

std::optional<Drawn> read(const QByteArray &answer, const QSize &bound)
{
    const auto header = readHeader(answer.left(HeaderBytes), bound);
    if (!header)
        return std::nullopt;
    const QImage picture = readPixels(*header, answer.mid(HeaderBytes));
    if (picture.isNull())
        return std::nullopt;
    return Drawn{picture, header->naturalSize};
}

} // namespace MetafileAnswer
