#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "viewer/DroppedFile.h"

#include <QFrame>
#include <QMimeData>
#include <QTest>
#include <QTimer>
#include <QUrl>

namespace {

void dropOn(QWidget *target, const QMimeData &data)
{
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &enter);
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &drop);
    QCoreApplication::processEvents();
}

} // namespace

TEST(MainWindowNavigation, NextOnTheLastFileWrapsOnlyInASlideshow)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("three");
    fixture.makeFiles(folder, {"a.bmp", "b.bmp", "c.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/c.bmp");
    window.cmdNext_Click();
    EXPECT_EQ(window.windowTitle(), " c.bmp  - Vimora ");
    QTest::keyClick(&window, Qt::Key_Up);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == " b.bmp  - Vimora "; }, 5000));
    QTest::keyClick(&window, Qt::Key_PageDown);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == " c.bmp  - Vimora "; }, 5000));

    ui(window).ChkCicle->setChecked(true);
    window.cmdNext_Click();
    EXPECT_EQ(window.windowTitle(), " a.bmp  - Vimora ");
    window.cmdBack_Click(); // no wrap backwards
    EXPECT_EQ(window.windowTitle(), " a.bmp  - Vimora ");
    // Space with the slideshow on stops it instead of moving.
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_FALSE(ui(window).ChkCicle->isChecked());
    EXPECT_FALSE(fixture.state->SlideshowOn);
    EXPECT_EQ(window.windowTitle(), " a.bmp  - Vimora ");
}

TEST(MainWindowNavigation, SpaceWithOneFileShowsNothingNew)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("one");
    fixture.makeFiles(folder, {"only.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/only.bmp");
    EXPECT_FALSE(ui(window).cmdNext->isEnabled());
    EXPECT_FALSE(ui(window).cmdBack->isEnabled());
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_EQ(ui(window).LabNum->text(), " 1/1 ");
}

TEST(MainWindowNavigation, SlideshowAdvancesOnItsTimer)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("show");
    fixture.makeFiles(folder, {"a.bmp", "b.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    fixture.settings().write("UserDef", "xTime", "1");
    frmMain &window = fixture.start(folder + "/a.bmp");
    ui(window).HScroll1->setValue(1);
    ui(window).ChkCicle->setChecked(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == " b.bmp  - Vimora "; }, 3000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == " a.bmp  - Vimora "; }, 3000));

    // Changing the interval with the slideshow off does not start it.
    ui(window).ChkCicle->setChecked(false);
    ui(window).HScroll1->setValue(7);
    EXPECT_EQ(ui(window).txtTime->text(), "7");
    EXPECT_FALSE(ui(window).TimerImage->isActive());
}

TEST(MainWindowDrop, FileFromTheSameFolderAndFromAnother)
{
    MainWindowFixture fixture;
    const QString here = fixture.makeFolder("here");
    const QString there = fixture.makeFolder(QString::fromUtf8("là, où"));
    fixture.makeFiles(here, {"a.bmp", "b.bmp", "c.jpg"});
    fixture.makeFiles(there, {"x.bmp", QString::fromUtf8("ünïcödé.bmp")});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(here + "/a.bmp");
    ui(window).CboType->setCurrentIndex(5); // BMP only

    QMimeData same;
    same.setUrls({QUrl::fromLocalFile(here + "/c.jpg")});
    dropOn(&window, same);
    EXPECT_EQ(ui(window).CboType->currentIndex(), 0); // back to All Supported
    EXPECT_EQ(window.windowTitle(), " c.jpg  - Vimora ");

    QMimeData other;
    other.setUrls({QUrl::fromLocalFile(there + QString::fromUtf8("/ünïcödé.bmp"))});
    dropOn(ui(window).Frame1, other);
    EXPECT_EQ(fixture.context->CurrentFolder(), there);
    EXPECT_EQ(window.windowTitle(), QString::fromUtf8(" ünïcödé.bmp  - Vimora "));
    EXPECT_EQ(fixture.context->FileNames().size(), 2);
}

