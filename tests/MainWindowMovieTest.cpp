#include "support/MainWindowFixture.h"
#include "support/TestClips.h"
#include "support/WindowProbe.h"

#include "display/AnimationView.h"
#include "platform/MoviePlayer.h"
#include "viewer/ViewRules.h"

#include <QAction>
#include <QElapsedTimer>
#include <QFile>
#include <QFrame>
#include <QMenu>
#include <QMouseEvent>
#include <QSet>
#include <QTest>
#include <QTimer>

namespace {

constexpr int OpenTimeoutMs = 8000;

// A folder with a picture and a copy of the AVI test clip; the window starts
// on the picture with auto-play as asked.
struct MovieWindow {
    explicit MovieWindow(bool autoPlay = false)
    {
        folder = fixture.makeFolder("movies");
        fixture.makeFiles(folder, {"a.bmp"});
        fixture.settings().write("UserDef", "Language", "EN");
        const QString clip = TestClips::clip("avi");
        if (!clip.isEmpty())
            QFile::copy(clip, folder + "/m.avi");
        frmMain &window = fixture.start(folder + "/a.bmp");
        ui(window).ChkAuto->setChecked(autoPlay);
    }
    frmMain &window() { return fixture.window(); }
    MoviePlayer &player() { return *ui(fixture.window()).MediaPlayer1; }
    bool showMovie()
    {
        window().Mostra_Image(false, "m.avi");
        return QTest::qWaitFor([&] { return player().PlayState() != MoviePlayer::Closed; }, OpenTimeoutMs);
    }
    // Paused at about that position, the seek done.
    bool pauseAt(double seconds)
    {
        player().Pause();
        player().setCurrentPosition(seconds);
        return QTest::qWaitFor([&] { return player().PlayState() == MoviePlayer::Paused; }, OpenTimeoutMs);
    }

    MainWindowFixture fixture;
    QString folder;
};

void mouse(QWidget *target, QEvent::Type type, Qt::MouseButton button, QPoint at,
           void (frmMain::*handler)(QMouseEvent *), frmMain &window)
{
    QMouseEvent event(type, at, target->mapToGlobal(at), button, button, Qt::NoModifier);
    (window.*handler)(&event);
}

#define REQUIRE_FFMPEG()                                                                                           \
    if (!TestClips::ffmpegAvailable())                                                                             \
    GTEST_SKIP() << "ffmpeg is not installed: no test clips"

} // namespace

// ---------------------------------------------------------------- opening

class MainWindowAutoPlay : public ::testing::TestWithParam<bool> {};

TEST_P(MainWindowAutoPlay, OpensPlayingOrStoppedOnItsFirstFrame)
{
    REQUIRE_FFMPEG();
    MovieWindow movies(GetParam());
    ASSERT_TRUE(movies.showMovie());
    const int expected = GetParam() ? MoviePlayer::Playing : MoviePlayer::Stopped;
    EXPECT_TRUE(QTest::qWaitFor([&] { return movies.player().PlayState() == expected; }, OpenTimeoutMs));
    EXPECT_TRUE(movies.fixture.context->MainMovieLoaded());
    EXPECT_TRUE(movies.player().isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return TestClips::showsColourBars(movies.player().currentFrame()); },
                                OpenTimeoutMs));
    // Its first frame is on screen, so libmpv has opened it: it would play by now.
    EXPECT_EQ(movies.player().PlayState(), expected);
}

INSTANTIATE_TEST_SUITE_P(OnAndOff, MainWindowAutoPlay, ::testing::Bool());

TEST(MainWindowMovie, PlayPauseAndStopFromTheMenu)
{
    REQUIRE_FFMPEG();
    MovieWindow movies;
    frmMain &window = movies.window();
    ASSERT_TRUE(movies.showMovie());
    // Each time through the popup, as a user reaches the entries.
    const auto openPopup = [&] {
        mouse(&movies.player(), QEvent::MouseButtonPress, Qt::RightButton, {30, 30}, &frmMain::MediaPlayer1_MouseDown,
              window);
        ui(window).SFPOPUP->hide();
    };
    openPopup();
    ui(window).mnuPlay->trigger();
    EXPECT_EQ(movies.player().PlayState(), MoviePlayer::Playing);
    openPopup();
    EXPECT_TRUE(ui(window).mnuStop->isEnabled());
    ui(window).mnuPlay->trigger(); // the item toggles
    EXPECT_EQ(movies.player().PlayState(), MoviePlayer::Paused);
    openPopup();
    ui(window).mnuStop->trigger();
    EXPECT_EQ(movies.player().PlayState(), MoviePlayer::Stopped);
    EXPECT_EQ(movies.player().CurrentPosition(), 0);
    openPopup();
    EXPECT_FALSE(ui(window).mnuStop->isEnabled());
    EXPECT_TRUE(ui(window).mnuPlay->isEnabled());
}

