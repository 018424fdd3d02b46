#include "platform/PictureLoader.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QtConcurrent>
#include <QtEndian>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <vector>

namespace {

QString corpusFile(const char *relative)
{
    return QStringLiteral(VIMORA_CORPUS_DIR "/") + QLatin1String(relative);
}

// Pixels where two pictures disagree: transparency must match, and opaque
// pixels must have exactly the same colour.
int differingPixels(QImage actual, QImage expected)
{
    actual = actual.convertToFormat(QImage::Format_ARGB32);
    expected = expected.convertToFormat(QImage::Format_ARGB32);
    if (actual.size() != expected.size())
        return actual.width() * actual.height() + 1;
    int differing = 0;
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            const QRgb a = actual.pixel(x, y);
            const QRgb e = expected.pixel(x, y);
            if (qAlpha(a) != qAlpha(e) || (qAlpha(a) != 0 && qRgb(qRed(a), qGreen(a), qBlue(a)) != qRgb(qRed(e), qGreen(e), qBlue(e))))
                ++differing;
        }
    }
    return differing;
}

// Mean difference per colour channel (0-255), for pictures that went
// through lossy compression.
double meanDifference(QImage a, QImage b)
{
    a = a.convertToFormat(QImage::Format_RGB32);
    b = b.convertToFormat(QImage::Format_RGB32);
    if (a.size() != b.size() || a.isNull())
        return 255;
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    }
    return sum / (3.0 * a.width() * a.height());
}

int countPixels(const QImage &image, const std::function<bool(QRgb)> &matches)
{
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
    int count = 0;
    for (int y = 0; y < pixels.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(pixels.constScanLine(y));
        count += int(std::count_if(line, line + pixels.width(), matches));
    }
    return count;
}

int transparentPixels(const QImage &image)
{
    return countPixels(image, [](QRgb pixel) { return qAlpha(pixel) == 0; });
}

// The smallest rectangle holding every pixel that is not fully transparent.
QRect drawnArea(const QImage &image)
{
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
    QRect area;
    for (int y = 0; y < pixels.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(pixels.constScanLine(y));
        const auto *end = line + pixels.width();
        const auto *first = std::find_if(line, end, [](QRgb pixel) { return qAlpha(pixel) != 0; });
        if (first == end)
            continue;
        const auto last = std::find_if(std::make_reverse_iterator(end), std::make_reverse_iterator(first),
                                       [](QRgb pixel) { return qAlpha(pixel) != 0; });
        area |= QRect(QPoint(int(first - line), y), QPoint(int(last.base() - line) - 1, y));
    }
    return area;
}

QString copied(const QTemporaryDir &folder, const QString &source, const QString &name)
{
    const QString target = folder.filePath(name);
    QFile::remove(target);
    return QFile::copy(source, target) ? target : QString();
}

QString written(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return {};
    return file.fileName();
}

void appendLittleEndian16(QByteArray &bytes, int value)
{
    char field[2];
    qToLittleEndian<quint16>(quint16(value), field);
    bytes.append(field, 2);
}

void appendLittleEndian32(QByteArray &bytes, quint32 value)
{
    char field[4];
    qToLittleEndian<quint32>(value, field);
    bytes.append(field, 4);
}

// A BMP file header and BITMAPINFOHEADER, with `pixelBytes` zero bytes after.
QByteArray bitmapHeader(qint32 width, qint32 height, int bits, quint32 compression, int pixelBytes)
{
    const int paletteBytes = bits <= 8 ? 4 << bits : 0;
    QByteArray bytes("BM");
    appendLittleEndian32(bytes, quint32(54 + paletteBytes + pixelBytes));
    appendLittleEndian32(bytes, 0);
    appendLittleEndian32(bytes, quint32(54 + paletteBytes));
    for (const quint32 field : {40u, quint32(width), quint32(height)})
        appendLittleEndian32(bytes, field);
    appendLittleEndian16(bytes, 1);
    appendLittleEndian16(bytes, bits);
    for (const quint32 field : {compression, quint32(pixelBytes), 2835u, 2835u, 0u, 0u})
        appendLittleEndian32(bytes, field);
    bytes.append(paletteBytes + pixelBytes, '\0');
    return bytes;
}

