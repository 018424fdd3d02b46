// The status row as a user reads it after resizing, moving on and showing
// files that Vimora cannot measure: it always tells what is on screen.
#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "viewer/ViewRules.h"

#include <QFile>
#include <QTest>

namespace {

// What the zoom label must say for the picture as it is now drawn.
QString zoomOnScreen(frmMain &window, int naturalWidth)
{
    return ViewRules::zoomLabel(qRound(100.0 * ui(window).ImgEgg->width() / naturalWidth));
}

} // namespace

TEST(StatusRowJourney, ResizingTheWindowInFitModeTellsTheNewZoom)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("large");
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(fixture.makePicture(folder, "wide.bmp", {3000, 2000}));
    window.resize(900, 700);
    QTest::keyClick(&window, Qt::Key_F, Qt::AltModifier); // fit
    const QString zoomBefore = ui(window).LabZoom->text();
    const QString pixelsBefore = ui(window).LabPix->text();
    EXPECT_EQ(zoomBefore, zoomOnScreen(window, 3000));

    // Dragging the corner larger, then smaller than at first.
    for (const QSize size : {QSize(1400, 1000), QSize(700, 560)}) {
        window.resize(size);
        EXPECT_TRUE(QTest::qWaitFor([&] { return ui(window).LabZoom->text() == zoomOnScreen(window, 3000); }, 3000))
            << ui(window).LabZoom->text().toStdString() << " for " << ui(window).ImgEgg->width() << " pixels";
        EXPECT_NE(ui(window).LabZoom->text(), zoomBefore);
        EXPECT_NE(ui(window).LabPix->text(), pixelsBefore);
        EXPECT_TRUE(ui(window).LabPix->text().contains(" 3000 x 2000 ")) << ui(window).LabPix->text().toStdString();
    }
}

TEST(StatusRowJourney, DownOnTheLastFileKeepsTheStatusRow)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("two");
    fixture.makeFiles(folder, {"a.bmp", "b.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/b.bmp");
    const QString zoom = ui(window).LabZoom->text();
    QTest::keyClick(&window, Qt::Key_Down);
    QCoreApplication::processEvents();
    EXPECT_EQ(window.windowTitle(), " b.bmp  - Vimora ");
    for (QLabel *label : {ui(window).LabNum, ui(window).LabFil, ui(window).LabSiz, ui(window).LabPix, ui(window).LabZoom})
        EXPECT_TRUE(label->isVisible()) << label->objectName().toStdString();
    EXPECT_EQ(ui(window).LabNum->text(), " 2/2 ");
    EXPECT_EQ(ui(window).LabFil->text(), "b.bmp");
    EXPECT_EQ(ui(window).LabZoom->text(), zoom);
}

TEST(StatusRowJourney, SlidesAndAVanishedMovieLeaveNoPictureSizeBehind)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("mixed");
    fixture.makeFiles(folder, {"a.bmp", "b.ppt", "c.bmp", "d.avi"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/a.bmp");
    ASSERT_FALSE(ui(window).LabPix->text().isEmpty());
    ASSERT_FALSE(ui(window).LabZoom->text().isEmpty());

    QTest::keyClick(&window, Qt::Key_Down);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == " b.ppt  - Vimora "; }, 5000));
    EXPECT_EQ(ui(window).LabNum->text(), " 2/4 ");
    EXPECT_EQ(ui(window).LabPix->text(), "");
    EXPECT_EQ(ui(window).LabZoom->text(), "");

    QTest::keyClick(&window, Qt::Key_Down);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == " c.bmp  - Vimora "; }, 5000));
    ASSERT_FALSE(ui(window).LabZoom->text().isEmpty());
    ASSERT_TRUE(QFile::remove(folder + "/d.avi")); // gone before the user moves on
    QTest::keyClick(&window, Qt::Key_Down);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == " d.avi  - Vimora "; }, 5000));
    EXPECT_EQ(ui(window).LabNum->text(), " 4/4 ");
    EXPECT_EQ(ui(window).LabPix->text(), "");
    EXPECT_EQ(ui(window).LabZoom->text(), "");
}
