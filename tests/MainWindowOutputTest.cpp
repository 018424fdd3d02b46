#include "support/MainWindowFixture.h"
#include "support/TestClips.h"
#include "support/WindowProbe.h"

#include "output/PictureOutput.h"
#include "platform/MoviePlayer.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImageReader>
#include <QMimeData>
#include <QSet>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

namespace {

constexpr int OpenTimeoutMs = 8000;

QString pictureIn(MainWindowFixture &fixture, const QString &folder, const QString &name, QSize size, QColor colour)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    const QString path = fixture.makeFolder(folder) + '/' + name;
    picture.save(path);
    return path;
}

// A drag over the picture, as the crop test makes it, from pixel to pixel.
void selectArea(frmMain &window, QPoint from, QPoint to)
{
    ui(window).cmdRitaglia->click();
    QTest::mousePress(ui(window).ImgEgg, Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, QPointF(to), ui(window).ImgEgg->mapToGlobal(QPointF(to)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(ui(window).ImgEgg, &move);
    QTest::mouseRelease(ui(window).ImgEgg, Qt::LeftButton, {}, to);
}

// Colour bars: several bright hues; a blank frame has one at most.
int brightHues(const QImage &image)
{
    QSet<int> hues;
    for (int y = 0; y < image.height(); y += 4)
        for (int x = 0; x < image.width(); x += 4) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.value() > 96 && colour.hsvSaturation() > 96)
                hues.insert(colour.hsvHue() / 30);
        }
    return int(hues.size());
}

struct DesktopScope {
    explicit DesktopScope(const char *desktop) { qputenv("XDG_CURRENT_DESKTOP", desktop); }
    ~DesktopScope() { qputenv("XDG_CURRENT_DESKTOP", ""); }
};

} // namespace

TEST(MainWindowOutput, CopyIntoTheBrowsedFolderAppearsInTheList)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("copies");
    fixture.makeFiles(folder, {"a.bmp", "b.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    fixture.settings().write("UserDef", "savDir", folder);
    frmMain &window = fixture.start(folder + "/b.bmp");
    QSignalSpy written(&window, &frmMain::outputWrittenIntoFolder);
    ASSERT_TRUE(ui(window).cmdSave->isEnabled());

    fixture.prompts.files = {ScriptedPrompts::AcceptProposed};
    ui(window).cmdSave->click();
    ASSERT_EQ(fixture.prompts.fileRequests.size(), 1);
    EXPECT_EQ(fixture.prompts.fileRequests[0].fileName, "Copy of b.bmp");
    EXPECT_EQ(fixture.prompts.fileRequests[0].title, "Make a Copy of current file ");
    EXPECT_TRUE(QFile::exists(folder + "/Copy of b.bmp"));
    EXPECT_TRUE(fixture.context->FileNames().contains("Copy of b.bmp"));
    EXPECT_EQ(fixture.context->CurrentFileName(), "b.bmp");
    EXPECT_EQ(ui(window).LabNum->text(), " 2/3 ");
    EXPECT_EQ(written.count(), 1);

    // Into another folder: that folder is proposed next time, by the plain name.
    const QString other = fixture.makeFolder("elsewhere");
    fixture.prompts.files = {other + "/b.bmp"};
    ui(window).cmdSave->click();
    EXPECT_TRUE(QFile::exists(other + "/b.bmp"));
    EXPECT_EQ(fixture.state->SaveFolder, other);
    fixture.prompts.files = {};
    ui(window).cmdSave->click();
    EXPECT_EQ(fixture.prompts.fileRequests.last().fileName, "b.bmp");
    EXPECT_EQ(fixture.prompts.fileRequests.last().folder, other);
    EXPECT_EQ(written.count(), 1);
    EXPECT_TRUE(fixture.prompts.asked.isEmpty()); // a cancel says nothing
}

TEST(MainWindowOutput, AreaIsSavedNumberedAtTheSelectionsSize)
{
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    const QString path = pictureIn(fixture, "areas", "photo.bmp", {600, 400}, QColor(20, 140, 220));
    const QString folder = QFileInfo(path).path();
    for (const char *existing : {"photo_[a1].bmp", "photo_[a7].bmp", "photo_[abc].bmp"})
        QFile(folder + '/' + existing).open(QIODevice::WriteOnly);
    frmMain &window = fixture.start(path);
    window.resize(1000, 800);
    QCoreApplication::processEvents();
    ASSERT_EQ(ui(window).ImgEgg->size(), QSize(600, 400));
    selectArea(window, {400, 300}, {100, 100}); // drawn backwards

    fixture.prompts.files = {folder + "/photo_[a8].bmp"};
    ui(window).mnuCropSave->trigger();
    ASSERT_EQ(fixture.prompts.fileRequests.size(), 1);
    EXPECT_EQ(fixture.prompts.fileRequests[0].fileName, "photo_[a8].bmp");
    EXPECT_EQ(fixture.prompts.fileRequests[0].filters, QStringList({"Bitmap (*.bmp)", "All Files (*)"}));
    QImageReader reader(folder + "/photo_[a8].bmp");
    EXPECT_EQ(reader.format(), "bmp");
    const QImage saved = reader.read();
    ASSERT_EQ(saved.size(), QSize(300, 200));
    // The picture's pixels only: the rubber band was hidden for the capture.
    for (QPoint at : {QPoint(0, 0), QPoint(299, 199), QPoint(150, 100)})
        EXPECT_EQ(saved.pixelColor(at), QColor(20, 140, 220)) << at.x() << "," << at.y();
    EXPECT_TRUE(fixture.window().cropSelectionActive());
    EXPECT_TRUE(ui(window).SelLines[0]->isVisible());
    EXPECT_TRUE(fixture.context->FileNames().contains("photo_[a8].bmp"));
    EXPECT_EQ(fixture.state->OutputFolder, folder);

    // Saved elsewhere, the next number comes from there although the
    // dialog still opens in the save folder.
    const QString other = fixture.makeFolder("other");
    fixture.prompts.files = {other + "/photo_[a3].bmp", QString()};
    ui(window).mnuCropSave->trigger();
    EXPECT_EQ(fixture.state->OutputFolder, other);
    ui(window).mnuCropSave->trigger();
    EXPECT_EQ(fixture.prompts.fileRequests.last().fileName, "photo_[a4].bmp");
    EXPECT_EQ(fixture.prompts.fileRequests.last().folder, fixture.state->SaveFolder);
    EXPECT_NE(fixture.state->SaveFolder, other);

    // The area to the clipboard is the same rectangle.
    ui(window).mnuCropClip->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(300, 200));
}

