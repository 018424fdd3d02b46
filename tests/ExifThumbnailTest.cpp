#include "index/ExifThumbnail.h"
#include "index/ThumbnailDecoder.h"
#include "platform/PictureLoader.h"

#include <QBuffer>
#include <QFile>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

namespace {

QByteArray jpegOf(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", 95);
    return bytes;
}

// A TIFF writer just big enough for IFD0 (orientation) and IFD1 (thumbnail).
class TiffBytes {
public:
    explicit TiffBytes(bool little) : m_little(little) { m_bytes = little ? QByteArray("II*\0", 4) : QByteArray("MM\0*", 4); }
    void u16(quint16 v)
    {
        char raw[2];
        m_little ? qToLittleEndian(v, raw) : qToBigEndian(v, raw);
        m_bytes.append(raw, 2);
    }
    void u32(quint32 v)
    {
        char raw[4];
        m_little ? qToLittleEndian(v, raw) : qToBigEndian(v, raw);
        m_bytes.append(raw, 4);
    }
    void entry(quint16 tag, quint16 type, quint32 value)
    {
        u16(tag);
        u16(type);
        u32(1);
        if (type == 3) {
            u16(quint16(value));
            u16(0);
        } else {
            u32(value);
        }
    }
    QByteArray m_bytes;

private:
    bool m_little;
};

struct ExifParts {
    int orientation = 1;
    QByteArray thumbnail;
    bool little = true;
    quint32 compression = 6;
    qint64 offsetShift = 0;  // added to the thumbnail's offset, to forge it
    bool loopBack = false;   // IFD1 offset pointing at IFD0
};

QByteArray withExif(const QByteArray &jpeg, const ExifParts &parts)
{
    TiffBytes tiff(parts.little);
    tiff.u32(8);
    tiff.u16(1);
    tiff.entry(0x0112, 3, quint32(parts.orientation));
    tiff.u32(parts.loopBack ? 8 : 26);
    tiff.u16(3);
    tiff.entry(0x0103, 3, parts.compression);
    tiff.entry(0x0201, 4, quint32(68 + parts.offsetShift));
    tiff.entry(0x0202, 4, quint32(parts.thumbnail.size()));
    tiff.u32(0);
    const QByteArray payload = QByteArray("Exif\0\0", 6) + tiff.m_bytes + parts.thumbnail;
    QByteArray segment("\xFF\xE1", 2);
    char length[2];
    qToBigEndian(quint16(payload.size() + 2), length);
    segment.append(length, 2).append(payload);
    return jpeg.left(2) + segment + jpeg.mid(2);
}

// Four quadrants of different colours, so any turn or mirror shows.
QImage quadrants(QSize size, int level)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    const int w = size.width() / 2, h = size.height() / 2;
    painter.fillRect(0, 0, w, h, QColor(level, 0, 0));
    painter.fillRect(w, 0, size.width() - w, h, QColor(0, level, 0));
    painter.fillRect(0, h, w, size.height() - h, QColor(0, 0, level));
    painter.fillRect(w, h, size.width() - w, size.height() - h, QColor(level, level, level));
    return image;
}

QString writeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    QFile file(dir.filePath(name));
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return file.fileName();
}

bool near(QColor a, QColor b)
{
    return std::abs(a.red() - b.red()) < 24 && std::abs(a.green() - b.green()) < 24 && std::abs(a.blue() - b.blue()) < 24;
}

} // namespace

TEST(ExifThumbnailFind, ReadsTheThumbnailAndOrientationInEitherByteOrder)
{
    const QByteArray main = jpegOf(quadrants(QSize(64, 48), 255));
    const QByteArray thumb = jpegOf(quadrants(QSize(32, 24), 128));
    for (const bool little : {true, false}) {
        const ExifThumbnail::Found found = ExifThumbnail::find(withExif(main, {6, thumb, little}));
        EXPECT_EQ(found.jpeg, thumb) << little;
        EXPECT_EQ(found.orientation, 6) << little;
    }
    const ExifThumbnail::Found plain = ExifThumbnail::find(main);
    EXPECT_TRUE(plain.jpeg.isEmpty());
    EXPECT_EQ(plain.orientation, 1);
}

TEST(ExifThumbnailFind, ForgedStructuresGiveNoThumbnail)
{
    const QByteArray main = jpegOf(quadrants(QSize(64, 48), 255));
    const QByteArray thumb = jpegOf(quadrants(QSize(32, 24), 128));
    const ExifParts forged[] = {
        {1, thumb, true, 1, 0, false},   // stored uncompressed
        {1, thumb, true, 6, 1, false},   // offset one past: runs over the end
        {1, thumb, true, 6, -60, false}, // offset inside the IFDs: not a JPEG stream
        {1, thumb, true, 6, 0, true},    // IFD1 is IFD0 again
        {9, "xx", true, 6, 0, false},    // no JPEG at all; orientation out of range
    };
    for (const ExifParts &parts : forged) {
        const ExifThumbnail::Found found = ExifThumbnail::find(withExif(main, parts));
        EXPECT_TRUE(found.jpeg.isEmpty()) << parts.offsetShift;
        EXPECT_GE(found.orientation, 1);
        EXPECT_LE(found.orientation, 8);
    }
    EXPECT_TRUE(ExifThumbnail::find("not a jpeg").jpeg.isEmpty());
}