// One WMF record; parameters in file order.
QByteArray wmfRecord(int function, const std::vector<int> &parameters)
{
    QByteArray bytes;
    appendLittleEndian32(bytes, quint32(3 + parameters.size()));
    appendLittleEndian16(bytes, function);
    for (const int parameter : parameters)
        appendLittleEndian16(bytes, parameter);
    return bytes;
}

// A placeable WMF whose window is its frame, holding the given records.
QByteArray placeableWmf(const QRect &frame, int unitsPerInch, const QByteArray &drawing)
{
    constexpr int SetWindowOrg = 0x020B;
    constexpr int SetWindowExt = 0x020C;
    const QByteArray records = wmfRecord(SetWindowOrg, {frame.top(), frame.left()})
        + wmfRecord(SetWindowExt, {frame.height(), frame.width()}) + drawing + wmfRecord(0, {});
    QByteArray placeable;
    appendLittleEndian32(placeable, 0x9AC6CDD7);
    for (const int field : {0, frame.left(), frame.top(), frame.left() + frame.width(), frame.top() + frame.height(), unitsPerInch})
        appendLittleEndian16(placeable, field);
    appendLittleEndian32(placeable, 0);
    quint16 checksum = 0;
    for (int i = 0; i < 10; ++i)
        checksum ^= qFromLittleEndian<quint16>(placeable.constData() + 2 * i);
    appendLittleEndian16(placeable, checksum);
    QByteArray header;
    for (const int field : {1, 9, 0x0300})
        appendLittleEndian16(header, field);
    appendLittleEndian32(header, quint32((18 + records.size()) / 2));
    appendLittleEndian16(header, 0);
    appendLittleEndian32(header, 16);
    appendLittleEndian16(header, 0);
    return placeable + header + records;
}

constexpr int WmfRectangle = 0x041B;
constexpr int WmfLineTo = 0x0213;

} // namespace

TEST(PictureRleDecoding, MatchesTheSuiteReferenceWithSkippedPixelsTransparent)
{
    struct Case {
        const char *bitmap;
        const char *reference;
    };
    const Case cases[] = {
        {"pillow-tests/bmp/q/pal8rletrns.bmp", "bmpsuite-2.8/html/pal8rletrns.png"},
        {"pillow-tests/bmp/q/pal4rletrns.bmp", "bmpsuite-2.8/html/pal4rletrns.png"},
        {"bmpsuite-2.8/q/pal8rlecut.bmp", "bmpsuite-2.8/html/pal8rlecut.png"}, // early end of line and bitmap
        {"bmpsuite-2.8/q/pal4rlecut.bmp", "bmpsuite-2.8/html/pal4rlecut.png"},
        {"pillow-tests/bmp/g/pal8rle.bmp", "bmpsuite-2.8/html/pal8.png"},
        {"pillow-tests/bmp/g/pal4rle.bmp", "pillow-tests/bmp/g/pal4.bmp"}, // the same picture uncompressed
        // Top-down RLE is outside the format, yet written: it must not come out mirrored.
        {"bmptestsuite/questionable/rle8-height-negative.bmp", "bmptestsuite/valid/rle8-encoded-320x240.bmp"},
        {"bmptestsuite/questionable/rle4-height-negative.bmp", "bmptestsuite/valid/rle4-encoded-320x240.bmp"},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.bitmap);
        const PictureLoader::Picture picture = PictureLoader::load(corpusFile(test.bitmap));
        const QImage reference(corpusFile(test.reference));
        ASSERT_FALSE(reference.isNull());
        EXPECT_EQ(picture.naturalSize, reference.size());
        EXPECT_EQ(differingPixels(picture.image, reference), 0);
    }
}