TEST(MainWindowMovie, RefreshContinuesWhereTheMovieWas)
{
    REQUIRE_FFMPEG();
    MovieWindow movies;
    ASSERT_TRUE(movies.showMovie());
    ASSERT_TRUE(movies.pauseAt(0.8));
    movies.window().cmdRefr_Click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return movies.player().PlayState() != MoviePlayer::Closed; }, OpenTimeoutMs));
    EXPECT_NEAR(movies.player().CurrentPosition(), 0.8, 0.15);
    // A plain change of file starts from the beginning.
    movies.window().Mostra_Image(false, "a.bmp");
    movies.window().Mostra_Image(false, "m.avi");
    EXPECT_EQ(movies.player().CurrentPosition(), 0);
}

TEST(MainWindowMovie, MovieDeletedAfterTheListWasReadIsNotOpened)
{
    MovieWindow movies;
    movies.fixture.makeFiles(movies.folder, {"gone.avi"});
    movies.window().cmdRefr_Click();
    ASSERT_TRUE(QFile::remove(movies.folder + "/gone.avi"));
    ui(movies.window()).ChkCicle->setChecked(true);
    movies.window().Mostra_Image(false, "gone.avi");
    EXPECT_TRUE(movies.fixture.context->MainMovieLoaded());
    EXPECT_TRUE(movies.player().FileName().isEmpty());
    EXPECT_FALSE(movies.player().hasEngine());
    EXPECT_FALSE(ui(movies.window()).TimerImage->isActive()) << "the slideshow stops at a vanished movie";
    EXPECT_TRUE(movies.fixture.prompts.asked.isEmpty());
}

TEST(MainWindowMovie, CorruptOrTruncatedMovieLeavesThePlayerEmptyQuietly)
{
    MovieWindow movies(true);
    QFile garbage(movies.folder + "/bad.avi");
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write(QByteArray("RIFF\x10\0\0\0AVI LIST", 16) + QByteArray(4000, '\x5a'));
    garbage.close();
    const QString clip = TestClips::clip("mpg");
    if (!clip.isEmpty()) {
        QFile whole(clip);
        ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
        QFile cut(movies.folder + "/cut.mpg");
        ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
        cut.write(whole.read(600)); // not even one frame
    }
    movies.window().cmdRefr_Click();
    for (const char *name : {"bad.avi", "cut.mpg"}) {
        if (!QFile::exists(movies.folder + "/" + name))
            continue;
        QElapsedTimer timer;
        timer.start();
        movies.window().Mostra_Image(false, name);
        EXPECT_LT(timer.elapsed(), 3000) << name << ": showing must not wait for the file";
        // Refused, or opened with nothing to play and at its end at once.
        EXPECT_TRUE(QTest::qWaitFor([&] { return !movies.player().hasEngine()
                                                 || movies.player().PlayState() == MoviePlayer::Paused; },
                                    OpenTimeoutMs))
            << name;
        EXPECT_FALSE(TestClips::showsColourBars(movies.player().currentFrame())) << name;
    }
    EXPECT_TRUE(movies.fixture.prompts.asked.isEmpty());
}

// ---------------------------------------------------------------- full screen

struct FullScreenCase {
    const char *name;
    int state; // Playing, Paused or Stopped before going full screen
};

class MainWindowMovieFullScreen : public ::testing::TestWithParam<FullScreenCase> {};

