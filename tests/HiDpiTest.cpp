// Runs at the scale factor of its environment: ctest runs it again under
// QT_SCALE_FACTOR 1.5 and 2 (tests/CMakeLists.txt).
#include "display/ViewGeometry.h"
#include "fullscreen/frmFull.h"
#include "index/ThumbnailCache.h"
#include "index/frmIndex.h"
#include "platform/MoviePlayer.h"
#include "support/MainWindowFixture.h"
#include "support/TestClips.h"
#include "support/WindowProbe.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QMouseEvent>
#include <QImage>
#include <QLabel>
#include <QScreen>
#include <QTest>

namespace {

// One-pixel checks of two colours: any scaling shows.
QImage checkerboard(QSize size)
{
    QImage board(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            board.setPixel(x, y, (x + y) % 2 ? qRgb(255, 0, 0) : qRgb(0, 0, 255));
    return board;
}

int pixelsDifferent(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return -1;
    int different = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            different += a.pixel(x, y) != b.pixel(x, y);
    return different;
}

// Each pixel tells where it lies: red its column, green its row.
QImage positionPicture(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            picture.setPixel(x, y, qRgb(x, y, 77));
    return picture;
}

// A drag over the picture in crop mode, as the user makes it.
void dragOver(QWidget *picture, QPoint from, QPoint to)
{
    QTest::mousePress(picture, Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, QPointF(to), picture->mapToGlobal(QPointF(to)), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(picture, &move);
    QTest::mouseRelease(picture, Qt::LeftButton, {}, to);
}

} // namespace

TEST(ViewGeometryAtScale, PicturePixelsAreDevicePixelsWhileTheLayoutStaysLogical)
{
    const auto twips = ViewGeometry::Twips::forDpi(96, 96);
    for (const double ratio : {1.0, 1.5, 2.0}) {
        const ViewGeometry::Twips device = twips.devicePixels(ratio);
        EXPECT_DOUBLE_EQ(device.fromPixelsX(300), 300 * 15 / ratio) << ratio;
        // A 600-pixel picture at 100 % covers 600 device pixels: 600 / ratio logical ones.
        const QSize logical = ViewGeometry::logicalSize(600, 300, ratio);
        EXPECT_EQ(logical, QSize(int(600 / ratio), int(300 / ratio))) << ratio;
        EXPECT_EQ(twips.toPixelsX(device.fromPixelsX(600)), logical.width()) << ratio;
        // The window's own layout does not change with the ratio.
        EXPECT_EQ(twips.toPixelsX(ViewGeometry::MinWindowWidth), 391);
    }
    EXPECT_EQ(ViewGeometry::logicalSize(301, 301, 1.5), QSize(200, 200)); // a fraction of a pixel dropped
    EXPECT_EQ(twips.devicePixels(0).perPixelX, 15);
    // That dropped fraction is no reason to resample the picture; a real shrink is.
    EXPECT_TRUE(ViewGeometry::coversAtActualSize({300, 300}, {301, 301}, 1.5));
    EXPECT_TRUE(ViewGeometry::coversAtActualSize({300, 200}, {301, 201}, 2));
    EXPECT_TRUE(ViewGeometry::coversAtActualSize({300, 200}, {300, 200}, 1));
    EXPECT_FALSE(ViewGeometry::coversAtActualSize({300, 200}, {301, 200}, 1));
    EXPECT_FALSE(ViewGeometry::coversAtActualSize({298, 200}, {301, 200}, 2));
    EXPECT_FALSE(ViewGeometry::coversAtActualSize({302, 200}, {301, 200}, 2));
    EXPECT_FALSE(ViewGeometry::coversAtActualSize({0, 0}, {}, 2));
    // Centimetres from the screen's physical size when it reports one.
    EXPECT_NEAR(ViewGeometry::displayedCentimetres(254, 254, twips), 2.54, 1e-9);
    EXPECT_NEAR(ViewGeometry::displayedCentimetres(96, 0, twips), 2.54, 1e-9);
    EXPECT_NEAR(ViewGeometry::displayedCentimetres(96, 100000, twips), 2.54, 1e-9);
}

TEST(HiDpiWindow, FitsTheWorkAreaAndShowsOnePicturePixelPerDevicePixelAt100Percent)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("pics");
    const QSize natural(96, 72); // whole logical pixels at 1, 1.5 and 2
    ASSERT_TRUE(checkerboard(natural).save(folder + "/board.bmp"));
    fixture.settings().write("UserDef", "Language", "EN");

    for (int run = 0; run < 2; ++run) { // at first start and after a restart
        frmMain &window = fixture.start(folder + "/board.bmp");
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        const QScreen *screen = window.screen();
        const qreal ratio = window.devicePixelRatioF();
        EXPECT_TRUE(screen->availableGeometry().contains(window.frameGeometry()))
            << "run " << run << " ratio " << ratio;

        QTest::keyClick(&window, Qt::Key_L, Qt::AltModifier); // actual size
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui(window).LabZoom->text().contains("100"); }, 5000))
            << window.windowTitle().toStdString() << " zoom " << ui(window).LabZoom->text().toStdString();
        EXPECT_EQ((QSizeF(ui(window).ImgEgg->size()) * ratio).toSize(), natural) << ratio;
        const QImage shown = ui(window).ImgEgg->grab().toImage().convertToFormat(QImage::Format_RGB32);
        EXPECT_EQ(pixelsDifferent(shown, checkerboard(natural)), 0) << ratio;

        // Pixels per centimetre of the real screen: its device pixels over its size.
        const double cm = ui(window).ImgEgg->width() / screen->physicalDotsPerInchX() * 2.54;
        EXPECT_TRUE(ui(window).LabPix->text().contains(QString("(%1 pixels/cm)").arg(std::lround(natural.width() / cm))))
            << ui(window).LabPix->text().toStdString();
        fixture.close();
    }
}