TEST(PictureRleDecoding, TruncatedDataKeepsWhatWasDecoded)
{
    const char *const pairs[][2] = {
        {"bmptestsuite/corrupt/rle8-absolute-cropped.bmp", "bmptestsuite/valid/rle8-absolute-320x240.bmp"},
        {"bmptestsuite/corrupt/rle4-absolute-cropped.bmp", "bmptestsuite/valid/rle4-absolute-320x240.bmp"},
    };
    for (const auto &pair : pairs) {
        SCOPED_TRACE(pair[0]);
        const QImage cut = PictureLoader::load(corpusFile(pair[0])).image.convertToFormat(QImage::Format_ARGB32);
        const QImage whole = QImage(corpusFile(pair[1])).convertToFormat(QImage::Format_ARGB32);
        ASSERT_EQ(cut.size(), whole.size());
        const int missing = transparentPixels(cut);
        EXPECT_GT(missing, 0);
        EXPECT_LT(missing, cut.width() * cut.height());
        int wrong = 0;
        for (int y = 0; y < cut.height(); ++y)
            for (int x = 0; x < cut.width(); ++x)
                if (qAlpha(cut.pixel(x, y)) != 0 && cut.pixel(x, y) != whole.pixel(x, y))
                    ++wrong;
        EXPECT_EQ(wrong, 0);
    }
}

TEST(PictureLoading, ContentDecidesAndTheNameIsOnlyAHint)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    struct Case {
        const char *source;
        const char *name;
        QSize size;
    };
    const Case cases[] = {
        {"pillow-tests/bmp/q/pal8rletrns.bmp", "logo.rle", {127, 64}}, // RLE bitmaps go by .rle too
        {"pillow-tests/bmp/g/pal8.bmp", "plain.rle", {127, 64}},       // ... and an uncompressed one
        {"pillow-tests/hopper.jpg", "photo.bmp", {128, 128}},
        {"pillow-tests/bmp/g/rgb24.bmp", "picture.gif", {127, 64}},
        {"pillow-tests/deerstalker.cur", "cursor.jpg", {32, 32}},
        {"pillow-tests/python.ico", "icon.bmp", {48, 48}},
        {"libwmf/ant.wmf", "drawing.emf", {211, 137}},
        {"libemf2svg/emf/test-065.emf", "drawing.wmf", {96, 96}},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.name);
        const QString path = copied(folder, corpusFile(test.source), QString::fromLatin1(test.name));
        const PictureLoader::Picture picture = PictureLoader::load(path);
        EXPECT_EQ(picture.image.size(), test.size);
        EXPECT_EQ(PictureLoader::readNaturalSize(path), test.size);
    }
    const QString rle = folder.filePath(QStringLiteral("logo.rle"));
    EXPECT_EQ(differingPixels(PictureLoader::load(rle).image,
                              PictureLoader::load(corpusFile("pillow-tests/bmp/q/pal8rletrns.bmp")).image),
              0);
}

TEST(PictureLoading, FilesThatDoNotDecodeGiveANullPicture)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QString paths[] = {
        folder.filePath(QStringLiteral("missing.jpg")),
        written(folder, QStringLiteral("empty.bmp"), {}),
        written(folder, QStringLiteral("text.gif"), "GIF? no, just text"),
        corpusFile("file-format-fixtures/image/sample.wmf"),
    };
    for (const QString &path : paths) {
        SCOPED_TRACE(path.toStdString());
        const PictureLoader::Picture picture = PictureLoader::load(path);
        EXPECT_TRUE(picture.isNull());
        EXPECT_FALSE(picture.naturalSize.isValid());
    }
}

TEST(PictureExifOrientation, EveryOrientationShowsUpright)
{
    const QImage upright(corpusFile("pillow-tests/hopper.jpg"));
    ASSERT_FALSE(upright.isNull());
    for (int orientation = 2; orientation <= 8; ++orientation) {
        const QString path = corpusFile("pillow-tests/hopper_orientation_") + QString::number(orientation) + ".jpg";
        SCOPED_TRACE(path.toStdString());
        QImageReader storedReader(path);
        storedReader.setAutoTransform(false);
        const QImage stored = storedReader.read();
        // The stored pixels differ clearly from upright, so a match below means the turn was applied.
        ASSERT_GT(meanDifference(stored, upright), 40.0);
        EXPECT_LT(meanDifference(PictureLoader::load(path).image, upright), 8.0);
    }
}

