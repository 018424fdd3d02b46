#include "display/AnimationView.h"
#include "display/PictureView.h"
#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"
#include "viewer/ViewRules.h"

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

// A folder of today's picture types walked through with the Down key, as a
// user browsing phone photos, screenshots and downloads would.
TEST(TodaysPicturesWindow, DownWalksThroughOnePictureOfEachType)
{
    const struct {
        const char *name, *source;
        QSize size;
    } pictures[] = {
        {"1 screenshot.png", "pngsuite/basn6a08.png", {32, 32}},
        {"2 download.webp", "pillow-tests-modern/webp/transparent.webp", {200, 150}},
        {"3 scan.tiff", "image-tiff-tests/images/palette-1c-4b.tiff", {157, 151}},
        {"4 drawing.svg", "librsvg-tests/w3c-svg11/struct-use-01-t.svg", {480, 360}},
        {"5 photo.avif", "libavif-tests/kodim03_yuv420_8bpc.avif", {768, 512}},
        {"6 phone.heic", "libheif-tests/tests/rainbow-451x461.heic", {451, 461}},
        {"7 photo.jxl", "libjxl-conformance/grayscale.jxl", {200, 200}},
        {"8 camera.pef", "imagemeta-raw/sample.arw", {}}, // a RAW under another maker's name: content decides
    };
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("today");
    for (const auto &picture : pictures)
        ASSERT_TRUE(QFile::copy(QStringLiteral(VIMORA_CORPUS_DIR "/") + picture.source, folder + '/' + picture.name));
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + '/' + pictures[0].name);
    const int count = int(std::size(pictures));

    for (int index = 0; index < count; ++index) {
        SCOPED_TRACE(pictures[index].name);
        if (index > 0) // where the focus was left, as a user's key would go
            QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window, Qt::Key_Down);
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return window.windowTitle() == ViewRules::fileTitle(pictures[index].name); }, 10000));
        EXPECT_EQ(ui(window).LabNum->text(), ViewRules::positionText(index, count));
        EXPECT_FALSE(ui(window).ImgEgg->isEmpty());
        const QSize size = pictures[index].size;
        if (size.isValid()) { // the status row gives the true size
            EXPECT_TRUE(ui(window).LabPix->text().contains(ViewRules::resolutionText(size.width(), size.height())))
                << ui(window).LabPix->text().toStdString();
        }
    }
}

TEST(TodaysPicturesWindow, AnimatedWebPAnimatesLikeAGifAndAStillOneStaysAPicture)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("webp");
    ASSERT_TRUE(QFile::copy(QStringLiteral(VIMORA_CORPUS_DIR "/image-webp-tests/images/animated/random_lossy.webp"),
                            folder + "/a moving.webp"));
    ASSERT_TRUE(QFile::copy(QStringLiteral(VIMORA_CORPUS_DIR "/pillow-tests-modern/webp/hopper.webp"),
                            folder + "/b still.webp"));
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/a moving.webp");
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == ViewRules::fileTitle("a moving.webp"); }, 10000));
    ASSERT_TRUE(ui(window).chkAnim->isChecked());
    EXPECT_TRUE(ui(window).WebBrowser1->isVisible());
    EXPECT_EQ(ui(window).WebBrowser1->frameCount(), 4);
    EXPECT_FALSE(ui(window).ImgEgg->isVisible());

    // Unchecked, the first frame shows as a picture.
    ui(window).chkAnim->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui(window).ImgEgg->isVisible(); }, 5000));
    EXPECT_FALSE(ui(window).WebBrowser1->isVisible());
    ui(window).chkAnim->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui(window).WebBrowser1->isVisible(); }, 5000));

    QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window, Qt::Key_Down);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == ViewRules::fileTitle("b still.webp"); }, 10000));
    EXPECT_TRUE(ui(window).ImgEgg->isVisible());
    EXPECT_FALSE(ui(window).WebBrowser1->isVisible());
}

TEST(TodaysPicturesWindow, ZoomedInSvgIsDrawnAgainAtTheShownSize)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("svg");
    ASSERT_TRUE(QFile::copy(QStringLiteral(VIMORA_CORPUS_DIR "/librsvg-tests/w3c-svg11/struct-use-01-t.svg"),
                            folder + "/drawing.svg"));
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/drawing.svg");
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == ViewRules::fileTitle("drawing.svg"); }, 10000));
    window.mnuFull_Click();
    EXPECT_EQ(ui(window).ImgEgg->picture().size(), QSize(480, 360)); // at 100 %: its natural size

    for (int press = 0; press < 3; ++press) // 115, 132, 152 %
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window, Qt::Key_Plus,
                        Qt::KeypadModifier);
    ASSERT_EQ(ui(window).LabZoom->text(), " 152% ");
    // Not the 480x360 picture stretched: a new drawing of the shown size.
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui(window).ImgEgg->picture().width() >= 720; }, 5000))
        << ui(window).ImgEgg->picture().width();
    EXPECT_EQ(ui(window).ImgEgg->picture().size(), ui(window).ImgEgg->size() * ui(window).ImgEgg->devicePixelRatio());
    EXPECT_TRUE(ui(window).LabPix->text().contains(ViewRules::resolutionText(480, 360))); // still its true size
}