TEST(MainWindowOutput, ClipboardGetsThePictureAtItsStoredSize)
{
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    const QString path = pictureIn(fixture, "clip", "large.jpg", {2400, 1800}, QColor(200, 60, 40));
    frmMain &window = fixture.start(path);
    window.resize(900, 700);
    ui(window).Option1[0]->setChecked(true); // fit: decoded and shown smaller
    QCoreApplication::processEvents();
    ASSERT_LT(ui(window).ImgEgg->width(), 2400); // fitted, smaller than stored
    QGuiApplication::clipboard()->clear();

    QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
    const QImage copied = QGuiApplication::clipboard()->image();
    EXPECT_EQ(copied.size(), QSize(2400, 1800));
    const QMimeData *offered = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(offered, nullptr);
    ASSERT_TRUE(offered->hasFormat("image/png"));
    EXPECT_EQ(QImage::fromData(offered->data("image/png"), "PNG").size(), QSize(2400, 1800));
    EXPECT_TRUE(ui(window).cmdClip->isEnabled());
    EXPECT_TRUE(ui(window).cmdPrint->isEnabled());
    EXPECT_FALSE(ui(window).cmdGrab->isEnabled()); // no movie, no frame

    // An icon goes as shown on the screen, here at twice its size.
    window.Mostra_Image(false, QStringLiteral(VIMORA_BUILT_DATA_DIR "/sample.ico"), true);
    ASSERT_EQ(fixture.context->FileTypeCode(), "ICO");
    window.ZoomTo(200);
    QCoreApplication::processEvents();
    ASSERT_EQ(ui(window).ImgEgg->size(), ui(window).ImgEgg->naturalSize() * 2);
    ui(window).cmdClip->click();
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), ui(window).ImgEgg->size());
}