TEST(PictureExifOrientation, TurnedPictureReportsItsUprightSize)
{
    const QString path = corpusFile("pillow-tests/orientation_rectangle.jpg");
    QImageReader reader(path);
    ASSERT_EQ(reader.size(), QSize(2, 1)); // stored landscape, shown portrait
    const PictureLoader::Picture picture = PictureLoader::load(path);
    EXPECT_EQ(picture.image.size(), QSize(1, 2));
    EXPECT_EQ(picture.naturalSize, QSize(1, 2));
    EXPECT_EQ(PictureLoader::readNaturalSize(path), QSize(1, 2));
}

TEST(PictureIcons, TheLargestImageIsShown)
{
    struct Case {
        const char *file;
        QSize size;
    };
    const Case cases[] = {
        {"pillow-tests/python.ico", {48, 48}}, // 16, 32, 48: the largest comes last
        {"pillow-tests/pillow.ico", {256, 256}},
        {"libgdiplus/test.ico", {256, 256}}, // a 256 DIB listed as 0x0, and a 48
        {"image-rs/images/ico/images/multiple_entries_with_different_bit_depth.ico", {48, 48}},
        {"image-rs/images/ico/images/lenient-bpp.ico", {256, 256}}, // directory depth out of range
        {"pillow-tests/deerstalker.cur", {32, 32}},
        {"pillow-tests/mask_1.cur", {1, 4}}, // a cursor whose listed length is 8 bytes
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.file);
        const PictureLoader::Picture picture = PictureLoader::load(corpusFile(test.file));
        EXPECT_EQ(picture.image.size(), test.size);
        EXPECT_EQ(picture.naturalSize, test.size);
        EXPECT_LT(transparentPixels(picture.image), test.size.width() * test.size.height());
    }
}

TEST(PictureIcons, DamagedDirectoriesAreRefused)
{
    const char *const files[] = {
        "pillow-tests/no_cursors.cur",
        "pillow-tests/hopper_unexpected.ico",                       // listed 16x32, holds 16x16
        "image-rs/bad/ico/Bad_smile-incorrect-image-length.ico",    // listed length too short for the picture
        "image-rs/regression/ico/oom-0d0085eb7f66ea55d9119206235cd29e089b9140.ico", // PNG claims 469762080 wide
        "pillow-tests/decompression_bomb.ico",
    };
    for (const char *file : files) {
        SCOPED_TRACE(file);
        EXPECT_TRUE(PictureLoader::load(corpusFile(file)).isNull());
    }
}

TEST(PictureMetafiles, DrawnAtTheirNaturalSize)
{
    struct Case {
        const char *file;
        QSize size;
    };
    const Case cases[] = {
        {"libwmf/2doorvan.wmf", {318, 116}},          // (-8,-8)-(1897,684) at 575 per inch: 1905 x 692 * 96/575
        {"apache-poi/slideshow/santa.wmf", {181, 194}}, // (-1821,-2387)-(64,-365) at 1000 per inch
        {"libgdiplus/test.wmf", {770, 649}},           // (-4008,-3378)-(4008,3378) at 1000 per inch
        {"libwmf/fjftest.wmf", {794, 1123}},           // frame far from the origin: 8268 x 11693 at 1000
        {"libemf2svg/emf/test-065.emf", {96, 96}},     // a one-inch square
        {"libemf2svg/emf/test-116.emf", {863, 468}},   // frame 22825 x 12383 hundredths of a millimetre
        {"libemf2svg/emf/test-041.emf", {1123, 794}},  // A4 landscape, frame with negative y
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.file);
        const PictureLoader::Picture picture = PictureLoader::load(corpusFile(test.file));
        EXPECT_EQ(picture.naturalSize, test.size);
        EXPECT_EQ(picture.image.size(), test.size);
        EXPECT_EQ(PictureLoader::readNaturalSize(corpusFile(test.file)), test.size);
        EXPECT_LT(transparentPixels(picture.image), test.size.width() * test.size.height() * 95 / 100);
    }
    // A standard WMF has no frame in its header: its size comes from what it draws.
    const PictureLoader::Picture standard = PictureLoader::load(corpusFile("libwmf/p0000001.wmf"));
    EXPECT_FALSE(standard.isNull());
    EXPECT_EQ(standard.image.size(), standard.naturalSize);
}

