#include "platform/BandedJpegDecode.h"
#include "platform/ColourManagement.h"
#include "platform/JpegBandReader.h"
#include "platform/PictureLoader.h"

#include <QDirIterator>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

#include <cstring>
#include <utility>
#include <vector>

// Whole JPEGs with a colour profile are decoded in bands, each converted on
// another core while the next decodes: the same pixels as Qt's reader and
// the conversion after it, or no answer and Qt's reader after all.

namespace {

const QColorSpace Srgb(QColorSpace::SRgb);

PictureLoader::Options inSrgb()
{
    PictureLoader::Options options;
    options.colourSpace = Srgb;
    return options;
}

// What the loader gave before the bands: Qt's reader, turned upright, then converted.
QImage byQtThenConverted(const QString &path, const QColorSpace &target)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    QImage upright = reader.read();
    // Qt's turn drops the profile of a quarter-turned picture; the stored
    // picture still has it.
    upright.setColorSpace(QImageReader(path).read().colorSpace());
    return ColourManagement::converted(upright, {}, target);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The file with `profile` in an APP2 marker right after its start.
QByteArray withProfile(const QByteArray &jpeg, const QByteArray &profile)
{
    QByteArray segment = QByteArray("ICC_PROFILE", 12) + char(1) + char(1) + profile;
    char length[2];
    qToBigEndian<quint16>(quint16(segment.size() + 2), length);
    return jpeg.left(2) + QByteArray("\xFF\xE2", 2) + QByteArray(length, 2) + segment + jpeg.mid(2);
}

// A photo-like picture: smooth gradients and a few hard edges, tall enough for many bands.
QImage pattern(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        QRgb *line = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = qRgb(x * 255 / size.width(), y * 255 / size.height(), (x * 7 + y * 3) & 0xFF);
    }
    QPainter painter(&picture);
    painter.fillRect(QRect(QPoint(10, 10), size / 3), QColor(250, 20, 30));
    return picture;
}

QString writtenJpeg(const QTemporaryDir &dir, const char *name, const QByteArray &bytes)
{
    const QString path = dir.filePath(QLatin1String(name));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return {};
    return path;
}

void expectSamePicture(const QImage &actual, const QImage &expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    ASSERT_EQ(actual.format(), expected.format());
    EXPECT_EQ(actual.colorSpace(), expected.colorSpace());
    EXPECT_EQ(actual.dotsPerMeterX(), expected.dotsPerMeterX());
    EXPECT_EQ(actual.dotsPerMeterY(), expected.dotsPerMeterY());
    const size_t rowBytes = size_t(expected.width()) * size_t(expected.depth() / 8);
    for (int y = 0; y < expected.height(); ++y)
        ASSERT_EQ(0, std::memcmp(actual.constScanLine(y), expected.constScanLine(y), rowBytes)) << "row " << y;
}

} // namespace

TEST(BandedJpegDecode, ManyBandsGiveTheSamePixelsAsTheDecodeThenTheConversion)
{
    QTemporaryDir dir;
    const QImage picture = pattern(QSize(301, 20 * JpegBandReader::BandRows + 17));
    for (const QColorSpace &profile : {QColorSpace(QColorSpace::DisplayP3), QColorSpace(QColorSpace::AdobeRgb)}) {
        SCOPED_TRACE(profile.description().toStdString());
        QImage tagged = picture;
        tagged.setColorSpace(profile);
        tagged.setDotsPerMeterX(11811); // 300 dpi, which JPEG keeps in its own units
        tagged.setDotsPerMeterY(11811);
        const QString path = dir.filePath(QStringLiteral("tagged.jpg"));
        ASSERT_TRUE(tagged.save(path, "JPEG", 90));
        const QImage banded = BandedJpegDecode::decoded(readFile(path), {}, Srgb, PictureLoader::MaxPixels);
        ASSERT_FALSE(banded.isNull()) << "a plain colour JPEG with a profile is decoded in bands";
        expectSamePicture(banded, byQtThenConverted(path, Srgb));
        expectSamePicture(PictureLoader::load(path, inSrgb()).image, byQtThenConverted(path, Srgb));
    }
}