TEST(ExifThumbnailFind, TruncatedAndDamagedInputIsSafe)
{
    const QByteArray whole = withExif(jpegOf(quadrants(QSize(64, 48), 255)), {3, jpegOf(quadrants(QSize(32, 24), 128))});
    const qsizetype exifEnd = whole.indexOf("\xFF\xD8", 4) + 2000;
    for (qsizetype n = 0; n < exifEnd; ++n) {
        const ExifThumbnail::Found found = ExifThumbnail::find(whole.left(n));
        EXPECT_TRUE(found.jpeg.isEmpty() || ExifThumbnail::find(whole).jpeg == found.jpeg) << n; // never a part
    }
    QRandomGenerator random(7);
    for (int round = 0; round < 3000; ++round) {
        QByteArray damaged = whole.left(exifEnd);
        for (int i = 0; i < 4; ++i)
            damaged[2 + random.bounded(int(200))] = char(random.bounded(256)); // the segment header and IFDs
        const ExifThumbnail::Found found = ExifThumbnail::find(damaged);
        EXPECT_TRUE(found.orientation >= 1 && found.orientation <= 8) << round;
        EXPECT_TRUE(found.jpeg.isEmpty() || damaged.contains(found.jpeg)) << round;
    }
}

TEST(ExifThumbnailRules, LargeEnoughWithThePicturesProportions)
{
    struct Case {
        QSize thumb, picture;
        int side;
        bool standsFor;
    };
    const Case cases[] = {
        {{160, 120}, {4000, 3000}, 128, true},
        {{160, 120}, {4000, 3000}, 256, false}, // smaller than a large thumbnail
        {{160, 106}, {6000, 4000}, 128, true},  // 106.7 rounds down: within a pixel
        {{160, 120}, {6000, 4000}, 128, false}, // black bars of a 4:3 frame
        {{120, 160}, {4000, 3000}, 128, false}, // turned the other way
        {{100, 50}, {100, 50}, 128, true},      // a picture smaller than the thumbnail
        {{80, 40}, {100, 50}, 128, false},
        {{512, 384}, {4000, 3000}, 256, true},
        {{0, 0}, {4000, 3000}, 128, false},
        {{160, 120}, {0, 0}, 128, false},
    };
    for (const Case &c : cases)
        EXPECT_EQ(ExifThumbnail::standsFor(c.thumb, c.picture, c.side), c.standsFor)
            << c.thumb.width() << "x" << c.thumb.height() << " for " << c.picture.width() << "x" << c.picture.height();
}

TEST(ExifThumbnailDecoding, UsedTurnedAsThePictureIsForEveryOrientation)
{
    QTemporaryDir dir;
    ThumbnailCache cache(dir.filePath("thumbnails"));
    // The thumbnail is darker than the picture, to tell which one was used.
    const QByteArray main = jpegOf(quadrants(QSize(1200, 800), 255));
    const QByteArray thumb = jpegOf(quadrants(QSize(300, 200), 128));
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const QString path = writeFile(dir, QStringLiteral("o%1.jpg").arg(orientation), withExif(main, {orientation, thumb}));
        PictureLoader::Options options;
        options.fitInto = QSize(128, 128);
        const PictureLoader::Picture picture = PictureLoader::load(path, options);
        const ThumbnailDecoder::Result result = ThumbnailDecoder::decode(cache, path, QSize(128, 128));
        ASSERT_EQ(result.image.size(), picture.image.size()) << orientation;
        EXPECT_EQ(result.naturalSize, picture.naturalSize) << orientation;
        const int w = result.image.width(), h = result.image.height();
        for (const QPoint at : {QPoint(w / 4, h / 4), QPoint(3 * w / 4, h / 4), QPoint(w / 4, 3 * h / 4)}) {
            const QColor full = picture.image.pixelColor(at);
            const QColor expected(full.red() / 2, full.green() / 2, full.blue() / 2);
            EXPECT_TRUE(near(result.image.pixelColor(at), expected))
                << "orientation " << orientation << " at " << at.x() << "," << at.y();
        }
    }
}

TEST(ExifThumbnailDecoding, PictureDecodedWhenTheThumbnailDoesNotFit)
{
    QTemporaryDir dir;
    ThumbnailCache cache(dir.filePath("thumbnails"));
    const QByteArray main = jpegOf(quadrants(QSize(1200, 800), 255));
    const struct {
        const char *name;
        QSize thumb;
        QSize box;
    } cases[] = {
        {"small.jpg", {150, 100}, {256, 256}},   // below a large thumbnail
        {"barred.jpg", {160, 120}, {128, 128}},  // other proportions
    };
    for (const auto &c : cases) {
        const QString path = writeFile(dir, c.name, withExif(main, {1, jpegOf(quadrants(c.thumb, 128))}));
        const ThumbnailDecoder::Result result = ThumbnailDecoder::decode(cache, path, c.box);
        EXPECT_TRUE(near(result.image.pixelColor(2, 2), QColor(255, 0, 0))) << c.name;
    }
}
