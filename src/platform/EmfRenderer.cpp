#include "platform/EmfRenderer.h"

#include <QPainter>
#include <QRegularExpression>
#include <QSvgRenderer>
#include <QtEndian>

#include <emf2svg.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <optional>

namespace EmfRenderer {
namespace {

constexpr quint32 HeaderRecord = 1;
constexpr quint32 EmfSignature = 0x464D4520; // " EMF"
constexpr quint32 EndOfFileRecord = 14;
constexpr qsizetype SmallestHeader = 88;
constexpr double ScreenDpi = 96.0;
constexpr double MillimetresPerInch = 25.4;
constexpr qint64 LargestFrame = 10'000'000; // 100 m in 0.01 mm: anything beyond is garbage
constexpr double LargestCoordinate = 1e9;

qint32 s32At(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<qint32>(bytes.constData() + at);
}

// A RECTL: inclusive-inclusive, so one unit wider and taller than its corners' distance.
QRectF rectAt(const QByteArray &bytes, qsizetype at)
{
    return QRectF(QPointF(s32At(bytes, at), s32At(bytes, at + 4)),
                  QPointF(s32At(bytes, at + 8) + 1.0, s32At(bytes, at + 12) + 1.0));
}

struct Geometry {
    QSize naturalSize;
    QRectF frameInDevice; // the picture frame in the header's device pixels
};

std::optional<Geometry> geometryOf(const QByteArray &file)
{
    if (!isEmf(file))
        return std::nullopt;
    const QRectF bounds = rectAt(file, 8);
    const QRectF frame = rectAt(file, 24);
    const auto perMillimetre = [&](qsizetype deviceAt, qsizetype millimetresAt) {
        const qint32 pixels = s32At(file, deviceAt);
        const qint32 millimetres = s32At(file, millimetresAt);
        return pixels > 0 && millimetres > 0 ? double(pixels) / millimetres : ScreenDpi / MillimetresPerInch;
    };
    const double pixelsPerMmX = perMillimetre(72, 80);
    const double pixelsPerMmY = perMillimetre(76, 84);

    Geometry geometry;
    if (frame.width() > 0 && frame.height() > 0 && frame.width() < LargestFrame && frame.height() < LargestFrame) {
        geometry.naturalSize = QSize(int(std::lround(frame.width() / 100 / MillimetresPerInch * ScreenDpi)),
                                     int(std::lround(frame.height() / 100 / MillimetresPerInch * ScreenDpi)));
        geometry.frameInDevice = QRectF(frame.left() / 100 * pixelsPerMmX, frame.top() / 100 * pixelsPerMmY,
                                        frame.width() / 100 * pixelsPerMmX, frame.height() / 100 * pixelsPerMmY);
        // Some writers (Enterprise Architect under Wine) draw far from the
        // frame they declare; then the drawing's bounds are the better view.
        const QRectF shared = bounds.intersected(geometry.frameInDevice);
        if (bounds.width() > 1 && bounds.height() > 1 && bounds.width() < LargestFrame
            && bounds.height() < LargestFrame && shared.width() * shared.height() < 0.5 * bounds.width() * bounds.height())
            geometry.frameInDevice = bounds;
    } else if (bounds.width() > 0 && bounds.height() > 0 && bounds.width() < LargestFrame
               && bounds.height() < LargestFrame) {
        geometry.frameInDevice = bounds;
        geometry.naturalSize = geometry.frameInDevice.size().toSize();
    } else {
        return std::nullopt;
    }
    // The frame goes back into the header as 32-bit integers.
    const QRectF &device = geometry.frameInDevice;
    for (const double coordinate : {device.left(), device.top(), device.right(), device.bottom()})
        if (!(std::abs(coordinate) < LargestCoordinate))
            return std::nullopt;
    geometry.naturalSize = geometry.naturalSize.expandedTo(QSize(1, 1));
    return geometry;
}

quint32 u32At(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

// libemf2svg trusts the offsets and sizes in the file and reads past its end
// when they lie. Only the records that fit are passed on, and header parts
// that point outside the header are dropped; false when not even the header
// fits.
bool keepSoundParts(QByteArray &bytes)
{
    const qint64 headerSize = u32At(bytes, 4);
    if (headerSize < SmallestHeader || headerSize > bytes.size() || headerSize % 4 != 0)
        return false;
    const auto dropUnlessInside = [&](qsizetype countAt, qsizetype offsetAt, qint64 unitBytes) {
        const qint64 count = u32At(bytes, countAt);
        const qint64 offset = u32At(bytes, offsetAt);
        if ((count || offset) && (offset < SmallestHeader || offset + count * unitBytes > headerSize)) {
            qToLittleEndian<quint32>(0, bytes.data() + countAt);
            qToLittleEndian<quint32>(0, bytes.data() + offsetAt);
        }
    };
    dropUnlessInside(60, 64, 2); // the description, UTF-16
    if (headerSize >= 100)
        dropUnlessInside(88, 92, 1); // the pixel format
    qint64 at = 0;
    quint32 records = 0;
    while (at + 8 <= bytes.size()) {
        const qint64 size = u32At(bytes, at + 4);
        if (size < 8 || size % 4 != 0 || at + size > bytes.size())
            break;
        at += size;
        ++records;
        if (u32At(bytes, at - size) == EndOfFileRecord) {
            bytes.truncate(at);
            return true;
        }
    }
    // Ended as a complete file would, so that what came before is drawn.
    bytes.truncate(at);
    const quint32 endOfFile[] = {EndOfFileRecord, 20, 0, 16, 20}; // no palette
    for (const quint32 field : endOfFile) {
        bytes.resize(bytes.size() + 4);
        qToLittleEndian<quint32>(field, bytes.data() + bytes.size() - 4);
    }
    qToLittleEndian<quint32>(quint32(bytes.size()), bytes.data() + 48);
    qToLittleEndian<quint32>(records + 1, bytes.data() + 52);
    return true;
}

// The shift libemf2svg puts on everything it draws (minus the bounds' origin).
QPointF outputShiftOf(const QByteArray &svg)
{
    static const QRegularExpression translate(
        QStringLiteral(R"re(<g transform="translate\(\s*([-+0-9.eE]+)\s*,\s*([-+0-9.eE]+)\s*\)")re"));
    const QRegularExpressionMatch match = translate.match(QString::fromLatin1(svg.left(4096)));
    return match.hasMatch() ? QPointF(match.captured(1).toDouble(), match.captured(2).toDouble()) : QPointF();
}

} // namespace

bool isEmf(const QByteArray &fileStart)
{
    return fileStart.size() >= SmallestHeader
        && qFromLittleEndian<quint32>(fileStart.constData()) == HeaderRecord
        && qFromLittleEndian<quint32>(fileStart.constData() + 40) == EmfSignature;
}

QSize naturalSizeOf(const QByteArray &fileStart)
{
    const auto geometry = geometryOf(fileStart);
    return geometry ? geometry->naturalSize : QSize();
}

Conversion convert(const QByteArray &file)
{
    Conversion result;
    const auto geometry = geometryOf(file);
    if (!geometry)
        return result;

    // libemf2svg sizes its output by the header's bounds, which are often
    // empty or smaller than the frame; give it the frame instead, so that
    // nothing inside the frame is cut off and no zero size divides.
    QByteArray bytes = file;
    if (!keepSoundParts(bytes))
        return result;
    const QRect frame = geometry->frameInDevice.toAlignedRect();
    qToLittleEndian<qint32>(frame.left(), bytes.data() + 8);
    qToLittleEndian<qint32>(frame.top(), bytes.data() + 12);
    qToLittleEndian<qint32>(frame.left() + qMax(1, frame.width()), bytes.data() + 16);
    qToLittleEndian<qint32>(frame.top() + qMax(1, frame.height()), bytes.data() + 20);

    generatorOptions options{};
    char noNamespace[] = "";
    options.nameSpace = noNamespace;
    options.svgDelimiter = true;
    options.emfplus = true;
    char *output = nullptr;
    size_t outputLength = 0;
    const int converted = emf2svg(bytes.data(), size_t(bytes.size()), &output, &outputLength, &options);
    const std::unique_ptr<char, decltype(&std::free)> owned(output, &std::free);
    if (!converted || !output || outputLength == 0)
        return result;
    result.svg = QByteArray(output, qsizetype(outputLength));
    result.viewBox = geometry->frameInDevice.translated(outputShiftOf(result.svg));
    result.naturalSize = geometry->naturalSize;
    return result;
}

QImage paint(const Conversion &conversion, const QSize &bound)
{
    QSvgRenderer renderer(conversion.svg);
    if (conversion.isNull() || !renderer.isValid() || bound.isEmpty() || conversion.naturalSize.isEmpty())
        return {};
    // The SVG has no viewBox; this one makes the frame fill the picture, so
    // content scales with the picture instead of being cut off.
    renderer.setViewBox(conversion.viewBox);
    renderer.setAspectRatioMode(Qt::IgnoreAspectRatio);

    QSize size = conversion.naturalSize;
    if (size.width() > bound.width() || size.height() > bound.height())
        size = size.scaled(bound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return {};
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    renderer.render(&painter, QRectF(QPointF(0, 0), size));
    return image;
}

} // namespace EmfRenderer