TEST_P(MainWindowMovieFullScreen, KeepsStateAndPositionThereAndBack)
{
    REQUIRE_FFMPEG();
    MovieWindow movies;
    frmMain &window = movies.window();
    MoviePlayer &player = movies.player();
    ASSERT_TRUE(movies.showMovie());
    ASSERT_TRUE(movies.pauseAt(0.5));
    if (GetParam().state == MoviePlayer::Stopped)
        window.mnuStop_Click();
    else if (GetParam().state == MoviePlayer::Playing)
        window.mnuPlay_Click();
    const double before = player.CurrentPosition();

    window.mnuFullScreen_Click();
    EXPECT_EQ(player.DisplaySize(), MoviePlayer::FullScreen);
    EXPECT_TRUE(movies.fixture.context->FullScreenActive());
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(player.isVisible());
    EXPECT_TRUE(player.isFullScreen());

    // A key other than space brings everything back.
    QTest::keyClick(&player, Qt::Key_Escape);
    EXPECT_NE(player.DisplaySize(), MoviePlayer::FullScreen);
    EXPECT_FALSE(movies.fixture.context->FullScreenActive());
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(player.parentWidget(), &window);
    EXPECT_FALSE(player.isWindow());
    if (GetParam().state == MoviePlayer::Playing) {
        EXPECT_NE(player.PlayState(), MoviePlayer::Stopped);
        EXPECT_GE(player.CurrentPosition(), before);
    } else {
        EXPECT_EQ(player.PlayState(), GetParam().state);
        EXPECT_NEAR(player.CurrentPosition(), before, 0.05);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return TestClips::showsColourBars(player.currentFrame()); }, 3000));
}