TEST(HiDpiWindow, APictureOfAnOddSizeIsNotResampledAt100Percent)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("pics");
    const QImage board = checkerboard({97, 73}); // a fraction of a logical pixel over at 1.5 and 2
    ASSERT_TRUE(board.save(folder + "/odd.bmp"));
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/odd.bmp");
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QTest::keyClick(&window, Qt::Key_L, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui(window).LabZoom->text() == " 100% "; }, 5000));
    const QImage shown = ui(window).ImgEgg->grab().toImage().convertToFormat(QImage::Format_RGB32);
    ASSERT_GE(shown.width(), 96);
    ASSERT_GE(shown.height(), 72);
    EXPECT_EQ(pixelsDifferent(shown, board.copy(shown.rect())), 0) << window.devicePixelRatioF();
}

namespace {

// Alt+T, then the index's first thumbnail once its page is in; null when none came.
const QLabel *firstThumbnail(frmMain &window)
{
    QTest::keyClick(&window, Qt::Key_T, Qt::AltModifier);
    frmIndex *index = window.indexWindow();
    if (!index)
        return nullptr;
    const QLabel *cell = ui(index).cells[0].Image1;
    const bool in = QTest::qWaitFor([&] { return !index->pageLoading() && !cell->pixmap().isNull(); }, 20000);
    return in ? cell : nullptr;
}

} // namespace

TEST(HiDpiWindow, ThumbnailsAreMadeAtTheDeviceSizeOfTheirCellAndDrawnUnscaled)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("pics");
    const QString photo = fixture.makePicture(folder, "photo.jpg", {1200, 800});
    fixture.settings().write("UserDef", "Language", "EN");
    const QLabel *thumbnail = firstThumbnail(fixture.start(photo));
    ASSERT_NE(thumbnail, nullptr);
    const QLabel &cell = *thumbnail;
    const qreal ratio = cell.devicePixelRatioF();
    EXPECT_EQ(cell.pixmap().size(), (QSizeF(cell.size()) * ratio).toSize()) << ratio; // one pixel per device pixel
    EXPECT_EQ(cell.pixmap().devicePixelRatio(), ratio);
    // Above a scale of 1 the cell needs more than 128 pixels: the large thumbnails.
    const QString cache = QString::fromLocal8Bit(qgetenv("XDG_CACHE_HOME")) + "/thumbnails/";
    const QString flavour = qMax(cell.width(), cell.height()) * ratio > 128 ? "large" : "normal";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QDir(cache + flavour).entryList({"*.png"}).isEmpty(); }, 5000))
        << flavour.toStdString();
}

TEST(HiDpiWindow, ThumbnailsAlreadyInTheCacheAreReadInTheFlavourTheCellNeeds)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("pics");
    const QString photo = fixture.makePicture(folder, "photo.jpg", {1200, 800});
    // As a file manager left them: a green normal one and a magenta large one.
    const ThumbnailCache cache;
    const auto plain = [](QSize size, QColor colour) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        return image;
    };
    ASSERT_TRUE(cache.write(photo, ThumbnailCache::Flavour::Normal, plain({128, 85}, Qt::green), {1200, 800}));
    ASSERT_TRUE(cache.write(photo, ThumbnailCache::Flavour::Large, plain({256, 171}, Qt::magenta), {1200, 800}));
    fixture.settings().write("UserDef", "Language", "EN");
    const QLabel *thumbnail = firstThumbnail(fixture.start(photo));
    ASSERT_NE(thumbnail, nullptr);
    const QLabel &cell = *thumbnail;
    const qreal ratio = cell.devicePixelRatioF();
    const QImage shown = cell.pixmap().toImage();
    const QColor expected = qMax(cell.width(), cell.height()) * ratio > 128 ? Qt::magenta : Qt::green;
    EXPECT_EQ(shown.pixelColor(shown.width() / 2, shown.height() / 2), expected) << ratio;
}

