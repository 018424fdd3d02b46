#include "platform/PictureLoader.h"

#include "platform/BandedJpegDecode.h"
#include "platform/ColourManagement.h"
#include "platform/EmfRenderer.h"
#include "platform/HeifDecoder.h"
#include "platform/IconDecoder.h"
#include "platform/JpegXlDecoder.h"
#include "platform/MetafileHelper.h"
#include "platform/RawDecoder.h"
#include "platform/RleBitmapDecoder.h"
#include "platform/SvgRenderer.h"
#include "platform/WmfRenderer.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QTransform>
#include <QtConcurrent>
#include <QtEndian>

#include <algorithm>
#include <mutex>

namespace PictureLoader {
namespace {

// RLE bitmaps, icons, metafiles, SVG, HEIF, AVIF, JPEG XL and RAW files are read whole.
constexpr qint64 LargestWholeFile = 256LL * 1024 * 1024;
constexpr qsizetype SniffedBytes = 256;

enum class Decoder { Qt, RleBitmap, Icon, Wmf, Emf, Raw, Heif, Jxl, Svg };

quint16 u16At(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

quint32 u32At(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

bool hasIconName(const QString &path)
{
    return path.endsWith(QLatin1String(".ico"), Qt::CaseInsensitive)
        || path.endsWith(QLatin1String(".cur"), Qt::CaseInsensitive);
}

// Icon directories have no magic number. Under another name the first entry
// must be plausible too, so that no other file is taken for an icon.
bool looksLikeIconDirectory(const QByteArray &head, const QString &path)
{
    if (head.size() < 6 || u16At(head, 0) != 0 || (u16At(head, 2) != 1 && u16At(head, 2) != 2))
        return false;
    if (hasIconName(path))
        return true;
    const int count = u16At(head, 4);
    return head.size() >= 22 && count >= 1 && head[9] == 0 && u32At(head, 18) >= quint32(6 + 16 * count);
}

Decoder decoderFor(const QByteArray &head, const QString &path)
{
    if (RleBitmapDecoder::isRleBitmap(head))
        return Decoder::RleBitmap;
    if (EmfRenderer::isEmf(head))
        return Decoder::Emf;
    if (WmfRenderer::isWmf(head))
        return Decoder::Wmf;
    if (looksLikeIconDirectory(head, path))
        return Decoder::Icon;
    // Before HEIF: a CR3 is an ISO media file too, and most RAW files are TIFFs.
    if (RawDecoder::isRaw(head, path))
        return Decoder::Raw;
    if (HeifDecoder::isHeif(head))
        return Decoder::Heif;
    if (JpegXlDecoder::isJxl(head))
        return Decoder::Jxl;
    if (SvgRenderer::isSvg(head, path))
        return Decoder::Svg;
    return Decoder::Qt;
}

void allowLargePictures()
{
    // Qt refuses pictures past 128 MB by default; a 50-megapixel photo is
    // 200 MB. Headers past MaxPixels are refused before Qt allocates.
    static std::once_flag once;
    std::call_once(once, [] {
        constexpr int Megabytes = int(MaxPixels * 4 / (1024 * 1024));
        if (QImageReader::allocationLimit() != 0 && QImageReader::allocationLimit() < Megabytes)
            QImageReader::setAllocationLimit(Megabytes);
    });
}

QSize fittedSize(const QSize &natural, const QSize &bound)
{
    if (!bound.isValid() || (natural.width() <= bound.width() && natural.height() <= bound.height()))
        return natural;
    return natural.scaled(bound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

Picture fittedPicture(const QImage &image, const Options &options)
{
    if (image.isNull())
        return {};
    const QSize size = fittedSize(image.size(), options.fitInto);
    return {size == image.size() ? image : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
            image.size(), {}};
}

// Fitted after decoding (these libraries decode at full size, RAW at half
// size at most), then in the display's colours: fewer pixels to convert.
Picture fromDecoded(const DecodedPicture &decoded, const Options &options)
{
    if (decoded.isNull() || !decoded.naturalSize.isValid())
        return {};
    const QSize target = fittedSize(decoded.naturalSize, options.fitInto);
    const QImage fitted = decoded.image.width() > target.width() || decoded.image.height() > target.height()
                              ? decoded.image.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                              : decoded.image;
    return {ColourManagement::converted(fitted, decoded.iccProfile, options.colourSpace), decoded.naturalSize, {}};
}

// --- Qt's readers: BMP, JPEG, GIF, and PNG in disguise -------------------

bool gifScreenTooLarge(const QByteArray &head)
{
    return head.size() >= 10 && head.startsWith("GIF8")
        && qint64(u16At(head, 6)) * u16At(head, 8) > MaxPixels;
}

bool hasV2OrV3InfoHeader(const QByteArray &head)
{
    return head.size() >= 18 && head.startsWith("BM") && (u32At(head, 14) == 52 || u32At(head, 14) == 56);
}

// Qt reads no BITMAPV2/V3INFOHEADER (52 and 56 bytes: the basic header and
// the colour masks). Padded to a V4 header, whose start is the same, it does.
QByteArray withV4InfoHeader(const QByteArray &file)
{
    constexpr quint32 V4Size = 108;
    const quint32 size = u32At(file, 14);
    QByteArray padded = file.left(14 + size) + QByteArray(V4Size - size, '\0') + file.mid(14 + size);
    qToLittleEndian<quint32>(V4Size, padded.data() + 14);
    qToLittleEndian<quint32>(u32At(file, 10) + V4Size - size, padded.data() + 10);
    qToLittleEndian<quint32>(u32At(file, 2) + V4Size - size, padded.data() + 2);
    return padded;
}

// Runs `use` on what Qt should read: the file, or a repaired copy of it.
template <typename Use>
auto withQtReadable(QFile &file, const QByteArray &head, Use use)
{
    if (!hasV2OrV3InfoHeader(head) || file.size() > LargestWholeFile)
        return use(&file);
    QBuffer repaired;
    repaired.setData(withV4InfoHeader(file.readAll()));
    repaired.open(QIODevice::ReadOnly);
    return use(&repaired);
}

// Qt's reader set up to decide by content and to turn JPEGs upright; false
// when the content is not a format of ours.
bool prepareReader(QImageReader &reader)
{
    allowLargePictures();
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    // The other formats Qt knows are not pictures of this viewer, and some
    // (TGA) claim almost any file.
    const QByteArray format = reader.format();
    return format == "bmp" || format == "jpeg" || format == "gif" || format == "png" || format == "webp"
        || format == "tiff";
}

// The whole file when its start holds an ICC profile, the device left where
// Qt's reader left it; empty otherwise, so plain JPEGs are not read twice.
QByteArray wholeFileWithProfile(QIODevice *device)
{
    constexpr qint64 ProfileWithin = 256 * 1024; // past two EXIF blocks; a later one is left to Qt
    const qint64 at = device->pos();
    if (device->size() > LargestWholeFile || !device->seek(0))
        return {};
    QByteArray bytes = device->read(ProfileWithin);
    if (bytes.contains("ICC_PROFILE"))
        bytes += device->readAll();
    else
        bytes.clear();
    device->seek(at);
    return bytes;
}

// The picture turned upright by its EXIF orientation. Qt's own turn drops
// the colour space of a quarter-turned picture, and with it the profile.
QImage readUpright(QImageReader &reader)
{
    const QImageIOHandler::Transformations turn = reader.transformation();
    if (turn == QImageIOHandler::TransformationNone)
        return reader.read();
    reader.setAutoTransform(false);
    const QImage stored = reader.read();
    if (stored.isNull())
        return stored;
    QImage upright;
    if (turn == QImageIOHandler::TransformationRotate270) {
        upright = stored.transformed(QTransform().rotate(270));
    } else {
        upright = stored.mirrored(turn & QImageIOHandler::TransformationMirror,
                                  turn & QImageIOHandler::TransformationFlip);
        if (turn & QImageIOHandler::TransformationRotate90)
            upright = upright.transformed(QTransform().rotate(90));
    }
    upright.setColorSpace(stored.colorSpace());
    return upright;
}

QSize naturalSizeOf(QImageReader &reader)
{
    const QSize stored = reader.size();
    return (reader.transformation() & QImageIOHandler::TransformationRotate90) ? stored.transposed() : stored;
}

Picture loadWithQt(QIODevice *device, const Options &options)
{
    QImageReader reader(device);
    if (!prepareReader(reader))
        return {};
    const QSize natural = naturalSizeOf(reader);
    if (natural.isValid() && qint64(natural.width()) * natural.height() > MaxPixels)
        return {};
    if (options.part.isValid() && !options.fitInto.isValid() && natural.isValid() && reader.format() == "jpeg"
        && reader.transformation() == QImageIOHandler::TransformationNone) {
        const QRect part = options.part & QRect(QPoint(0, 0), natural);
        if (!part.isEmpty() && part.size() != natural) {
            reader.setClipRect(part);
            const QImage image = reader.read();
            return image.isNull() ? Picture{} : Picture{ColourManagement::converted(image, {}, options.colourSpace), natural, part};
        }
    }
    const QSize target = fittedSize(natural, options.fitInto);
    if (reader.format() == "jpeg" && natural.isValid() && target == natural) {
        const QImage banded = BandedJpegDecode::decoded(wholeFileWithProfile(device), reader.transformation(),
                                                        options.colourSpace, MaxPixels);
        if (!banded.isNull())
            return {banded, natural, {}};
    }
    const bool turned = reader.transformation() & QImageIOHandler::TransformationRotate90;
    if (natural.isValid() && target != natural)
        reader.setScaledSize(turned ? target.transposed() : target);
    const QImage image = ColourManagement::converted(readUpright(reader), {}, options.colourSpace);
    if (image.isNull())
        return {};
    return natural.isValid() ? Picture{image, natural, {}} : fittedPicture(image, options);
}

QSize naturalSizeWithQt(QIODevice *device)
{
    QImageReader reader(device);
    return prepareReader(reader) ? naturalSizeOf(reader) : QSize();
}

QSize metafileBound(const Options &options)
{
    const QSize largest(MaxMetafileSide, MaxMetafileSide);
    return options.fitInto.isValid() ? options.fitInto.boundedTo(largest).expandedTo(QSize(1, 1)) : largest;
}

// Drawn by the metafile helper, never in this process.
Picture loadMetafile(MetafileHelper::Kind kind, const QByteArray &file, const Options &options)
{
    const auto drawn = MetafileHelper::draw(kind, file, metafileBound(options), options.metafileTimeLimitMs);
    return drawn ? Picture{drawn->picture, drawn->naturalSize, {}} : Picture{};
}

} // namespace

Picture load(const QString &path, const Options &options)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray head = file.peek(SniffedBytes);
    const Decoder decoder = decoderFor(head, path);
    if (decoder == Decoder::Qt && gifScreenTooLarge(head))
        return {};
    if (decoder == Decoder::Qt)
        return withQtReadable(file, head, [&](QIODevice *device) { return loadWithQt(device, options); });
    if (file.size() > LargestWholeFile)
        return {};
    const QByteArray bytes = file.readAll();
    switch (decoder) {
    case Decoder::RleBitmap: return fittedPicture(RleBitmapDecoder::decode(bytes, MaxPixels), options);
    case Decoder::Icon: return fittedPicture(IconDecoder::decode(bytes), options);
    case Decoder::Wmf: return loadMetafile(MetafileHelper::Kind::Wmf, bytes, options);
    case Decoder::Emf: return loadMetafile(MetafileHelper::Kind::Emf, bytes, options);
    case Decoder::Svg:
        return loadMetafile(options.enlargeDrawings && options.fitInto.isValid() ? MetafileHelper::Kind::SvgFill
                                                                                 : MetafileHelper::Kind::Svg,
                            bytes, options);
    case Decoder::Heif: return fromDecoded(HeifDecoder::decode(bytes, MaxPixels), options);
    case Decoder::Jxl: return fromDecoded(JpegXlDecoder::decode(bytes, MaxPixels), options);
    case Decoder::Raw: return fromDecoded(RawDecoder::decode(bytes, MaxPixels, options.fitInto), options);
    case Decoder::Qt: break;
    }
    return {};
}

QFuture<Picture> loadAsync(const QString &path, const Options &options)
{
    return QtConcurrent::run([path, options] { return load(path, options); });
}

bool claimsTooManyPixels(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.peek(SniffedBytes);
    const QSize size = readNaturalSize(path);
    return gifScreenTooLarge(head) || qint64(size.width()) * size.height() > MaxPixels;
}

QSize readNaturalSize(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray head = file.peek(SniffedBytes);
    switch (decoderFor(head, path)) {
    case Decoder::Qt: return withQtReadable(file, head, naturalSizeWithQt);
    case Decoder::RleBitmap:
        return file.size() <= LargestWholeFile ? RleBitmapDecoder::sizeOf(file.readAll()) : QSize();
    case Decoder::Emf: return EmfRenderer::naturalSizeOf(head);
    case Decoder::Wmf:
        if (const QSize placeable = WmfRenderer::naturalSizeOf(head); placeable.isValid())
            return placeable;
        break; // a standard WMF's size is known only after scanning its records
    case Decoder::Heif:
        return file.size() <= LargestWholeFile ? HeifDecoder::sizeOf(file.readAll()) : QSize();
    case Decoder::Jxl: return file.size() <= LargestWholeFile ? JpegXlDecoder::sizeOf(file.readAll()) : QSize();
    case Decoder::Raw: return file.size() <= LargestWholeFile ? RawDecoder::sizeOf(file.readAll()) : QSize();
    case Decoder::Icon:
    case Decoder::Svg: break;
    }
    file.close();
    Options tiny;
    tiny.fitInto = QSize(1, 1);
    return load(path, tiny).naturalSize;
}

} // namespace PictureLoader
