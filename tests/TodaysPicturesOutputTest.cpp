#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "display/PictureView.h"
#include "fullscreen/frmFull.h"
#include "platform/PictureLoader.h"
#include "viewer/ViewRules.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

struct DesktopScope {
    explicit DesktopScope(const char *desktop) { qputenv("XDG_CURRENT_DESKTOP", desktop); }
    ~DesktopScope() { qputenv("XDG_CURRENT_DESKTOP", ""); }
};

QWidget *focused(frmMain &window)
{
    return QApplication::focusWidget() ? QApplication::focusWidget() : &window;
}

} // namespace

// Each of today's types through the output commands by their keys, as with a
// JPEG: the clipboard and the wallpaper get the stored picture, the printer a
// page, the crop an area of the selected size, full screen the picture fitted.
TEST(TodaysPicturesOutput, EachTypeGoesToClipboardWallpaperPrinterAreaAndFullScreen)
{
    const DesktopScope gnome("GNOME");
    const struct {
        const char *name, *source;
    } pictures[] = {
        {"1 screenshot.png", "pngsuite/basn6a08.png"},
        {"2 download.webp", "pillow-tests-modern/webp/transparent.webp"},
        {"3 scan.tiff", "image-tiff-tests/images/palette-1c-4b.tiff"},
        {"4 drawing.svg", "librsvg-tests/w3c-svg11/struct-use-01-t.svg"},
        {"5 photo.avif", "libavif-tests/kodim03_yuv420_8bpc.avif"},
        {"6 phone.heic", "libheif-tests/tests/rainbow-451x461.heic"},
        {"7 photo.jxl", "libjxl-conformance/grayscale.jxl"},
        {"8 camera.arw", "imagemeta-raw/sample.arw"},
    };
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("today");
    const QString out = fixture.makeFolder("out");
    for (const auto &picture : pictures)
        ASSERT_TRUE(QFile::copy(QStringLiteral(VIMORA_CORPUS_DIR "/") + picture.source, folder + '/' + picture.name));
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + '/' + pictures[0].name);
    window.resize(1000, 800);

    for (int index = 0; index < int(std::size(pictures)); ++index) {
        const QString name = pictures[index].name;
        SCOPED_TRACE(name.toStdString());
        if (index > 0)
            QTest::keyClick(focused(window), Qt::Key_Down);
        ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == ViewRules::fileTitle(name); }, 10000));
        // What the loader gives whole: the natural size, but for the RAW
        // sample, whose sensor data is cut short, only its preview.
        const QSize stored = PictureLoader::load(folder + '/' + name).image.size();
        if (!name.endsWith(".arw")) {
            EXPECT_EQ(stored, PictureLoader::readNaturalSize(folder + '/' + name));
        }
        ASSERT_TRUE(stored.isValid());

        QGuiApplication::clipboard()->clear();
        QTest::keyClick(focused(window), Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QGuiApplication::clipboard()->image().size(), stored);

        fixture.launcher.started.clear();
        QTest::keyClick(focused(window), Qt::Key_W, Qt::AltModifier);
        ASSERT_FALSE(fixture.launcher.started.isEmpty());
        ASSERT_EQ(fixture.launcher.started.first().second.size(), 4);
        EXPECT_EQ(QImageReader(QUrl(fixture.launcher.started.first().second[3]).toLocalFile()).size(), stored);

        const QString pdf = out + QStringLiteral("/%1.pdf").arg(index);
        fixture.prompts.printers = {{true, pdf, 1}};
        QTest::keyClick(focused(window), Qt::Key_P, Qt::AltModifier);
        EXPECT_GT(QFileInfo(pdf).size(), 500);

        // A 16 x 12 area from near the corner: every picture here is larger.
        QTest::keyClick(focused(window), Qt::Key_F6);
        QTest::mousePress(ui(window).ImgEgg, Qt::LeftButton, {}, {2, 2});
        QMouseEvent move(QEvent::MouseMove, QPointF(18, 14), ui(window).ImgEgg->mapToGlobal(QPointF(18, 14)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(ui(window).ImgEgg, &move);
        QTest::mouseRelease(ui(window).ImgEgg, Qt::LeftButton, {}, {18, 14});
        const QString area = out + QStringLiteral("/area%1.bmp").arg(index);
        fixture.prompts.files = {area};
        ui(window).mnuCropSave->trigger();
        EXPECT_EQ(QImageReader(area).size(), QSize(16, 12));
        QTest::keyClick(focused(window), Qt::Key_Escape); // the selection goes

        ui(window).mnuFullScreen->trigger();
        frmFull *view = window.fullView();
        ASSERT_NE(view, nullptr);
        ASSERT_TRUE(QTest::qWaitFor([&] { return view->isVisible(); }, 5000));
        EXPECT_FALSE(ui(view).ImgEgg->picture().isNull());
        EXPECT_TRUE(ui(view).ImgEgg->toolTip().contains(QStringLiteral("(%1 x %2)").arg(stored.width()).arg(stored.height())))
            << ui(view).ImgEgg->toolTip().toStdString();
        QTest::keyClick(view, Qt::Key_Escape);
        ASSERT_TRUE(QTest::qWaitFor([&] { return window.fullView() == nullptr || !window.fullView()->isVisible(); }, 5000));
    }
    EXPECT_TRUE(fixture.prompts.asked.isEmpty()) << fixture.prompts.asked.first().text.toStdString();
}
