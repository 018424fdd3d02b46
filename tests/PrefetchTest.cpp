#include "support/HangingFile.h"
#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "platform/PictureLoader.h"
#include "context/PicturePrefetch.h"
#include "context/PrefetchRules.h"

#include <QFile>
#include <QPainter>
#include <QImage>
#include <QElapsedTimer>
#include <QTemporaryDir>

namespace {

constexpr int DecodeLimitMs = 10000;

struct HoldCase {
    int current;
    int upperBound;
    bool slideshow;
    QList<int> positions;
};

QString savePicture(const QString &path, QSize size, QColor colour)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    picture.save(path);
    return path;
}

QColor colourOf(int i) { return QList<QColor>{Qt::red, Qt::green, Qt::blue, Qt::yellow, Qt::cyan}.at(i); }

QColor shownColour(const frmMain &window) { return ui(window).ImgEgg->picture().pixelColor(0, 0); }

} // namespace

TEST(PrefetchRules, HoldsTheShownPictureAndItsNeighbours)
{
    const HoldCase cases[] = {
        {0, 9, false, {0, 1}},       // the first: nothing before it
        {4, 9, false, {4, 5, 3}},    // next first, then previous
        {9, 9, false, {9, 8}},       // the last: Next does not wrap
        {9, 9, true, {9, 0, 8}},     // in a slideshow it does
        {0, 0, true, {0}},           // one file is its own next
        {0, 1, true, {0, 1}},        // two: the next is also the previous
        {-1, 9, false, {}},          // right after a load
        {10, 9, false, {}},          // a stale index
    };
    for (const HoldCase &c : cases)
        EXPECT_EQ(PrefetchRules::positionsToHold(c.current, c.upperBound, c.slideshow), c.positions)
            << c.current << " of " << c.upperBound;
}

TEST(PrefetchRules, OnlyPicturesDecodedHereAreHeld)
{
    EXPECT_EQ(PrefetchRules::namesToHold({"a.jpg", "b.avi", "c.BMP", "d.wmf"}, 1, false), QStringList({"c.BMP", "a.jpg"}));
    EXPECT_EQ(PrefetchRules::namesToHold({"a.emf", "b.gif", "c.pps"}, 1, false), QStringList({"b.gif"}));
    EXPECT_TRUE(PrefetchRules::namesToHold({QString()}, 0, false).isEmpty()); // an empty list
}

TEST(PrefetchRules, JpegDecodesAtTheExactDctScaleThatCoversTheFit)
{
    const struct {
        QSize natural, fit, bound;
    } cases[] = {
        {{6000, 4000}, {1280, 1024}, {1500, 1000}}, // 1/4 covers 1280 x 853
        {{6000, 4000}, {1600, 1200}, {2250, 1500}}, // 1/4 is short: 3/8
        {{4000, 3000}, {1000, 800}, {1000, 750}},   // 1/4 is the fit itself
        {{4032, 3024}, {1280, 1024}, {1512, 1134}},
        {{4001, 3000}, {1280, 1024}, {1280, 1024}}, // no exact scale: as before
        {{800, 600}, {1280, 1024}, {1280, 1024}},   // fits already
        {{6000, 4000}, {}, {}},                     // no fit asked
    };
    for (const auto &c : cases)
        EXPECT_EQ(PrefetchRules::jpegFitBound(c.natural, c.fit), c.bound) << c.natural.width() << "x" << c.natural.height();
}

TEST(PicturePrefetch, GivesWhatTheLoaderGivesIncludingBadFiles)
{
    QTemporaryDir dir;
    const QString large = savePicture(dir.filePath("large.jpg"), QSize(1600, 1200), Qt::darkCyan);
    const QString bad = dir.filePath("bad.jpg");
    QFile file(bad);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a picture at all");
    file.close();

    PicturePrefetch prefetch;
    prefetch.hold({large, bad, dir.filePath("missing.jpg")}, PicturePrefetch::Target::fitted(QSize(400, 300)));
    prefetch.waitForIdle();
    EXPECT_EQ(prefetch.heldCount(), 2); // nothing to hold for a missing file

    PictureLoader::Options options;
    options.fitInto = QSize(400, 300);
    const PictureLoader::Picture direct = PictureLoader::load(large, options);
    const PictureLoader::Picture held = prefetch.obtain(large, PicturePrefetch::Target::fitted(QSize(400, 300)), DecodeLimitMs);
    EXPECT_EQ(held.image, direct.image);
    EXPECT_EQ(held.naturalSize, QSize(1600, 1200));
    EXPECT_TRUE(prefetch.obtain(bad, PicturePrefetch::Target::fitted(QSize(400, 300)), DecodeLimitMs).isNull());
    EXPECT_EQ(prefetch.hits(), 2);

    // Another window size is another picture.
    EXPECT_EQ(prefetch.obtain(large, PicturePrefetch::Target::fitted(QSize(200, 150)), DecodeLimitMs).image.size(), QSize(200, 150));
    EXPECT_EQ(prefetch.hits(), 2);
}