TEST(PictureMetafiles, DrawingFillsTheFrame)
{
    // Frames offset from the origin or holding negative coordinates: the
    // drawing must be placed and scaled into the picture, not cut off.
    const char *const files[] = {"libemf2svg/emf/test-023.emf", "libemf2svg/emf/test-092.emf",
                                 "apache-poi/slideshow/wrench.emf", "apache-poi/slideshow/santa.wmf",
                                 "libwmf/arrow01.wmf"};
    for (const char *file : files) {
        SCOPED_TRACE(file);
        const QImage image = PictureLoader::load(corpusFile(file)).image;
        const QRect drawn = drawnArea(image);
        EXPECT_GE(drawn.width(), image.width() * 9 / 10);
        EXPECT_GE(drawn.height(), image.height() * 9 / 10);
    }
}

TEST(PictureMetafiles, ColoursAreExact)
{
    // #FA9493 is no SVG colour name: a device that rounds to names loses it.
    const QImage arrow = PictureLoader::load(corpusFile("libwmf/arrow01.wmf")).image;
    EXPECT_GT(countPixels(arrow, [](QRgb pixel) { return pixel == qRgb(0xFA, 0x94, 0x93); }), 1000);
}

TEST(PictureMetafiles, FitIntoDrawsSmallerAndKeepsTheNaturalSize)
{
    PictureLoader::Options options;
    options.fitInto = QSize(200, 200);
    for (const char *file : {"libwmf/fjftest.wmf", "libemf2svg/emf/test-041.emf"}) {
        SCOPED_TRACE(file);
        const PictureLoader::Picture full = PictureLoader::load(corpusFile(file));
        const PictureLoader::Picture small = PictureLoader::load(corpusFile(file), options);
        EXPECT_EQ(small.naturalSize, full.naturalSize);
        EXPECT_EQ(small.image.size(), full.naturalSize.scaled(200, 200, Qt::KeepAspectRatio));
        EXPECT_LT(transparentPixels(small.image), small.image.width() * small.image.height());
    }
}

TEST(PictureMetafiles, AbsurdExtentIsDrawnNoLargerThanTheCap)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    // 32000 units at one unit per inch: three million pixels a side.
    const QByteArray wmf = placeableWmf(QRect(0, 0, 32000, 16000), 1, wmfRecord(WmfRectangle, {12000, 24000, 4000, 8000}));
    const QString path = written(folder, QStringLiteral("huge.wmf"), wmf);
    const PictureLoader::Picture picture = PictureLoader::load(path);
    EXPECT_EQ(picture.naturalSize, QSize(32000 * 96, 16000 * 96));
    EXPECT_EQ(picture.image.size(), QSize(PictureLoader::MaxMetafileSide, PictureLoader::MaxMetafileSide / 2));
    // The rectangle covers the middle half of the frame.
    const QRect drawn = drawnArea(picture.image);
    EXPECT_NEAR(drawn.left(), PictureLoader::MaxMetafileSide / 4, 2);
    EXPECT_NEAR(drawn.right(), PictureLoader::MaxMetafileSide * 3 / 4, 2);
}

TEST(PictureMetafiles, SlowFileIsAbandonedWithinItsTimeLimit)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    QByteArray lines;
    for (int i = 0; i < 300000; ++i)
        lines += wmfRecord(WmfLineTo, {(i * 7) % 1000, (i * 13) % 1000});
    const QString path = written(folder, QStringLiteral("slow.wmf"), placeableWmf(QRect(0, 0, 1000, 1000), 96, lines));
    PictureLoader::Options options;
    options.metafileTimeLimitMs = 100;
    QElapsedTimer clock;
    clock.start();
    EXPECT_TRUE(PictureLoader::load(path, options).isNull());
    EXPECT_LT(clock.elapsed(), 2000);
}