INSTANTIATE_TEST_SUITE_P(States, MainWindowMovieFullScreen,
                         ::testing::Values(FullScreenCase{"Playing", MoviePlayer::Playing},
                                           FullScreenCase{"Paused", MoviePlayer::Paused},
                                           FullScreenCase{"Stopped", MoviePlayer::Stopped}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(MainWindowMovie, SpaceInFullScreenPlaysAndPausesAndStaysThere)
{
    REQUIRE_FFMPEG();
    MovieWindow movies;
    ASSERT_TRUE(movies.showMovie());
    movies.window().mnuFullScreen_Click();
    QTest::keyClick(&movies.player(), Qt::Key_Space);
    EXPECT_EQ(movies.player().DisplaySize(), MoviePlayer::FullScreen);
    EXPECT_EQ(movies.player().PlayState(), MoviePlayer::Playing);
    // The menu command goes back, too.
    movies.window().mnuFullScreen_Click();
    EXPECT_NE(movies.player().DisplaySize(), MoviePlayer::FullScreen);
    EXPECT_TRUE(movies.window().isVisible());
}

TEST(MainWindowMovie, PopupIsBuiltForTheDisplaySize)
{
    REQUIRE_FFMPEG();
    MovieWindow movies;
    frmMain &window = movies.window();
    MoviePlayer &player = movies.player();
    const auto rightPress = [&] {
        mouse(&player, QEvent::MouseButtonPress, Qt::RightButton, {30, 30}, &frmMain::MediaPlayer1_MouseDown,
              window);
    };
    // No file in the player: no menu.
    rightPress();
    EXPECT_FALSE(ui(window).SFPOPUP->isVisible());

    ASSERT_TRUE(movies.showMovie());
    const QList<QAction *> windowedOnly{ui(window).mnuSave, ui(window).mnuPrint, ui(window).mnuGrab, ui(window).mnuWall,
                                        ui(window).SFDelete, ui(window).mnufit, ui(window).mnuZoom->menuAction()};
    rightPress();
    ASSERT_TRUE(ui(window).SFPOPUP->isVisible());
    EXPECT_EQ(ui(window).SFPOPUP->defaultAction(), ui(window).mnuFullScreen);
    EXPECT_EQ(ui(window).mnuFullScreen->text(), "Full Screen");
    EXPECT_TRUE(ui(window).mnuPlay->isVisible());
    EXPECT_FALSE(ui(window).mnuAnim->isVisible());
    EXPECT_FALSE(ui(window).mnuStop->isEnabled()) << "stopped: nothing to stop";
    for (QAction *item : windowedOnly)
        EXPECT_TRUE(item->isVisible()) << item->objectName().toStdString();
    ui(window).SFPOPUP->hide();

    window.mnuFullScreen_Click();
    window.mnuPlay_Click();
    rightPress();
    ASSERT_TRUE(ui(window).SFPOPUP->isVisible());
    EXPECT_EQ(ui(window).mnuFullScreen->text(), "Restore");
    EXPECT_TRUE(ui(window).mnuStop->isEnabled());
    for (QAction *item : windowedOnly)
        EXPECT_FALSE(item->isVisible()) << item->objectName().toStdString();
    ui(window).SFPOPUP->hide();
    ui(window).mnuFullScreen->trigger();
    EXPECT_NE(player.DisplaySize(), MoviePlayer::FullScreen);

    // Over a crop rectangle the crop menu comes instead.
    window.cmdRitaglia_Click();
    rightPress();
    EXPECT_FALSE(ui(window).SFPOPUP->isVisible());
    EXPECT_TRUE(ui(window).SFCrop->isVisible());
    ui(window).SFCrop->hide();
}

TEST(MainWindowMovie, CropRectangleOverAMovieStopsItAndFreesThePlayerAfter)
{
    REQUIRE_FFMPEG();
    MovieWindow movies(true);
    frmMain &window = movies.window();
    MoviePlayer &player = movies.player();
    ASSERT_TRUE(movies.showMovie());
    ASSERT_TRUE(QTest::qWaitFor([&] { return player.PlayState() == MoviePlayer::Playing; }, OpenTimeoutMs));
    window.cmdRitaglia_Click();
    mouse(&player, QEvent::MouseButtonPress, Qt::LeftButton, {10, 10}, &frmMain::MediaPlayer1_MouseDown, window);
    EXPECT_EQ(player.PlayState(), MoviePlayer::Stopped);
    EXPECT_FALSE(player.contextMenuEnabled());
    EXPECT_EQ(player.videoCursor(), Qt::CrossCursor);
    mouse(&player, QEvent::MouseMove, Qt::NoButton, {90, 70}, &frmMain::MediaPlayer1_MouseMove, window);
    mouse(&player, QEvent::MouseButtonRelease, Qt::LeftButton, {90, 70}, &frmMain::MediaPlayer1_MouseUp, window);
    EXPECT_TRUE(movies.fixture.window().cropSelectionActive());
    EXPECT_TRUE(ui(window).LabMis->isVisible());
    EXPECT_TRUE(ui(window).SelLines[1]->isVisible());
    EXPECT_NEAR(ui(window).SelLines[1]->width(), 80, 2);
    window.ClearCropSelection();
    EXPECT_TRUE(player.contextMenuEnabled());
    EXPECT_EQ(player.videoCursor(), Qt::ArrowCursor);
}

// ---------------------------------------------------------------- GIF switch

TEST(MainWindowAnimation, CheckBoxSwitchesBetweenAnimationAndStillPicture)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("gifs");
    fixture.makeFiles(folder, {"a.jpg"});
    ASSERT_TRUE(QFile::copy(VIMORA_BUILT_DATA_DIR "/sample-animation.gif", folder + "/moving.gif"));
    fixture.settings().write("UserDef", "Language", "EN");
    fixture.settings().write("UserDef", "swAnim", "0");
    frmMain &window = fixture.start(folder + "/a.jpg");
    ui(window).chkAnim->setChecked(false);
    fixture.state->AnimateGifs = false;

    // Ticking it over a JPEG changes nothing that shows.
    ui(window).chkAnim->click();
    EXPECT_TRUE(fixture.state->AnimateGifs);
    EXPECT_TRUE(ui(window).ImgEgg->isVisible());
    EXPECT_FALSE(ui(window).WebBrowser1->isVisible());

    window.Mostra_Image(false, "moving.gif");
    EXPECT_TRUE(ui(window).WebBrowser1->isVisible());
    EXPECT_FALSE(ui(window).ImgEgg->isVisible());
    ASSERT_GT(ui(window).WebBrowser1->frameCount(), 1);
    const int first = ui(window).WebBrowser1->currentFrame();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ui(window).WebBrowser1->currentFrame() != first; }, 3000))
        << "the animation runs";

    ui(window).mnuAnim->trigger(); // flips the box
    EXPECT_FALSE(ui(window).chkAnim->isChecked());
    EXPECT_FALSE(fixture.state->AnimateGifs);
    EXPECT_FALSE(ui(window).WebBrowser1->isVisible());
    EXPECT_TRUE(ui(window).ImgEgg->isVisible());

    ui(window).chkAnim->click();
    EXPECT_TRUE(ui(window).WebBrowser1->isVisible());
    EXPECT_FALSE(ui(window).ImgEgg->isVisible());

    // Another file empties the animation view.
    window.Mostra_Image(false, "a.jpg");
    EXPECT_FALSE(ui(window).WebBrowser1->isVisible());
    EXPECT_TRUE(ui(window).WebBrowser1->isEmpty());
}