TEST(MainWindowOutput, TwoGrabsOfAMovieAreNumberedAndPlaybackGoesOn)
{
    if (!TestClips::ffmpegAvailable())
        GTEST_SKIP() << "ffmpeg is not installed: no test clips";
    const QString made = TestClips::clip("avi");
    ASSERT_FALSE(made.isEmpty());
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    const QString folder = fixture.makeFolder("movie");
    ASSERT_TRUE(QFile::copy(made, folder + "/clip.avi"));
    frmMain &window = fixture.start(folder + "/clip.avi"); // a command line plays at once
    MoviePlayer &player = *ui(window).MediaPlayer1;
    ASSERT_TRUE(QTest::qWaitFor([&] { return player.PlayState() == MoviePlayer::Playing; }, OpenTimeoutMs));
    EXPECT_TRUE(ui(window).cmdGrab->isEnabled());

    fixture.prompts.files = {ScriptedPrompts::AcceptProposed, ScriptedPrompts::AcceptProposed};
    ui(window).cmdGrab->click();
    EXPECT_EQ(player.PlayState(), MoviePlayer::Playing);
    player.Pause();
    ui(window).cmdGrab->click();
    EXPECT_EQ(player.PlayState(), MoviePlayer::Paused);
    EXPECT_TRUE(player.controlBarShown());

    ASSERT_EQ(fixture.prompts.fileRequests.size(), 2);
    EXPECT_EQ(fixture.prompts.fileRequests[0].fileName, "clip_(1).bmp");
    EXPECT_EQ(fixture.prompts.fileRequests[1].fileName, "clip_(2).bmp");
    EXPECT_EQ(fixture.prompts.fileRequests[1].title, "Grab current image to a file ");
    for (const char *name : {"clip_(1).bmp", "clip_(2).bmp"}) {
        const QImage frame(folder + '/' + name);
        EXPECT_EQ(frame.size(), QSize(TestClips::Width, TestClips::Height)) << name;
        EXPECT_GE(brightHues(frame), 4) << name;
    }
    EXPECT_TRUE(fixture.context->FileNames().contains("clip_(2).bmp"));
    EXPECT_TRUE(ui(window).cmdGrab->isEnabled());
    EXPECT_EQ(fixture.context->CurrentFileName(), "clip.avi");

    // Printing the frame pauses the movie for the dialog only when it played.
    fixture.prompts.printers = {{true, folder + "/paused.pdf", 1}, {true, folder + "/playing.pdf", 1}};
    ui(window).cmdPrint->click();
    EXPECT_EQ(player.PlayState(), MoviePlayer::Paused);
    player.Play();
    ui(window).cmdPrint->click();
    EXPECT_EQ(player.PlayState(), MoviePlayer::Playing);
    EXPECT_GT(QFileInfo(folder + "/paused.pdf").size(), 0);
    EXPECT_GT(QFileInfo(folder + "/playing.pdf").size(), 0);
}

TEST(MainWindowOutput, PrintsToAPdfAtNaturalSizeWithCopies)
{
    const QString pdftoppm = QStandardPaths::findExecutable("pdftoppm");
    if (pdftoppm.isEmpty())
        GTEST_SKIP() << "pdftoppm (poppler-utils) is not installed";
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    const QString path = pictureIn(fixture, "print", "red.bmp", {192, 96}, Qt::red); // 2 x 1 inch at 96 dpi
    const QString out = fixture.makeFolder("pdf");
    frmMain &window = fixture.start(path);
    ui(window).ChkCicle->setChecked(true);

    fixture.prompts.printers = {{true, out + "/one.pdf", 1}, {true, out + "/three.pdf", 3}, {false, {}, 1}};
    ui(window).cmdPrint->click();
    EXPECT_TRUE(ui(window).TimerImage->isActive()); // the slideshow goes on
    ui(window).ChkCicle->setChecked(false);
    ui(window).cmdPrint->click();
    ui(window).cmdPrint->click(); // cancelled: nothing printed, nothing said
    EXPECT_TRUE(fixture.prompts.asked.isEmpty());
    EXPECT_FALSE(fixture.prompts.printRequests.at(0).selectionAllowed);

    // 72 dpi: the picture is 144 x 72 pixels from the printable corner.
    ASSERT_TRUE(TestClips::run(pdftoppm, {"-r", "72", "-png", out + "/one.pdf", out + "/one"}));
    const QStringList pages = QDir(out).entryList({"one*.png"});
    ASSERT_EQ(pages.size(), 1);
    const QImage page(out + '/' + pages[0]);
    QRect red;
    for (int y = 0; y < page.height(); ++y)
        for (int x = 0; x < page.width(); ++x) {
            const QColor c = page.pixelColor(x, y);
            if (c.red() > 200 && c.green() < 60 && c.blue() < 60)
                red |= QRect(x, y, 1, 1);
        }
    EXPECT_NEAR(red.width(), 144, 2);
    EXPECT_NEAR(red.height(), 72, 2);
    EXPECT_LT(red.left(), page.width() / 4); // the top-left corner, not centred
    EXPECT_LT(red.top(), page.height() / 4);

    // A PDF printer makes no copies itself: the drawing is repeated.
    ASSERT_TRUE(TestClips::run(pdftoppm, {"-r", "10", "-png", out + "/three.pdf", out + "/three"}));
    EXPECT_EQ(QDir(out).entryList({"three*.png"}).size(), 3);
}

