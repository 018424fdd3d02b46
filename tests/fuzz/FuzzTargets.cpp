#include "fuzz/FuzzTargets.h"

#include "core/ProfileReader.h"
#include "files/TrashInfo.h"
#include "index/ExifThumbnail.h"
#include "index/ThumbnailCache.h"
#include "platform/BandedJpegDecode.h"
#include "platform/ColourManagement.h"
#include "platform/EmfRenderer.h"
#include "platform/HeifDecoder.h"
#include "platform/JpegBandReader.h"
#include "platform/JpegXlDecoder.h"
#include "platform/MatrixShaperTransform.h"
#include "platform/RawDecoder.h"
#include "platform/SvgRenderer.h"
#include "platform/MetafileAnswer.h"
#include "platform/MoviePlaylist.h"
#include "platform/IconDecoder.h"
#include "platform/RleBitmapDecoder.h"
#include "platform/WmfRenderer.h"
#include "system/MimeAppsList.h"
#include "system/MimePackage.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace FuzzTargets {

namespace {

// Small bounds keep each run quick; the parsers see the same bytes either way.
const QSize PaintBound(512, 512);
constexpr qint64 MaxRlePixels = 4'000'000;
constexpr int MetafileTimeLimitMs = 2000;
// Pictures of today's formats: small enough for quick runs, large enough
// for every real seed.
constexpr qint64 MaxDecodedPixels = 4'000'000;

// A broken promise of the parser, not a crash: the fuzzer must still stop.
void require(bool condition, const char *what)
{
    if (!condition) {
        std::fprintf(stderr, "broken: %s\n", what);
        std::abort();
    }
}

QString scratchFolder()
{
    static QTemporaryDir folder;
    return folder.path();
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

} // namespace

void rleBitmap(const QByteArray &input)
{
    if (!RleBitmapDecoder::isRleBitmap(input))
        return;
    const QSize size = RleBitmapDecoder::sizeOf(input);
    const QImage image = RleBitmapDecoder::decode(input, MaxRlePixels);
    require(image.isNull() || image.size() == size, "the RLE picture has the header's size");
    require(image.isNull() || qint64(image.width()) * image.height() <= MaxRlePixels, "the RLE pixel limit");
}

void icon(const QByteArray &input)
{
    const QImage image = IconDecoder::decode(input);
    require(image.isNull()
                || (image.width() <= IconDecoder::LargestPngSide && image.height() <= IconDecoder::LargestPngSide),
            "an icon is no larger than the format allows");
}

void wmf(const QByteArray &input)
{
    if (!WmfRenderer::isWmf(input))
        return;
    WmfRenderer::naturalSizeOf(input);
    const WmfRenderer::Recording recording = WmfRenderer::record(input, PaintBound, MetafileTimeLimitMs);
    if (recording.isNull())
        return;
    require(recording.size.width() <= PaintBound.width() && recording.size.height() <= PaintBound.height(),
            "the WMF picture fits the bound");
    WmfRenderer::paint(recording);
}

void emf(const QByteArray &input)
{
    if (!EmfRenderer::isEmf(input))
        return;
    EmfRenderer::naturalSizeOf(input);
    const EmfRenderer::Conversion conversion = EmfRenderer::convert(input);
    if (conversion.isNull())
        return;
    const QImage image = EmfRenderer::paint(conversion, PaintBound);
    require(image.width() <= PaintBound.width() && image.height() <= PaintBound.height(),
            "the EMF picture fits the bound");
}

void moviePlaylist(const QByteArray &input)
{
    const QString folder = scratchFolder();
    static const bool filled = [&] {
        // Entries that exist, one in a different case, and a playlist that
        // names the one under test back.
        QDir(folder).mkpath(QStringLiteral("Clips"));
        return writeFile(folder + QStringLiteral("/Clips/Movie.MPG"), "movie")
            && writeFile(folder + QStringLiteral("/clip.avi"), "clip")
            && writeFile(folder + QStringLiteral("/other.asx"),
                         "<asx version=\"3.0\"><entry><ref href=\"list.asx\"/></entry></asx>");
    }();
    require(filled, "the playlist folder is made");
    MoviePlaylist::asxEntries(input, folder);
    MoviePlaylist::referenceEntries(input, folder);
    MoviePlaylist::textListEntries(input, folder);
    // The whole path too: sniffing, and playlists that name playlists.
    const QString list = folder + (input.size() % 2 ? QStringLiteral("/list.asx") : QStringLiteral("/list.ram"));
    if (writeFile(list, input))
        MoviePlaylist::resolve(list);
}

void messageFile(const QByteArray &input)
{
    const QString text = ProfileReader::decode(input);
    static const std::array<std::pair<QString, QString>, 4> lookups = {{
        {QStringLiteral("msgIT"), QStringLiteral("2")},
        {QStringLiteral("msgIT"), QStringLiteral("299")},
        {QStringLiteral(" msgit "), QStringLiteral(" 17 ")},
        {QString(), QString()},
    }};
    const QString fallback = QStringLiteral("\x01");
    for (const auto &[section, key] : lookups) {
        const QString value = ProfileReader::findValue(text, section, key, fallback);
        require(value == fallback || value.size() <= ProfileReader::MaxValueLength, "a message is cut at 299");
    }
}

void mimeApps(const QByteArray &input)
{
    const QString group = QStringLiteral("Default Applications");
    const QString key = QStringLiteral("image/png");
    const QString ours = QStringLiteral("vimora.desktop");
    MimeAppsList list = MimeAppsList::fromText(QString::fromUtf8(input));
    list.value(QStringLiteral("Added Associations"), key);
    list.setValue(group, key, ours);
    require(list.value(group, key) == ours, "a value set reads back");
    const MimeAppsList reread = MimeAppsList::fromText(list.toText());
    require(reread.value(group, key) == ours, "a value set survives saving");
    list.remove(group, key);
    list.setValue(QStringLiteral("Removed Associations"), key, ours);
    list.toText();
    // The MIME database's own files are read as plain text too.
    const QString text = QString::fromUtf8(input);
    MimePackage::iconOf(text);
    MimePackage::globsName(text, QStringLiteral("*.ivf"));
}

void thumbnailCache(const QByteArray &input)
{
    const ThumbnailCache::Stored stored = ThumbnailCache::decode(input, ThumbnailCache::Flavour::Normal);
    require(stored.image.isNull()
                || (stored.image.width() <= ThumbnailCache::maxSide(ThumbnailCache::Flavour::Normal)
                    && stored.image.height() <= ThumbnailCache::maxSide(ThumbnailCache::Flavour::Normal)),
            "a thumbnail is no larger than its flavour");
    require(!stored.naturalSize.isValid() || !stored.naturalSize.isEmpty(), "a recorded natural size is a size");
}

void metafileAnswer(const QByteArray &input)
{
    const auto drawn = MetafileAnswer::read(input, PaintBound);
    if (!drawn)
        return;
    require(drawn->picture.width() <= PaintBound.width() && drawn->picture.height() <= PaintBound.height(),
            "the helper's picture fits the bound asked for");
    for (int y = 0; y < drawn->picture.height(); ++y)
        for (int x = 0; x < drawn->picture.width(); ++x) {
            const QRgb pixel = drawn->picture.pixel(x, y);
            require(qMax(qMax(qRed(pixel), qGreen(pixel)), qBlue(pixel)) <= qAlpha(pixel),
                    "a premultiplied pixel is no brighter than its alpha");
        }
}

void exifThumbnail(const QByteArray &input)
{
    const ExifThumbnail::Found found = ExifThumbnail::find(input);
    require(found.orientation >= 1 && found.orientation <= 8, "EXIF orientation out of 1..8");
    require(found.jpeg.isEmpty() || input.contains(found.jpeg), "EXIF thumbnail not taken from the input");
    // The index turns what it decoded; a tiny picture keeps the run quick.
    QImage stored(3, 2, QImage::Format_RGB32);
    stored.fill(Qt::red);
    const QImage seen = ExifThumbnail::oriented(stored, found.orientation);
    require(seen.size() == stored.size() || seen.size() == stored.size().transposed(), "orientation changed the size");
}

// The decoders keep their promise: nothing past the pixel bound, and a
// picture as large as they say.
void requireWithinBound(const DecodedPicture &picture, const char *what)
{
    if (picture.isNull())
        return;
    require(qint64(picture.image.width()) * picture.image.height() <= MaxDecodedPixels, what);
    require(picture.naturalSize.isValid(), what);
}

void heif(const QByteArray &input)
{
    if (!HeifDecoder::isHeif(input.left(256)))
        return;
    HeifDecoder::sizeOf(input);
    const DecodedPicture picture = HeifDecoder::decode(input, MaxDecodedPixels);
    requireWithinBound(picture, "a HEIF picture stays within the bound");
    require(picture.isNull() || picture.image.size() == picture.naturalSize, "a HEIF picture comes whole");
}

void jpegXl(const QByteArray &input)
{
    if (!JpegXlDecoder::isJxl(input.left(256)))
        return;
    JpegXlDecoder::sizeOf(input);
    const DecodedPicture picture = JpegXlDecoder::decode(input, MaxDecodedPixels);
    requireWithinBound(picture, "a JPEG XL picture stays within the bound");
    require(picture.isNull() || picture.image.size() == picture.naturalSize, "a JPEG XL picture comes whole");
}

void raw(const QByteArray &input)
{
    RawDecoder::sizeOf(input);
    // The preview, then the sensor data: both paths on every input.
    requireWithinBound(RawDecoder::decode(input, MaxDecodedPixels, QSize(64, 64)), "a RAW preview stays within the bound");
    requireWithinBound(RawDecoder::decode(input, MaxDecodedPixels, QSize()), "a RAW picture stays within the bound");
}

void svg(const QByteArray &input)
{
    const SvgRenderer::Drawn drawn = SvgRenderer::paint(input, PaintBound);
    require(drawn.picture.isNull()
                || (drawn.picture.width() <= PaintBound.width() && drawn.picture.height() <= PaintBound.height()),
            "the SVG picture fits the bound");
}

void iccProfile(const QByteArray &input)
{
    // A profile from a picture or from the screen converts a picture or
    // leaves it as it was; the screen always has a colour space.
    QImage picture(5, 3, QImage::Format_ARGB32);
    picture.fill(QColor(200, 90, 40, 128));
    require(ColourManagement::converted(picture, input).size() == picture.size(), "a profile keeps the picture's size");
    const QColorSpace screen = ColourManagement::screenColourSpace(input);
    require(screen.isValid(), "a screen of any profile has a colour space");
    require(ColourManagement::converted(picture, {}, screen).size() == picture.size(),
            "the screen's colours keep the picture's size");
    if (const auto fast = MatrixShaperTransform::between(input, QColorSpace(QColorSpace::SRgb).iccProfile()))
        fast->apply(picture);
}

void jpegBands(const QByteArray &input)
{
    // The reader alone, every band handed out in order; then decoded and
    // converted on two threads, the way pictures with a profile are shown.
    JpegBandReader reader(input, MaxDecodedPixels);
    int handed = 0;
    const QImage stored = reader.read([&](uchar *, qsizetype, int first, int end) {
        require(first == handed && end > first && end - first <= JpegBandReader::BandRows, "bands come in order");
        handed = end;
    });
    require(stored.isNull() || (stored.size() == reader.size() && handed == stored.height()),
            "a JPEG read in bands comes whole");
    require(qint64(stored.width()) * stored.height() <= MaxDecodedPixels, "a JPEG read in bands stays within the bound");
    const QImage upright = BandedJpegDecode::decoded(input, QImageIOHandler::TransformationRotate270,
                                                     QColorSpace(QColorSpace::SRgb), MaxDecodedPixels);
    require(upright.isNull() || qint64(upright.width()) * upright.height() <= MaxDecodedPixels,
            "a converted JPEG stays within the bound");
}

void trashInfo(const QByteArray &input)
{
    const QString path = TrashInfo::originalPath(input, QStringLiteral("/media/stick"));
    require(path.isEmpty() || (path.startsWith(QLatin1Char('/')) && path != QLatin1String("/")),
            "a Trash note gave a path that is not a file's");
    require(!path.contains(QChar(0)), "a Trash note gave a path with a NUL");
}

std::span<const Target> all()
{
    static const std::array<Target, 17> targets = {{
        {"rle", rleBitmap},
        {"icon", icon},
        {"wmf", wmf},
        {"emf", emf},
        {"playlist", moviePlaylist},
        {"message_file", messageFile},
        {"mimeapps", mimeApps},
        {"thumbnail_cache", thumbnailCache},
        {"exif", exifThumbnail},
        {"metafile_answer", metafileAnswer},
        {"heif", heif},
        {"jxl", jpegXl},
        {"raw", raw},
        {"svg", svg},
        {"trash_info", trashInfo},
        {"icc_profile", iccProfile},
        {"jpeg_bands", jpegBands},
    }};
    return targets;
}

} // namespace FuzzTargets
