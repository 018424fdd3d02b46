#include "index/ThumbnailCache.h"
#include "index/ThumbnailDecoder.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <gtest/gtest.h>

#include <utime.h>

namespace {

QString makeJpeg(const QString &folder, const QString &name, QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(QColor(30, 120, 200));
    const QString path = folder + '/' + name;
    picture.save(path, "JPG");
    return path;
}

void setMTime(const QString &path, time_t seconds)
{
    const utimbuf times{seconds, seconds};
    ::utime(QFile::encodeName(path).constData(), &times);
}

} // namespace

TEST(ThumbnailCache, NamesThumbnailsByTheMd5OfTheUri)
{
    // The worked example of the freedesktop thumbnail rules, so file managers share our files.
    ThumbnailCache cache("/cache/thumbnails");
    EXPECT_EQ(cache.thumbnailPath("/home/jens/photos/me.png", ThumbnailCache::Flavour::Normal),
              "/cache/thumbnails/normal/c6ee772d9e49320e97ec29a7eb5b1697.png");
    EXPECT_TRUE(cache.thumbnailPath("/a.png", ThumbnailCache::Flavour::Large).startsWith("/cache/thumbnails/large/"));
    // Spaces and non-ASCII letters are percent-encoded, as file managers do.
    EXPECT_EQ(ThumbnailCache::uriOf("/tmp/a b/città.jpg"), "file:///tmp/a%20b/citt%C3%A0.jpg");
    EXPECT_EQ(ThumbnailCache::flavourFor(QSize(87, 65)), ThumbnailCache::Flavour::Normal);
    EXPECT_EQ(ThumbnailCache::flavourFor(QSize(174, 130)), ThumbnailCache::Flavour::Large);
}

TEST(ThumbnailCache, WrittenThumbnailsAreReadBackUntilTheFileChanges)
{
    QTemporaryDir dir;
    ThumbnailCache cache(dir.path() + "/thumbnails");
    const QString picture = makeJpeg(dir.path(), "photo.jpg", QSize(400, 300));
    setMTime(picture, 1700000000);
    const QImage thumb = QImage(picture).scaled(128, 96);

    EXPECT_TRUE(cache.read(picture, ThumbnailCache::Flavour::Normal).isNull());
    ASSERT_TRUE(cache.write(picture, ThumbnailCache::Flavour::Normal, thumb, QSize(400, 300)));

    const QString written = cache.thumbnailPath(picture, ThumbnailCache::Flavour::Normal);
    const QImage onDisk(written);
    EXPECT_EQ(onDisk.text("Thumb::URI"), "file://" + picture);
    EXPECT_EQ(onDisk.text("Thumb::MTime"), "1700000000");
    EXPECT_EQ(QFileInfo(written).permissions() & (QFile::ReadGroup | QFile::ReadOther), 0);
    // Written atomically: nothing but the thumbnail is left behind.
    EXPECT_EQ(QDir(dir.path() + "/thumbnails/normal").entryList(QDir::Files).size(), 1);

    const ThumbnailCache::Entry entry = cache.read(picture, ThumbnailCache::Flavour::Normal);
    ASSERT_FALSE(entry.isNull());
    EXPECT_EQ(entry.image.size(), QSize(128, 96));
    EXPECT_EQ(entry.naturalSize, QSize(400, 300));

    setMTime(picture, 1700000001);
    EXPECT_TRUE(cache.read(picture, ThumbnailCache::Flavour::Normal).isNull()) << "a newer file makes it stale";
}

TEST(ThumbnailCache, ForeignBrokenAndMismatchedThumbnailsAreHandled)
{
    QTemporaryDir dir;
    ThumbnailCache cache(dir.path() + "/thumbnails");
    const QString picture = makeJpeg(dir.path(), "photo.jpg", QSize(200, 100));
    const QString target = cache.thumbnailPath(picture, ThumbnailCache::Flavour::Normal);
    QDir().mkpath(QFileInfo(target).absolutePath());

    // Another program's thumbnail, without the picture's size: used.
    QImage foreign(128, 64, QImage::Format_RGB32);
    foreign.fill(Qt::red);
    foreign.setText("Thumb::URI", QString::fromUtf8(ThumbnailCache::uriOf(picture)));
    foreign.setText("Thumb::MTime", QString::number(QFileInfo(picture).lastModified().toSecsSinceEpoch()));
    ASSERT_TRUE(foreign.save(target, "PNG"));
    const ThumbnailCache::Entry entry = cache.read(picture, ThumbnailCache::Flavour::Normal);
    ASSERT_FALSE(entry.isNull());
    EXPECT_FALSE(entry.naturalSize.isValid());

    // One recorded for another URI (a hash collision, a moved cache): not used.
    foreign.setText("Thumb::URI", "file:///elsewhere/photo.jpg");
    ASSERT_TRUE(foreign.save(target, "PNG"));
    EXPECT_TRUE(cache.read(picture, ThumbnailCache::Flavour::Normal).isNull());

    // A size that no longer matches, and a truncated PNG: not used.
    foreign.setText("Thumb::URI", QString::fromUtf8(ThumbnailCache::uriOf(picture)));
    foreign.setText("Thumb::Size", "1");
    ASSERT_TRUE(foreign.save(target, "PNG"));
    EXPECT_TRUE(cache.read(picture, ThumbnailCache::Flavour::Normal).isNull());
    QFile truncated(target);
    ASSERT_TRUE(truncated.open(QIODevice::ReadWrite));
    truncated.resize(40);
    truncated.close();
    EXPECT_TRUE(cache.read(picture, ThumbnailCache::Flavour::Normal).isNull());

    // No thumbnail for a missing file, nor of the cache's own files.
    EXPECT_FALSE(cache.write(dir.path() + "/gone.jpg", ThumbnailCache::Flavour::Normal, foreign, QSize(1, 1)));
    EXPECT_FALSE(cache.write(target, ThumbnailCache::Flavour::Normal, foreign, QSize(1, 1)));
}