TEST(DroppedFile, UriListsAndTextWithFilePrefix)
{
    QMimeData uris;
    uris.setData("text/uri-list", "file:///tmp/a%20b/%C3%A9t%C3%A9.jpg\r\nfile:///tmp/second.jpg\r\n");
    EXPECT_EQ(droppedFilePath(uris), QString::fromUtf8("/tmp/a b/été.jpg"));
    EXPECT_EQ(droppedTextPath("FILE:///tmp/x%20y.bmp"), "/tmp/x y.bmp");
    EXPECT_EQ(droppedTextPath("File:/tmp/z.bmp"), "/tmp/z.bmp");
    EXPECT_EQ(droppedTextPath("/plain/path.gif\nsecond"), "/plain/path.gif");
}

TEST(MainWindowCrop, DragFromRightToLeftGivesAPositiveRectangle)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("crop");
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(fixture.makePicture(folder, "wide.bmp", {600, 400}));
    window.resize(1000, 800);
    QCoreApplication::processEvents();
    ASSERT_EQ(ui(window).ImgEgg->size(), QSize(600, 400));

    ui(window).cmdRitaglia->click();
    EXPECT_TRUE(fixture.window().cropSelectionActive());
    QTest::mousePress(ui(window).ImgEgg, Qt::LeftButton, {}, QPoint(400, 300));
    QMouseEvent move(QEvent::MouseMove, QPointF(100, 100), ui(window).ImgEgg->mapToGlobal(QPointF(100, 100)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(ui(window).ImgEgg, &move);
    QTest::mouseRelease(ui(window).ImgEgg, Qt::LeftButton, {}, QPoint(100, 100));

    EXPECT_TRUE(fixture.window().cropSelectionActive());
    EXPECT_TRUE(ui(window).LabMis->isVisible());
    // 300 x 200 pixels at 96 DPI: 79 x 53 mm.
    EXPECT_EQ(ui(window).LabMis->text(), " 79 x 53 mm ");
    EXPECT_EQ(window.selectionRect(), QRectF(1500, 1500, 4500, 3000));
    for (QFrame *line : ui(window).SelLines)
        EXPECT_TRUE(line->isVisible());

    // Esc drops it; a release 9 twips from the anchor keeps nothing.
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(fixture.window().cropSelectionActive());
    EXPECT_FALSE(ui(window).LabMis->isVisible());
    ui(window).cmdRitaglia->click();
    window.Clip_Punto_Inizio(ui(window).ImgEgg, {1000, 1000});
    window.Clip_Punto_Fine(ui(window).ImgEgg, {1009, 1500});
    EXPECT_FALSE(fixture.window().cropSelectionActive());
}

TEST(MainWindowCrop, PressBesideThePictureSnapsToItsEdge)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("snap");
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(fixture.makePicture(folder, "small.bmp", {200, 150}));
    ui(window).cmdRitaglia->click();
    const QPoint left = ui(window).ImgEgg->geometry().topLeft() + QPoint(-30, 40);
    QTest::mousePress(&window, Qt::LeftButton, {}, left);
    QTest::mouseRelease(&window, Qt::LeftButton, {}, ui(window).ImgEgg->geometry().bottomRight() + QPoint(50, 50));
    EXPECT_TRUE(fixture.window().cropSelectionActive());
    EXPECT_EQ(window.selectionRect().left(), 0);
    EXPECT_EQ(window.selectionRect().top(), 40 * 15);
    EXPECT_EQ(window.selectionRect().right(), 200 * 15);
}

TEST(MainWindowZoom, StepsAndModes)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("zoom");
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(fixture.makePicture(folder, "p.bmp", {400, 300}));
    EXPECT_EQ(ui(window).LabZoom->text(), " 100% ");
    for (const char *expected : {" 115% ", " 132% ", " 152% "}) {
        ui(window).cmdExpand->click();
        EXPECT_EQ(ui(window).LabZoom->text(), expected);
    }
    EXPECT_EQ(ui(window).ImgEgg->size(), QSize(608, 456));
    window.mnuFull_Click();
    ui(window).cmdReduce->click();
    ui(window).cmdReduce->click();
    EXPECT_EQ(ui(window).LabZoom->text(), "  74% ");
    QTest::keyClick(&window, Qt::Key_L, Qt::AltModifier);
    EXPECT_EQ(ui(window).LabZoom->text(), " 100% ");
    EXPECT_EQ(ui(window).ImgEgg->size(), QSize(400, 300));
}