namespace {

// Our child of that name, or 0.
pid_t childNamed(const QString &name)
{
    for (const QString &entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(entry));
        if (!stat.open(QIODevice::ReadOnly))
            continue;
        const QString fields = QString::fromLatin1(stat.readAll());
        const qsizetype nameEnd = fields.lastIndexOf(')');
        const QStringList after = fields.mid(nameEnd + 2).split(' ');
        if (fields.mid(fields.indexOf('(') + 1, nameEnd - fields.indexOf('(') - 1) == name && after.size() > 1
            && after[1].toInt() == ::getpid())
            return entry.toInt();
    }
    return 0;
}

QString linkOf(const QString &path)
{
    char target[4096];
    const ssize_t length = ::readlink(QFile::encodeName(path).constData(), target, sizeof target);
    return length > 0 ? QString::fromLocal8Bit(target, length) : QString();
}

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
}

} // namespace

// The parsers run in a program that holds nothing of ours and limits itself
// before it reads the file.
TEST(PictureMetafiles, TheHelperHoldsOnlyItsSocketAndLimitsItself)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    QByteArray lines;
    for (int i = 0; i < 1'000'000; ++i)
        lines += wmfRecord(WmfLineTo, {(i * 7) % 1000, (i * 13) % 1000});
    const QString path = written(folder, QStringLiteral("slow.wmf"), placeableWmf(QRect(0, 0, 1000, 1000), 96, lines));
    // Open without close-on-exec, as a library might: a plain fork and exec hands it on.
    const QString secret = written(folder, QStringLiteral("secret"), "ours");
    const int ours = ::open(QFile::encodeName(secret).constData(), O_RDONLY);
    ASSERT_GE(ours, 0);

    PictureLoader::Options options;
    options.metafileTimeLimitMs = 20000;
    QFuture<PictureLoader::Picture> loading = QtConcurrent::run([&] { return PictureLoader::load(path, options); });
    pid_t helper = 0;
    QString limits;
    const QRegularExpression cpuLimited(QStringLiteral(R"(Max cpu time\s+21\s+22\s)"));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            helper = helper ? helper : childNamed(QStringLiteral("vimora-metafile"));
            limits = helper ? readText(QStringLiteral("/proc/%1/limits").arg(helper)) : QString();
            return cpuLimited.match(limits).hasMatch();
        },
        10000));
    ASSERT_GT(helper, 0);
    EXPECT_TRUE(limits.contains(QRegularExpression(QStringLiteral(R"(Max file size\s+0\s+0\s)")))) << limits.toStdString();
    EXPECT_TRUE(limits.contains(QRegularExpression(QStringLiteral(R"(Max core file size\s+0\s+0\s)"))));
    EXPECT_TRUE(limits.contains(QRegularExpression(QStringLiteral(R"(Max open files\s+128\s+128\s)"))));
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(helper));
    for (const QString &descriptor : descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        const QString target = linkOf(descriptors.filePath(descriptor));
        EXPECT_NE(target, QFileInfo(secret).canonicalFilePath()) << "descriptor " << descriptor.toStdString();
        if (descriptor == QLatin1String("0") || descriptor == QLatin1String("1")) {
            EXPECT_TRUE(target.startsWith(QLatin1String("socket:"))) << target.toStdString();
        }
    }
    ::close(ours);
    ::kill(helper, SIGKILL); // a helper that dies gives no picture
    EXPECT_TRUE(loading.result().isNull());
}

TEST(PictureSafety, HugeHeadersAreRefusedBeforeAllocating)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QString paths[] = {
        written(folder, QStringLiteral("huge24.bmp"), bitmapHeader(60000, 60000, 24, 0, 64)),
        written(folder, QStringLiteral("huge-rle8.bmp"), bitmapHeader(60000, 60000, 8, 1, 2)),
        corpusFile("jpeg-decoder/crashtest/images/max_size.jpg"), // 65535 x 65535
        corpusFile("pygif-test-suite/max-size.gif"),
    };
    for (const QString &path : paths) {
        SCOPED_TRACE(path.toStdString());
        QElapsedTimer clock;
        clock.start();
        EXPECT_TRUE(PictureLoader::load(path).isNull());
        EXPECT_LT(clock.elapsed(), 1000);
    }
}