TEST(PicturePrefetch, APipeNamedLikeAPictureIsNeverDecodedAheadNorWaitedForBeyondTheLimit)
{
    QTemporaryDir dir;
    const HangingFile hanging(dir.filePath(QStringLiteral("hang.jpg")));
    ASSERT_TRUE(hanging.made);
    const QString &pipe = hanging.path;

    PicturePrefetch prefetch;
    prefetch.hold({pipe}, PicturePrefetch::Target::fitted(QSize(400, 300)));
    EXPECT_EQ(prefetch.heldCount(), 0); // a worker blocked on it would never come back

    QElapsedTimer clock;
    clock.start();
    EXPECT_TRUE(prefetch.obtain(pipe, PicturePrefetch::Target::fitted(QSize(400, 300)), 300).isNull());
    EXPECT_LT(clock.elapsed(), 3000);
    EXPECT_EQ(prefetch.heldCount(), 0);
}

TEST(PicturePrefetch, DropsWhatIsNoLongerWanted)
{
    QTemporaryDir dir;
    QStringList paths;
    for (int i = 0; i < 6; ++i)
        paths.append(savePicture(dir.filePath(QStringLiteral("p%1.bmp").arg(i)), QSize(64, 48), Qt::red));
    PicturePrefetch prefetch;
    for (int i = 1; i < 5; ++i)
        prefetch.hold(paths.mid(i - 1, 3), PicturePrefetch::Target::fitted(QSize(32, 24))); // walking along
    EXPECT_EQ(prefetch.heldCount(), 3);
    prefetch.hold({}, {});
    EXPECT_EQ(prefetch.heldCount(), 0);
}

class MainWindowPrefetch : public ::testing::Test {
protected:
    void SetUp() override
    {
        folder = fixture.makeFolder("walk");
        for (int i = 0; i < 5; ++i)
            savePicture(folder + QStringLiteral("/p%1.bmp").arg(i), QSize(40, 30), colourOf(i));
        fixture.settings().write("UserDef", "Language", "EN");
        frmMain &window = fixture.start(folder + "/p0.bmp");
        window.mnufit_Click();
        window.Mostra_Image(false, "p0.bmp");
        window.prefetch().waitForIdle();
    }
    MainWindowFixture fixture;
    QString folder;
};

TEST_F(MainWindowPrefetch, NextShowsThePictureDecodedAhead)
{
    frmMain &window = fixture.window();
    const int hits = window.prefetch().hits();
    ui(window).cmdNext->click();
    EXPECT_EQ(window.prefetch().hits(), hits + 1);
    EXPECT_EQ(shownColour(window), colourOf(1));
    EXPECT_EQ(ui(window).LabNum->text(), " 2/5 ");

    // Back to the one shown before: held too.
    window.prefetch().waitForIdle();
    ui(window).cmdBack->click();
    EXPECT_EQ(window.prefetch().hits(), hits + 2);
    EXPECT_EQ(shownColour(window), colourOf(0));
    EXPECT_LE(window.prefetch().heldCount(), 3);
}

TEST_F(MainWindowPrefetch, FileChangedAfterPrefetchIsNotShownStale)
{
    frmMain &window = fixture.window();
    const int hits = window.prefetch().hits();
    savePicture(folder + "/p1.bmp", QSize(36, 30), Qt::black);
    ui(window).cmdNext->click();
    EXPECT_EQ(window.prefetch().hits(), hits);
    EXPECT_EQ(shownColour(window), QColor(Qt::black));
    EXPECT_EQ(ui(window).ImgEgg->naturalSize(), QSize(36, 30));
}

TEST_F(MainWindowPrefetch, ActualSizeHoldsNothing)
{
    frmMain &window = fixture.window();
    window.mnuFull_Click();
    ui(window).cmdNext->click();
    EXPECT_EQ(window.prefetch().heldCount(), 0);
    EXPECT_EQ(shownColour(window), colourOf(1));
}

TEST(PictureViewPainting, ShrunkPicturePaintsAsADirectSmoothDraw)
{
    QImage picture(1500, 1000, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, qRgb(x * 7 % 256, y * 13 % 256, (x ^ y) % 256));
    PictureView view;
    view.setPicture(picture);
    for (const QSize size : {QSize(1280, 853), QSize(641, 427)}) {
        view.resize(size);
        QImage direct(size, QImage::Format_RGB32);
        QPainter painter(&direct);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRectF(QPointF(0, 0), QSizeF(size)), picture, QRectF(picture.rect()));
        painter.end();
        const QImage once = view.grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QImage again = view.grab().toImage().convertToFormat(QImage::Format_RGB32);
        EXPECT_EQ(once, direct) << size.width();
        EXPECT_EQ(again, direct) << size.width();
    }
}