TEST(HiDpiWindow, TheFullScreenViewHoldsAndDrawsThePictureAtDeviceResolution)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("pics");
    const QString photo = fixture.makePicture(folder, "photo.jpg", {3000, 2000});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(photo);
    QTest::keyClick(&window, Qt::Key_F, Qt::AltModifier); // fitted: the main window holds a smaller decode
    QTest::mouseDClick(ui(window).ImgEgg, Qt::LeftButton, {}, {5, 5});
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.fullView() && ui(window.fullView()).ImgEgg->isVisible(); }, 10000));
    PictureView &shown = *ui(window.fullView()).ImgEgg;
    const qreal ratio = shown.devicePixelRatioF();
    EXPECT_GE(shown.picture().width(), int(shown.width() * ratio) - 2) << ratio;
    const QImage drawn = shown.grab().toImage();
    EXPECT_EQ(drawn.size(), (QSizeF(shown.size()) * ratio).toSize());
}

TEST(HiDpiWindow, ACroppedAreaHoldsThePicturesOwnPixelsOnePerDevicePixel)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("pics");
    const QImage original = positionPicture({240, 180}); // whole logical pixels at 1, 1.5 and 2
    ASSERT_TRUE(original.save(folder + "/places.bmp"));
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/places.bmp");
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QTest::keyClick(&window, Qt::Key_L, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui(window).LabZoom->text() == " 100% "; }, 5000));
    const qreal ratio = window.devicePixelRatioF();

    ui(window).cmdRitaglia->click();
    dragOver(ui(window).ImgEgg, {20, 14}, {80, 54}); // from half a device pixel at 1.5
    fixture.prompts.files = {folder + "/area.bmp"};
    ui(window).mnuCropSave->trigger();
    const QImage saved = QImageReader(folder + "/area.bmp").read().convertToFormat(QImage::Format_RGB32);
    ASSERT_FALSE(saved.isNull());

    // The selection's size in device pixels, from where the drag began.
    EXPECT_NEAR(saved.width(), 60 * ratio, 1) << ratio;
    EXPECT_NEAR(saved.height(), 40 * ratio, 1) << ratio;
    const QPoint first(qRed(saved.pixel(0, 0)), qGreen(saved.pixel(0, 0)));
    EXPECT_NEAR(first.x(), 21 * ratio, 1) << ratio;
    EXPECT_NEAR(first.y(), 15 * ratio, 1) << ratio;
    // Unscaled and unblended: every pixel is the picture's own, in order.
    ASSERT_TRUE(QRect(QPoint(0, 0), original.size()).contains(QRect(first, saved.size()))) << ratio;
    EXPECT_EQ(pixelsDifferent(saved, original.copy(QRect(first, saved.size()))), 0) << ratio;
}

TEST(HiDpiWindow, AMovieAtActualSizeShowsOneVideoPixelPerDevicePixel)
{
    if (!TestClips::ffmpegAvailable())
        GTEST_SKIP() << "ffmpeg is not installed: no test clips";
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("movies");
    fixture.makeFiles(folder, {"a.bmp"});
    // Grey one-pixel checks, kept exact by a lossless codec.
    ASSERT_TRUE(TestClips::run("ffmpeg", {"-v", "error", "-y", "-f", "lavfi", "-i",
                                          "color=c=black:s=96x72:d=2:r=10,format=gray,geq=lum='255*mod(X+Y\\,2)'",
                                          "-c:v", "ffv1", "-f", "avi", folder + "/board.avi"}));
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/a.bmp");
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QTest::keyClick(&window, Qt::Key_L, Qt::AltModifier); // actual size
    QTest::keyClick(&window, Qt::Key_Down);
    MoviePlayer &player = *ui(window).MediaPlayer1;
    // The label is told once the video's size is known.
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return window.windowTitle().contains("board.avi") && ui(window).LabZoom->text() == " 100% "; }, 10000))
        << window.windowTitle().toStdString() << " zoom " << ui(window).LabZoom->text().toStdString();
    const qreal ratio = player.devicePixelRatioF();
    const QRect shown = MoviePlayer::videoFrameRect(player.naturalSize(), player.videoArea(), player.DisplaySize(), ratio);
    EXPECT_EQ((QSizeF(shown.size()) * ratio).toSize(), QSize(96, 72)) << ratio;

    // Each check on one device pixel: neighbours alternate dark and light.
    const auto alternates = [&] {
        const QImage drawn = player.grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QPoint at = (QPointF(shown.topLeft()) * ratio).toPoint();
        const bool phase = qGray(drawn.pixel(at)) > 128;
        int wrong = 0;
        for (int y = 0; y < 72; ++y)
            for (int x = 0; x < 96; ++x) {
                const int grey = qGray(drawn.pixel(at + QPoint(x, y)));
                const bool light = ((x + y) % 2 == 0) == phase;
                wrong += light ? grey < 192 : grey > 64;
            }
        return wrong;
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return alternates() == 0; }, 5000)) << alternates() << " at " << ratio;
}