TEST(BandedJpegDecode, EveryCorpusJpegWithAProfileLoadsAsBefore)
{
    // Each real JPEG of the corpus (EXIF orientations, progressive, grey,
    // CMYK, truncated, broken) given a Display P3 profile: the loader must
    // show what Qt's reader and the conversion showed, whichever path it takes.
    QTemporaryDir dir;
    const QByteArray p3 = QColorSpace(QColorSpace::DisplayP3).iccProfile();
    int banded = 0, left = 0;
    QDirIterator files(QStringLiteral(VIMORA_CORPUS_DIR), {QStringLiteral("*.jpg"), QStringLiteral("*.jpeg")},
                       QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString original = files.next();
        SCOPED_TRACE(original.toStdString());
        const QByteArray bytes = readFile(original);
        if (!bytes.startsWith("\xFF\xD8"))
            continue;
        const QString path = writtenJpeg(dir, "profiled.jpg", withProfile(bytes, p3));
        ASSERT_FALSE(path.isEmpty());
        QImageReader reader(path);
        reader.setAutoTransform(true);
        const QImage fromBands =
            BandedJpegDecode::decoded(readFile(path), reader.transformation(), Srgb, PictureLoader::MaxPixels);
        (fromBands.isNull() ? left : banded) += 1;
        const QImage expected = byQtThenConverted(path, Srgb);
        if (!fromBands.isNull())
            expectSamePicture(fromBands, expected);
        const QImage loaded = PictureLoader::load(path, inSrgb()).image;
        ASSERT_EQ(loaded.isNull(), expected.isNull());
        if (!expected.isNull())
            expectSamePicture(loaded, expected);
    }
    EXPECT_GE(banded, 20) << "most colour JPEGs take the bands";
    EXPECT_GE(left, 10) << "grey, CMYK and damaged ones are left to Qt's reader";
}

TEST(BandedJpegDecode, OnlyWholeColourJpegsWithAConvertibleProfileTakeTheBands)
{
    QTemporaryDir dir;
    const QByteArray plain = [&] {
        const QString path = dir.filePath(QStringLiteral("plain.jpg"));
        pattern(QSize(200, 300)).save(path, "JPEG", 90);
        return readFile(path);
    }();
    const QByteArray p3 = withProfile(plain, QColorSpace(QColorSpace::DisplayP3).iccProfile());
    const auto decoded = [](const QByteArray &file, const QColorSpace &target = Srgb) {
        return BandedJpegDecode::decoded(file, {}, target, PictureLoader::MaxPixels);
    };
    EXPECT_FALSE(decoded(p3).isNull());
    EXPECT_TRUE(decoded(plain).isNull()) << "no profile: sRGB already, nothing to convert";
    EXPECT_TRUE(decoded(p3, QColorSpace(QColorSpace::DisplayP3)).isNull()) << "already in the screen's colours";
    EXPECT_TRUE(decoded(withProfile(plain, "not a profile at all")).isNull());
    EXPECT_TRUE(BandedJpegDecode::decoded(p3, {}, Srgb, 200 * 300 - 1).isNull()) << "past the pixel limit";
    EXPECT_TRUE(decoded(p3.left(p3.size() / 2)).isNull()) << "cut short: Qt's reader fills the rest its way";
    QByteArray damaged = p3;
    damaged[damaged.size() / 2] = char(0xFF); // a stray marker in the scan: a warning of libjpeg's
    damaged[damaged.size() / 2 + 1] = char(0xD3);
    EXPECT_TRUE(decoded(damaged).isNull());
    // A fitted picture (the window's usual case) is still scaled by Qt's reader before converting.
    const QString path = writtenJpeg(dir, "p3.jpg", p3);
    PictureLoader::Options fit;
    fit.fitInto = QSize(100, 100);
    fit.colourSpace = Srgb;
    EXPECT_EQ(PictureLoader::load(path, fit).image.size(), QSize(200, 300).scaled(100, 100, Qt::KeepAspectRatio));
}

TEST(JpegBandReader, HandsOutEveryRowOnceInOrderBeforeItReturns)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("tall.jpg"));
    ASSERT_TRUE(pattern(QSize(64, 5 * JpegBandReader::BandRows + 1)).save(path, "JPEG", 90));
    const QByteArray bytes = readFile(path);
    JpegBandReader reader(bytes, PictureLoader::MaxPixels);
    ASSERT_TRUE(reader.isReadable());
    EXPECT_TRUE(reader.iccProfile().isEmpty());
    std::vector<std::pair<int, int>> bands;
    const QImage stored = reader.read([&](uchar *, qsizetype, int first, int end) { bands.emplace_back(first, end); });
    const int rows = 5 * JpegBandReader::BandRows;
    const std::vector<std::pair<int, int>> expected = {
        {0, 64}, {64, 128}, {128, 192}, {192, 256}, {256, rows}, {rows, rows + 1}};
    EXPECT_EQ(bands, expected);
    EXPECT_EQ(stored.size(), QSize(64, rows + 1));
    EXPECT_TRUE(reader.read({}).isNull()) << "a reader decodes once";
    EXPECT_EQ(reader.size(), stored.size());
}
