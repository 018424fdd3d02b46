// Runs at the scale factor of its environment: ctest runs it again under
// QT_SCALE_FACTOR 1.5 and 2 (tests/CMakeLists.txt).
#include "display/ViewGeometry.h"
#include "fullscreen/frmFull.h"
#include "index/frmIndex.h"
#include "support/MainWindowFixture.h"

#include <QDir>
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
        ASSERT_TRUE(QTest::qWaitFor([&] { return window.LabZoom->text().contains("100"); }, 5000))
            << window.windowTitle().toStdString() << " zoom " << window.LabZoom->text().toStdString();
        EXPECT_EQ((QSizeF(window.ImgEgg->size()) * ratio).toSize(), natural) << ratio;
        const QImage shown = window.ImgEgg->grab().toImage().convertToFormat(QImage::Format_RGB32);
        EXPECT_EQ(pixelsDifferent(shown, checkerboard(natural)), 0) << ratio;

        // Pixels per centimetre of the real screen: its device pixels over its size.
        const double cm = window.ImgEgg->width() / screen->physicalDotsPerInchX() * 2.54;
        EXPECT_TRUE(window.LabPix->text().contains(QString("(%1 pixels/cm)").arg(std::lround(natural.width() / cm))))
            << window.LabPix->text().toStdString();
        fixture.close();
    }
}

TEST(HiDpiWindow, ThumbnailsAreMadeAtTheDeviceSizeOfTheirCellAndDrawnUnscaled)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("pics");
    const QString photo = fixture.makePicture(folder, "photo.jpg", {1200, 800});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(photo);
    QTest::keyClick(&window, Qt::Key_T, Qt::AltModifier);
    frmIndex *index = window.indexWindow();
    ASSERT_NE(index, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index->pageLoading() && !index->cells[0].Image1->pixmap().isNull(); },
                                20000));
    const qreal ratio = index->devicePixelRatioF();
    const QLabel &cell = *index->cells[0].Image1;
    EXPECT_EQ(cell.pixmap().size(), (QSizeF(cell.size()) * ratio).toSize()) << ratio; // one pixel per device pixel
    EXPECT_EQ(cell.pixmap().devicePixelRatio(), ratio);
    // Above a scale of 1 the cell needs more than 128 pixels: the large thumbnails.
    const QString cache = QString::fromLocal8Bit(qgetenv("XDG_CACHE_HOME")) + "/thumbnails/";
    const QString flavour = qMax(cell.width(), cell.height()) * ratio > 128 ? "large" : "normal";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QDir(cache + flavour).entryList({"*.png"}).isEmpty(); }, 5000))
        << flavour.toStdString();
}

TEST(HiDpiWindow, TheFullScreenViewHoldsAndDrawsThePictureAtDeviceResolution)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("pics");
    const QString photo = fixture.makePicture(folder, "photo.jpg", {3000, 2000});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(photo);
    QTest::keyClick(&window, Qt::Key_F, Qt::AltModifier); // fitted: the main window holds a smaller decode
    QTest::mouseDClick(window.ImgEgg, Qt::LeftButton, {}, {5, 5});
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.fullView() && window.fullView()->ImgEgg->isVisible(); }, 10000));
    PictureView &shown = *window.fullView()->ImgEgg;
    const qreal ratio = shown.devicePixelRatioF();
    EXPECT_GE(shown.picture().width(), int(shown.width() * ratio) - 2) << ratio;
    const QImage drawn = shown.grab().toImage();
    EXPECT_EQ(drawn.size(), (QSizeF(shown.size()) * ratio).toSize());
}