TEST(MainWindowOutput, WallpaperGoesToTheDesktopsSetterAndTheScratchFileGoes)
{
    DesktopScope gnome("ubuntu:GNOME");
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    const QString jpeg = pictureIn(fixture, "wall", "sky.jpg", {320, 200}, QColor(40, 90, 200));
    const QString bitmap = pictureIn(fixture, "wall", "plain.bmp", {64, 32}, Qt::green);
    frmMain &window = fixture.start(jpeg);
    ui(window).ChkCicle->setChecked(true);

    ui(window).mnuWall->trigger();
    EXPECT_FALSE(QFile::exists(PictureOutput::TempBitmapPath()));
    EXPECT_TRUE(ui(window).TimerImage->isActive());
    ASSERT_FALSE(fixture.launcher.started.isEmpty());
    const auto &first = fixture.launcher.started.first();
    EXPECT_EQ(first.first, "gsettings");
    ASSERT_EQ(first.second.size(), 4);
    EXPECT_EQ(first.second.mid(0, 3), QStringList({"set", "org.gnome.desktop.background", "picture-uri"}));
    const QString kept = QUrl(first.second[3]).toLocalFile();
    EXPECT_TRUE(kept.startsWith(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Vimora/"));
    QImageReader reader(kept);
    EXPECT_EQ(reader.format(), "bmp");
    EXPECT_EQ(reader.size(), QSize(320, 200));

    // A bitmap is kept as it is; the older wallpaper file goes.
    fixture.launcher.started.clear();
    ui(window).ChkCicle->setChecked(false);
    window.Mostra_Image(false, bitmap, true);
    ui(window).mnuWall->trigger();
    ASSERT_FALSE(fixture.launcher.started.isEmpty());
    const QString second = QUrl(fixture.launcher.started.first().second[3]).toLocalFile();
    QFile original(bitmap), copy(second);
    ASSERT_TRUE(original.open(QIODevice::ReadOnly) && copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), original.readAll());
    EXPECT_FALSE(QFile::exists(kept));

    fixture.launcher.started.clear();
    ui(window).mnuRemoveWall->trigger();
    ASSERT_EQ(fixture.launcher.started.size(), 1);
    EXPECT_EQ(fixture.launcher.started[0].second,
              QStringList({"set", "org.gnome.desktop.background", "picture-options", "none"}));
    EXPECT_TRUE(fixture.prompts.asked.isEmpty());
}

TEST(MainWindowOutput, ADesktopWithoutRemovalSaysSo)
{
    DesktopScope kde("KDE");
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(pictureIn(fixture, "kde", "a.bmp", {32, 32}, Qt::blue));
    ui(window).mnuRemoveWall->trigger();
    EXPECT_TRUE(fixture.launcher.started.isEmpty());
    ASSERT_EQ(fixture.prompts.asked.size(), 1);
    EXPECT_EQ(fixture.prompts.asked[0].text, "This desktop offers no way to remove the wallpaper.");
}

TEST(MainWindowOutput, SlidesArePrintedByTheirOwnProgramNeverDrawn)
{
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    const QString folder = fixture.makeFolder("slides");
    fixture.makeFiles(folder, {"talk.ppt"});
    frmMain &window = fixture.start(folder + "/talk.ppt");
    ASSERT_EQ(fixture.context->FileTypeCode(), "PPT");
    fixture.prompts.printers = {{true, folder + "/drawn.pdf", 2}};
    QTest::keyClick(&window, Qt::Key_P, Qt::AltModifier);
    EXPECT_EQ(fixture.prompts.printRequests.size(), 1);
    EXPECT_FALSE(QFile::exists(folder + "/drawn.pdf"));
    // Without an office program the user is told the slides went nowhere.
    const bool office = !QStandardPaths::findExecutable("libreoffice").isEmpty()
        || !QStandardPaths::findExecutable("soffice").isEmpty();
    EXPECT_EQ(fixture.prompts.asked.size(), office ? 0 : 1);
    EXPECT_TRUE(ui(window).cmdPrint->isEnabled());
}