TEST(PictureSafety, FiftyMegapixelPhotoLoadsAtFullSizeAndScaledForThumbnails)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QString path = folder.filePath(QStringLiteral("big.jpg"));
    {
        QImage photo(8000, 6250, QImage::Format_RGB32); // 200 MB as 32-bit pixels, past Qt's default limit
        photo.fill(qRgb(40, 90, 160));
        ASSERT_TRUE(photo.save(path, "JPEG", 20));
    }
    EXPECT_EQ(PictureLoader::load(path).image.size(), QSize(8000, 6250));

    PictureLoader::Options thumbnail;
    thumbnail.fitInto = QSize(400, 400);
    const PictureLoader::Picture small = PictureLoader::load(path, thumbnail);
    EXPECT_EQ(small.naturalSize, QSize(8000, 6250));
    EXPECT_EQ(small.image.size(), QSize(400, 312));
}

TEST(PictureLoading, FitIntoKeepsProportionsAndNeverEnlarges)
{
    PictureLoader::Options options;
    options.fitInto = QSize(100, 100);
    const PictureLoader::Picture jpeg = PictureLoader::load(corpusFile("libjpeg-turbo/testorig.jpg"), options);
    EXPECT_EQ(jpeg.naturalSize, QSize(227, 149));
    EXPECT_EQ(jpeg.image.size(), QSize(227, 149).scaled(100, 100, Qt::KeepAspectRatio));
    const PictureLoader::Picture rle = PictureLoader::load(corpusFile("pillow-tests/bmp/g/pal8rle.bmp"), options);
    EXPECT_EQ(rle.image.size(), QSize(127, 64).scaled(100, 100, Qt::KeepAspectRatio));

    options.fitInto = QSize(1000, 1000);
    EXPECT_EQ(PictureLoader::load(corpusFile("libjpeg-turbo/testorig.jpg"), options).image.size(), QSize(227, 149));
}

TEST(PictureLoading, AsynchronousLoadGivesTheSamePicture)
{
    const QString path = corpusFile("libwmf/ant.wmf");
    QFuture<PictureLoader::Picture> pending = PictureLoader::loadAsync(path);
    const PictureLoader::Picture direct = PictureLoader::load(path);
    const PictureLoader::Picture later = pending.result();
    EXPECT_EQ(later.naturalSize, direct.naturalSize);
    EXPECT_EQ(differingPixels(later.image, direct.image), 0);
}

TEST(PictureLoading, APartOfAnUprightJpegIsCutAndOtherPicturesComeWhole)
{
    PictureLoader::Options options;
    options.part = QRect(100, 40, 80, 60);
    const QString jpeg = corpusFile("libjpeg-turbo/testorig.jpg");
    const PictureLoader::Picture part = PictureLoader::load(jpeg, options);
    EXPECT_EQ(part.naturalSize, QSize(227, 149));
    EXPECT_EQ(part.part, options.part);
    ASSERT_EQ(part.image.size(), QSize(80, 60));
    EXPECT_LT(meanDifference(part.image, PictureLoader::load(jpeg).image.copy(options.part)), 3.0);

    // Reaching past the edge: cut at the edge.
    options.part = QRect(200, 100, 100, 100);
    EXPECT_EQ(PictureLoader::load(jpeg, options).part, QRect(200, 100, 27, 49));

    // A turned JPEG's stored rows are not the shown ones, and a BMP has no partial decoding: both whole.
    options.part = QRect(0, 0, 10, 10);
    const PictureLoader::Picture turned =
        PictureLoader::load(corpusFile("pillow-tests/hopper_orientation_6.jpg"), options);
    EXPECT_FALSE(turned.part.isValid());
    EXPECT_EQ(turned.image.size(), turned.naturalSize);
    const PictureLoader::Picture bitmap = PictureLoader::load(corpusFile("pillow-tests/bmp/g/pal8rle.bmp"), options);
    EXPECT_FALSE(bitmap.part.isValid());
    EXPECT_EQ(bitmap.image.size(), QSize(127, 64));
}