// ---------------------------------------------------------------- corpus

namespace {
// Several colours: a real frame, not a black or flat one.
bool notBlank(const QImage &image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 4)
        for (int x = 0; x < image.width(); x += 4)
            colours.insert(image.pixel(x, y));
    return colours.size() > 8;
}
} // namespace

class MainWindowCorpusMovie : public ::testing::TestWithParam<const char *> {};

// Shown by full path, as a drop or the command line does: the MPEG
// elementary stream (.m1v) plays like the rest.
TEST_P(MainWindowCorpusMovie, PlaysAndShowsAFrame)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("start");
    fixture.makeFiles(folder, {"a.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/a.bmp");
    ui(window).ChkAuto->setChecked(true);
    window.Mostra_Image(false, QStringLiteral(VIMORA_CORPUS_DIR "/") + GetParam(), true);
    EXPECT_TRUE(fixture.context->MainMovieLoaded());
    MoviePlayer &player = *ui(window).MediaPlayer1;
    EXPECT_TRUE(QTest::qWaitFor([&] { return player.PlayState() == MoviePlayer::Playing; }, OpenTimeoutMs));
    EXPECT_TRUE(QTest::qWaitFor([&] { return notBlank(player.currentFrame()); }, OpenTimeoutMs));
    EXPECT_TRUE(fixture.prompts.asked.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Files, MainWindowCorpusMovie,
                         ::testing::Values("vp8-test-vectors/vp80-00-comprehensive-001.ivf",
                                           "go-mediainfo-samples/sample.avi", "go-mediainfo-samples/sample.mpg",
                                           "mediainfo-js/test-sample-320x240-29.970fps-14.014s.m1v",
                                           "totem-pl-parser/asf-with-asx-suffix.asx"));

TEST(MainWindowMovie, FitActualSizeAndZoomActOnAMovieAndTheZoomLabelTellsItsScale)
{
    REQUIRE_FFMPEG();
    MovieWindow movies;
    frmMain &window = movies.window();
    MoviePlayer &player = movies.player();
    window.resize(1000, 800);
    ASSERT_TRUE(movies.showMovie());
    // Actual size, the mode a new window starts in: the movie at its own size.
    EXPECT_TRUE(QTest::qWaitFor([&] { return ui(window).LabZoom->text() == " 100% "; }, OpenTimeoutMs))
        << ui(window).LabZoom->text().toStdString();
    EXPECT_EQ(player.DisplaySize(), MoviePlayer::NormalSize);

    // Fit: enlarged to the area, and the label says by how much.
    QTest::keyClick(&window, Qt::Key_F, Qt::AltModifier);
    const QRect drawn = MoviePlayer::videoFrameRect(player.naturalSize(), player.videoArea(), player.DisplaySize());
    const int fitted = qRound(100.0 * drawn.width() / TestClips::Width);
    EXPECT_GT(fitted, 200);
    EXPECT_EQ(ui(window).LabZoom->text(), ViewRules::zoomLabel(fitted));

    // Zoom -: smaller than the fit, and the player shrinks with it.
    ui(window).cmdReduce->click();
    EXPECT_EQ(ui(window).LabZoom->text(), ViewRules::zoomLabel(85));
    EXPECT_EQ(player.videoArea().width(), qRound(TestClips::Width * 0.85));

    QTest::keyClick(&window, Qt::Key_L, Qt::AltModifier);
    EXPECT_EQ(ui(window).LabZoom->text(), " 100% ");

    // Fit chosen while the movie is full screen leaves full screen first.
    window.mnuFullScreen_Click();
    ASSERT_EQ(player.DisplaySize(), MoviePlayer::FullScreen);
    window.mnufit_Click();
    EXPECT_NE(player.DisplaySize(), MoviePlayer::FullScreen);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(ui(window).LabZoom->text(), ViewRules::zoomLabel(fitted));
}