TEST(ThumbnailDecoder, DecodesAtTheShownSizeAndFillsTheCache)
{
    QTemporaryDir dir;
    ThumbnailCache cache(dir.path() + "/thumbnails");
    const QString picture = makeJpeg(dir.path(), "big.jpg", QSize(2400, 1600));

    const ThumbnailDecoder::Result cold = ThumbnailDecoder::decode(cache, picture, QSize(87, 65));
    EXPECT_FALSE(cold.fromCache);
    EXPECT_EQ(cold.naturalSize, QSize(2400, 1600));
    EXPECT_EQ(cold.image.width(), 87);
    EXPECT_NEAR(cold.image.height(), 58, 1);
    EXPECT_TRUE(QFileInfo::exists(cache.thumbnailPath(picture, ThumbnailCache::Flavour::Normal)));
    EXPECT_EQ(QImage(cache.thumbnailPath(picture, ThumbnailCache::Flavour::Normal)).size(), QSize(128, 85));

    const ThumbnailDecoder::Result warm = ThumbnailDecoder::decode(cache, picture, QSize(87, 65));
    EXPECT_TRUE(warm.fromCache);
    EXPECT_EQ(warm.naturalSize, QSize(2400, 1600));
    EXPECT_EQ(warm.image.width(), 87);
    EXPECT_NEAR(warm.image.height(), 58, 1); // through the 128 x 85 thumbnail

    const ThumbnailDecoder::Result broken = ThumbnailDecoder::decode(cache, dir.path() + "/none.jpg", QSize(87, 65));
    EXPECT_TRUE(broken.image.isNull());
}

TEST(ThumbnailDecoder, CancelledRequestsReportNothing)
{
    QTemporaryDir dir;
    ThumbnailDecoder decoder(ThumbnailCache(dir.path() + "/thumbnails"));
    QStringList pictures;
    for (int i = 0; i < 6; ++i)
        pictures.append(makeJpeg(dir.path(), QString("p%1.jpg").arg(i), QSize(1600, 1200)));
    QSignalSpy ready(&decoder, &ThumbnailDecoder::thumbnailReady);
    QSignalSpy done(&decoder, &ThumbnailDecoder::allDone);

    for (int i = 0; i < 6; ++i)
        decoder.request(i, pictures[i], QSize(87, 65));
    decoder.cancel();
    decoder.request(0, pictures[0], QSize(87, 65)); // the newer page
    ASSERT_TRUE(done.wait(10000));
    decoder.waitForDone();
    QTest::qWait(50);
    ASSERT_EQ(ready.size(), 1);
    EXPECT_EQ(ready.first().first().value<ThumbnailDecoder::Result>().cell, 0);
    EXPECT_EQ(done.size(), 1);
}

TEST(ThumbnailCache, EntriesClaimingMoreThanTheyHoldAreNotDecoded)
{
    QTemporaryDir dir;
    ThumbnailCache cache(dir.path() + "/thumbnails");
    const QString picture = makeJpeg(dir.path(), "photo.jpg", QSize(600, 300));
    const QString target = cache.thumbnailPath(picture, ThumbnailCache::Flavour::Normal);
    QDir().mkpath(QFileInfo(target).absolutePath());
    const auto thumbnailBytes = [&](QSize size) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::blue);
        image.setText("Thumb::URI", QString::fromUtf8(ThumbnailCache::uriOf(picture)));
        image.setText("Thumb::MTime", QString::number(QFileInfo(picture).lastModified().toSecsSinceEpoch()));
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes;
    };
    // The length of the first text chunk (after the signature and IHDR).
    const auto withHugeChunk = [](QByteArray bytes) {
        const qsizetype text = bytes.indexOf("tEXt");
        if (text >= 4)
            qToBigEndian<quint32>(0x43000018, bytes.data() + text - 4);
        return bytes;
    };
    struct Case {
        const char *what;
        QByteArray bytes;
        bool used;
    };
    const Case cases[] = {
        {"an intact thumbnail", thumbnailBytes(QSize(128, 64)), true},
        {"larger than its flavour allows", thumbnailBytes(QSize(600, 300)), false},
        {"a chunk longer than the file", withHugeChunk(thumbnailBytes(QSize(128, 64))), false},
        {"no PNG at all", QByteArray("GIF89a") + QByteArray(100, '\0'), false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        QFile file(target);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(c.bytes);
        file.close();
        EXPECT_EQ(!cache.read(picture, ThumbnailCache::Flavour::Normal).isNull(), c.used);
    }
}
