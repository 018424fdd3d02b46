#include "platform/MovieControlBar.h"
#include "platform/MoviePlayer.h"
#include "support/TestClips.h"
#include "support/TestTiming.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMenu>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <iostream>
#include <limits>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

constexpr int OpenTimeoutMs = 8000;

QString corpusFile(const char *relative)
{
    return QStringLiteral(VIMORA_CORPUS_DIR "/") + QLatin1String(relative);
}

using StateChanges = std::vector<std::pair<int, int>>;

// Every PlayStateChange a player emits, in order.
struct StateRecorder {
    explicit StateRecorder(MoviePlayer &player)
    {
        QObject::connect(&player, &MoviePlayer::PlayStateChange, &player,
                         [this](int oldState, int newState) { changes.emplace_back(oldState, newState); });
        QObject::connect(&player, &MoviePlayer::mediaFailed, &player, [this] { ++failures; });
    }
    bool reached(int state) const
    {
        for (const auto &change : changes) {
            if (change.second == state)
                return true;
        }
        return false;
    }
    StateChanges changes;
    int failures = 0;
};

QString requireClip(const QString &extension)
{
    if (!TestClips::ffmpegAvailable())
        return {};
    return TestClips::clip(extension);
}

#define REQUIRE_CLIP(var, ext)                                                                                     \
    const QString var = requireClip(QStringLiteral(ext));                                                          \
    if (!TestClips::ffmpegAvailable())                                                                             \
        GTEST_SKIP() << "ffmpeg is not installed: no test clips";                                                \
    ASSERT_FALSE(var.isEmpty()) << "ffmpeg could not make the ." ext " clip"

std::unique_ptr<MoviePlayer> shownPlayer()
{
    auto player = std::make_unique<MoviePlayer>();
    player->resize(320, 280);
    player->show();
    return player;
}

} // namespace

// ---------------------------------------------------------------- each container

class MoviePlayerContainerTest : public ::testing::TestWithParam<QString> {};

TEST_P(MoviePlayerContainerTest, OpensPlaysAndShowsTheColourBars)
{
    if (!TestClips::ffmpegAvailable())
        GTEST_SKIP() << "ffmpeg is not installed: no test clips";
    const QString clip = TestClips::clip(GetParam());
    ASSERT_FALSE(clip.isEmpty()) << "ffmpeg could not make the ." << GetParam().toStdString() << " clip";

    auto player = shownPlayer();
    StateRecorder recorder(*player);
    player->setAutoStart(true);
    player->setFileName(clip);
    EXPECT_EQ(player->FileName(), clip);
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder.reached(MoviePlayer::Playing); }, OpenTimeoutMs));
    EXPECT_EQ(recorder.failures, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return player->Duration() > 0; }, 2000));
    EXPECT_NEAR(player->Duration(), TestClips::Seconds, 0.3);
    EXPECT_TRUE(QTest::qWaitFor([&] { return player->naturalSize().isValid(); }, 2000));
    EXPECT_EQ(player->naturalSize(), QSize(TestClips::Width, TestClips::Height));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return TestClips::showsColourBars(player->grab(player->videoArea()).toImage()); }, 3000));
    EXPECT_TRUE(TestClips::showsColourBars(player->currentFrame()));
}

INSTANTIATE_TEST_SUITE_P(MoviePlayerClips, MoviePlayerContainerTest, ::testing::ValuesIn(TestClips::extensions().toVector()),
                         [](const auto &info) { return info.param.toStdString(); });

// ---------------------------------------------------------------- engine lifetime

TEST(MoviePlayer, HoldsAnEngineOnlyWhileAFileIsSet)
{
    MoviePlayer player;
    EXPECT_FALSE(player.hasEngine());
    EXPECT_EQ(player.PlayState(), MoviePlayer::Closed);
    EXPECT_EQ(player.FileName(), QString());
    player.Play(); // nothing to play: stays empty
    player.Stop();
    EXPECT_FALSE(player.hasEngine());

    REQUIRE_CLIP(clip, "avi");
    player.setFileName(clip);
    EXPECT_TRUE(player.hasEngine());
    ASSERT_TRUE(QTest::qWaitFor([&] { return player.PlayState() == MoviePlayer::Stopped; }, OpenTimeoutMs));
    player.setFileName(QString());
    EXPECT_FALSE(player.hasEngine());
    EXPECT_EQ(player.PlayState(), MoviePlayer::Closed);
    EXPECT_EQ(player.Duration(), 0);
    EXPECT_FALSE(player.naturalSize().isValid());
}

TEST(MoviePlayer, WithoutAutoStartOpensStoppedOnTheFirstFrame)
{
    REQUIRE_CLIP(clip, "mpg");
    auto player = shownPlayer();
    player->setFileName(clip);
    EXPECT_EQ(player->PlayState(), MoviePlayer::Closed); // still opening
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->PlayState() == MoviePlayer::Stopped; }, OpenTimeoutMs));
    EXPECT_EQ(player->CurrentPosition(), 0);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return TestClips::showsColourBars(player->grab(player->videoArea()).toImage()); }, 3000));
}

TEST(MoviePlayer, PauseStopAndPosition)
{
    REQUIRE_CLIP(clip, "avi");
    auto player = shownPlayer();
    player->setFileName(clip);
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->PlayState() == MoviePlayer::Stopped; }, OpenTimeoutMs));

    player->Play();
    EXPECT_EQ(player->PlayState(), MoviePlayer::Playing);
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->CurrentPosition() > 0.2; }, 3000));

    player->Pause();
    EXPECT_EQ(player->PlayState(), MoviePlayer::Paused);
    QTest::qWait(150);
    const double pausedAt = player->CurrentPosition();
    QTest::qWait(300);
    EXPECT_NEAR(player->CurrentPosition(), pausedAt, 0.05);

    player->setCurrentPosition(1.0);
    EXPECT_DOUBLE_EQ(player->CurrentPosition(), 1.0);
    QTest::qWait(300);
    EXPECT_NEAR(player->CurrentPosition(), 1.0, 0.05);
    EXPECT_EQ(player->PlayState(), MoviePlayer::Paused);

    player->Stop();
    EXPECT_EQ(player->PlayState(), MoviePlayer::Stopped);
    EXPECT_EQ(player->CurrentPosition(), 0);
    QTest::qWait(300);
    EXPECT_NEAR(player->CurrentPosition(), 0, 0.001);
    EXPECT_EQ(player->PlayState(), MoviePlayer::Stopped);

    // The end is a pause on the last frame; Play then starts over.
    player->Play();
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->PlayState() == MoviePlayer::Paused; }, 4000));
    EXPECT_GT(player->CurrentPosition(), 1.2);
    EXPECT_TRUE(TestClips::showsColourBars(player->grab(player->videoArea()).toImage()));
    player->Play();
    EXPECT_EQ(player->PlayState(), MoviePlayer::Playing);
    QTest::qWait(200);
    EXPECT_LT(player->CurrentPosition(), 1.0);
}

TEST(MoviePlayer, PositionSetWhileOpeningIsKept)
{
    REQUIRE_CLIP(clip, "mov");
    MoviePlayer player;
    player.setFileName(clip);
    player.setCurrentPosition(0.8);
    EXPECT_DOUBLE_EQ(player.CurrentPosition(), 0.8);
    ASSERT_TRUE(QTest::qWaitFor([&] { return player.PlayState() == MoviePlayer::Stopped; }, OpenTimeoutMs));
    QTest::qWait(300);
    EXPECT_NEAR(player.CurrentPosition(), 0.8, 0.05);
}

TEST(MoviePlayer, PlayStateChangesInOrder)
{
    REQUIRE_CLIP(clip, "avi");
    auto player = shownPlayer();
    StateRecorder recorder(*player);
    player->setFileName(clip);
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->PlayState() == MoviePlayer::Stopped; }, OpenTimeoutMs));
    player->Play();
    player->Pause();
    player->Stop();
    player->Play();
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->PlayState() == MoviePlayer::Paused; }, 4000));
    player->setFileName(QString());
    const StateChanges expected = {{6, 0}, {0, 2}, {2, 1}, {1, 0}, {0, 2}, {2, 1}, {1, 6}};
    EXPECT_EQ(recorder.changes, expected);
    EXPECT_EQ(recorder.failures, 0);
}

TEST(MoviePlayer, ReplacingAPlayingFileClosesItFirst)
{
    REQUIRE_CLIP(first, "avi");
    REQUIRE_CLIP(second, "ivf");
    MoviePlayer player;
    StateRecorder recorder(player);
    player.setAutoStart(true);
    player.setFileName(first);
    ASSERT_TRUE(QTest::qWaitFor([&] { return player.PlayState() == MoviePlayer::Playing; }, OpenTimeoutMs));
    player.setFileName(second);
    EXPECT_EQ(player.PlayState(), MoviePlayer::Closed);
    ASSERT_TRUE(QTest::qWaitFor([&] { return player.PlayState() == MoviePlayer::Playing; }, OpenTimeoutMs));
    const StateChanges expected = {{6, 2}, {2, 6}, {6, 2}};
    EXPECT_EQ(StateChanges(recorder.changes.begin(), recorder.changes.begin() + 3), expected);
}

TEST(MoviePlayer, DestroyingAPlayingPlayerDoesNotHang)
{
    REQUIRE_CLIP(clip, "asf");
    auto player = shownPlayer();
    player->setAutoStart(true);
    player->setFileName(clip);
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->PlayState() == MoviePlayer::Playing; }, OpenTimeoutMs));
    QElapsedTimer timer;
    timer.start();
    player.reset();
    EXPECT_LT(timer.elapsed(), 2000);

    // Nor one still opening.
    player = shownPlayer();
    player->setAutoStart(true);
    player->setFileName(clip);
    timer.restart();
    player.reset();
    EXPECT_LT(timer.elapsed(), 2000);
}

// ---------------------------------------------------------------- broken files

TEST(MoviePlayer, CorruptAndTruncatedFilesLeaveItEmpty)
{
    REQUIRE_CLIP(clip, "avi");
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QFile source(clip);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    const QByteArray whole = source.readAll();

    const QString randomBytes = dir.filePath(QStringLiteral("random-bytes.avi"));
    const QString headerOnly = dir.filePath(QStringLiteral("cut-in-header.avi"));
    const QString empty = dir.filePath(QStringLiteral("empty.avi"));
    {
        std::mt19937 random(20240611);
        QByteArray noise(64 * 1024, Qt::Uninitialized);
        for (char &byte : noise)
            byte = static_cast<char>(random() & 0xFF);
        QFile out(randomBytes);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(noise);
        QFile cut(headerOnly);
        ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
        cut.write(whole.left(300));
        QFile nothing(empty);
        ASSERT_TRUE(nothing.open(QIODevice::WriteOnly));
    }
    const QStringList broken = {randomBytes, headerOnly, empty, dir.filePath(QStringLiteral("missing.avi"))};
    for (const QString &path : broken) {
        SCOPED_TRACE(path.toStdString());
        auto player = shownPlayer();
        StateRecorder recorder(*player);
        player->setAutoStart(true);
        QElapsedTimer timer;
        timer.start();
        player->setFileName(path);
        EXPECT_LT(timer.elapsed(), 500); // never waits for the file
        EXPECT_TRUE(QTest::qWaitFor([&] { return recorder.failures > 0; }, OpenTimeoutMs));
        EXPECT_TRUE(QTest::qWaitFor([&] { return !player->hasEngine(); }, 1000));
        EXPECT_EQ(player->PlayState(), MoviePlayer::Closed);
        EXPECT_FALSE(recorder.reached(MoviePlayer::Playing));
        EXPECT_FALSE(player->naturalSize().isValid());
        EXPECT_EQ(player->FileName(), path);
        player->Play(); // tries again, fails again, quietly
        EXPECT_TRUE(QTest::qWaitFor([&] { return recorder.failures > 1; }, OpenTimeoutMs));
    }
}

TEST(MoviePlayer, FileCutInTheMiddlePlaysWhatIsThereAndStops)
{
    REQUIRE_CLIP(clip, "avi");
    QTemporaryDir dir;
    QFile source(clip);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    const QString half = dir.filePath(QStringLiteral("cut-in-half.avi"));
    QFile out(half);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(source.readAll().chopped(source.size() / 2));
    out.close();

    auto player = shownPlayer();
    StateRecorder recorder(*player);
    player->setAutoStart(true);
    player->setFileName(half);
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder.reached(MoviePlayer::Playing); }, OpenTimeoutMs));
    EXPECT_TRUE(QTest::qWaitFor([&] { return player->PlayState() == MoviePlayer::Paused; }, OpenTimeoutMs));
    EXPECT_GT(player->CurrentPosition(), 0.3);
    EXPECT_EQ(recorder.failures, 0);
}

// ---------------------------------------------------------------- corpus

TEST(MoviePlayer, CorpusMoviesPlay)
{
    const char *files[] = {
        "vp8-test-vectors/vp80-00-comprehensive-001.ivf",
        "vp8-test-vectors/vp80-00-comprehensive-006.ivf",
        "vp8-test-vectors/vp80-00-comprehensive-008.ivf",
        "vp8-test-vectors/vp80-00-comprehensive-016.ivf",
        "go-mediainfo-samples/sample.avi",
        "go-mediainfo-samples/sample.mpg",
        "mediainfo-js/test-sample-320x240-29.970fps-14.014s.m1v",
        "mathiasbynens-small/AudioVideoInterleave.avi",
        "mathiasbynens-small/WindowsMediaVideo.wmv",
        "mutagen/silence-1.wma",
        "totem-pl-parser/asf-with-asx-suffix.asx",
    };
    // All at once: the suite's time matters more than the two cores' load.
    std::vector<std::unique_ptr<MoviePlayer>> players;
    std::vector<std::unique_ptr<StateRecorder>> recorders;
    for (const char *file : files) {
        players.push_back(std::make_unique<MoviePlayer>());
        players.back()->resize(160, 140);
        players.back()->show();
        recorders.push_back(std::make_unique<StateRecorder>(*players.back()));
        players.back()->setAutoStart(true);
        players.back()->setFileName(corpusFile(file));
    }
    const bool allPlayed = QTest::qWaitFor(
        [&] {
            for (const auto &recorder : recorders) {
                if (!recorder->reached(MoviePlayer::Playing) && recorder->failures == 0)
                    return false;
            }
            return true;
        },
        3 * OpenTimeoutMs);
    EXPECT_TRUE(allPlayed);
    for (size_t i = 0; i < players.size(); ++i) {
        EXPECT_TRUE(recorders[i]->reached(MoviePlayer::Playing)) << files[i];
        EXPECT_EQ(recorders[i]->failures, 0) << files[i];
    }
}

TEST(MoviePlayer, CorpusBrokenMoviesFailCleanly)
{
    const char *files[] = {
        "exiftool/ASF.wmv",
        "exiftool/Pentax.avi",
        "exiftool/QuickTime.mov",
        "exiftool/RIFF.avi",
        "exiftool/Real.ra",
        "exiftool/Real.rm",
        "exiftool/Real.ram",
        "file-format-fixtures/audio/sample.mp2",
        "file-format-fixtures/audio/sample1.ra",
        "file-format-fixtures/audio/sample2.ra",
        "file-format-fixtures/other/sample.asf",
        "file-format-fixtures/other/sample.rm",
        "file-format-fixtures/video/sample.avi",
        "file-format-fixtures/video/sample.mov",
        "file-format-fixtures/video/sample.mpg",
        "file-format-fixtures/video/sample.wmv",
        "file-format-fixtures/playlist/sample1.asx",
        "totem-pl-parser/empty-asx.asx",
        "totem-pl-parser/WMA9.1_98_quality_48khz_vbr_s.wma",
        "lizzy-playlists/asx/repeat.asx",
    };
    std::vector<std::unique_ptr<MoviePlayer>> players;
    std::vector<std::unique_ptr<StateRecorder>> recorders;
    QElapsedTimer timer;
    timer.start();
    for (const char *file : files) {
        players.push_back(std::make_unique<MoviePlayer>());
        recorders.push_back(std::make_unique<StateRecorder>(*players.back()));
        players.back()->setAutoStart(true);
        players.back()->setFileName(corpusFile(file));
    }
    EXPECT_LT(timer.elapsed(), 2000 * SanitizerSlowdown) << "opening must not wait for the files";
    // Refused, or opened with nothing to play and at its end at once.
    const auto settled = [&](size_t i) {
        return recorders[i]->failures > 0 || players[i]->PlayState() == MoviePlayer::Paused;
    };
    const bool allSettled = QTest::qWaitFor(
        [&] {
            for (size_t i = 0; i < players.size(); ++i) {
                if (!settled(i))
                    return false;
            }
            return true;
        },
        2 * OpenTimeoutMs);
    EXPECT_TRUE(allSettled);
    for (size_t i = 0; i < players.size(); ++i) {
        EXPECT_TRUE(settled(i)) << files[i] << " state " << players[i]->PlayState();
        if (recorders[i]->failures == 0)
            std::cout << "opened, nothing to play: " << files[i] << "\n";
    }
    timer.restart();
    players.clear();
    EXPECT_LT(timer.elapsed(), 3000) << "closing must not hang";
}

// ---------------------------------------------------------------- display

TEST(MoviePlayer, VideoFrameRectFitsOrCentres)
{
    const QRect area(0, 0, 400, 300);
    // Fit keeps the proportions and enlarges.
    EXPECT_EQ(MoviePlayer::videoFrameRect(QSize(176, 144), area, MoviePlayer::FitToControl), QRect(17, 0, 366, 300));
    EXPECT_EQ(MoviePlayer::videoFrameRect(QSize(800, 300), area, MoviePlayer::FitToControl), QRect(0, 75, 400, 150));
    // Normal size is centred, and clipped by the area when larger.
    EXPECT_EQ(MoviePlayer::videoFrameRect(QSize(176, 144), area, MoviePlayer::NormalSize), QRect(112, 78, 176, 144));
    EXPECT_EQ(MoviePlayer::videoFrameRect(QSize(800, 600), area, MoviePlayer::NormalSize), QRect(-200, -150, 800, 600));
    EXPECT_TRUE(MoviePlayer::videoFrameRect(QSize(), area, MoviePlayer::FitToControl).isEmpty());
    EXPECT_TRUE(MoviePlayer::videoFrameRect(QSize(176, 144), QRect(), MoviePlayer::FitToControl).isEmpty());
}

TEST(MoviePlayer, TimeTextIsMinutesAndSeconds)
{
    EXPECT_EQ(movieTimeText(0, 0), QStringLiteral("0:00 / 0:00"));
    EXPECT_EQ(movieTimeText(61.9, 3599), QStringLiteral("1:01 / 59:59"));
    EXPECT_EQ(movieTimeText(4530, 7200), QStringLiteral("75:30 / 120:00"));
    EXPECT_EQ(movieTimeText(-3, std::numeric_limits<double>::quiet_NaN()), QStringLiteral("0:00 / 0:00"));
}

TEST(MoviePlayer, ControlBarTakesTheBottomWhenShown)
{
    MoviePlayer player;
    player.resize(320, 240);
    player.show();
    auto *bar = player.findChild<MovieControlBar *>();
    ASSERT_NE(bar, nullptr);
    EXPECT_TRUE(player.controlBarShown());
    EXPECT_TRUE(bar->isVisible());
    EXPECT_EQ(player.videoArea().bottom() + 1, bar->geometry().top());
    EXPECT_EQ(bar->geometry().bottom(), 239);
    player.setControlBarShown(false);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_EQ(player.videoArea(), player.rect());
}

TEST(MoviePlayer, ControlBarDrivesThePlayer)
{
    REQUIRE_CLIP(clip, "avi");
    auto player = shownPlayer();
    auto *bar = player->findChild<MovieControlBar *>();
    ASSERT_NE(bar, nullptr);
    player->setFileName(clip);
    // The duration arrives on its own, after the file is open: the time text needs it.
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->PlayState() == MoviePlayer::Stopped && player->Duration() > 0; },
                                OpenTimeoutMs));
    emit bar->playPauseClicked();
    EXPECT_EQ(player->PlayState(), MoviePlayer::Playing);
    EXPECT_TRUE(bar->isPlayingShown());
    emit bar->playPauseClicked();
    EXPECT_EQ(player->PlayState(), MoviePlayer::Paused);
    emit bar->seekRequested(1.2);
    EXPECT_DOUBLE_EQ(player->CurrentPosition(), 1.2);
    EXPECT_EQ(bar->timeText(), QStringLiteral("0:01 / 0:01"));
    emit bar->stopClicked();
    EXPECT_EQ(player->PlayState(), MoviePlayer::Stopped);
    emit bar->volumeRequested(30);
    EXPECT_EQ(player->volume(), 30);
}

TEST(MoviePlayer, FullScreenIsLeftByAnyKeyButSpace)
{
    QWidget window;
    window.resize(500, 400);
    auto *player = new MoviePlayer(&window);
    player->setGeometry(10, 10, 300, 250);
    window.show();
    std::vector<int> sizes;
    QObject::connect(player, &MoviePlayer::displaySizeChanged, player, [&](int size) { sizes.push_back(size); });
    EXPECT_EQ(player->DisplaySize(), MoviePlayer::FitToControl);

    player->setDisplaySize(MoviePlayer::FullScreen);
    EXPECT_TRUE(player->isWindow());
    EXPECT_TRUE(player->isFullScreen());
    QTest::keyClick(player, Qt::Key_Space);
    EXPECT_EQ(player->DisplaySize(), MoviePlayer::FullScreen);
    QTest::keyClick(player, Qt::Key_Shift);
    EXPECT_EQ(player->DisplaySize(), MoviePlayer::FullScreen);
    QTest::keyClick(player, Qt::Key_A);
    EXPECT_EQ(player->DisplaySize(), MoviePlayer::FitToControl);
    EXPECT_FALSE(player->isWindow());
    EXPECT_EQ(player->parentWidget(), &window);
    EXPECT_EQ(player->geometry(), QRect(10, 10, 300, 250));

    player->setDisplaySize(MoviePlayer::NormalSize);
    player->setDisplaySize(MoviePlayer::FullScreen);
    player->close(); // closing the full-screen window brings it back
    EXPECT_EQ(player->DisplaySize(), MoviePlayer::NormalSize);
    EXPECT_FALSE(player->isWindow());
    EXPECT_TRUE(player->isVisible());
    const std::vector<int> expected = {3, 4, 0, 3, 0};
    EXPECT_EQ(sizes, expected);
}

TEST(MoviePlayer, OwnMenuOnlyForRightPressesNobodyTook)
{
    REQUIRE_CLIP(clip, "avi");
    auto player = shownPlayer();
    player->setFileName(clip);
    // The menu runs modally inside the press, so a press that shows one
    // returns only once this closes it: no waiting needed after a press.
    int menus = 0;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
            ++menus;
            menu->close();
        }
    });
    closer.start(20);
    bool acceptPress = true;
    QObject::connect(player.get(), &MoviePlayer::mousePressed, player.get(), [&](QMouseEvent *event) {
        if (acceptPress)
            event->accept();
    });
    QTest::mousePress(player.get(), Qt::RightButton, {}, QPoint(50, 50));
    EXPECT_EQ(menus, 0);

    acceptPress = false;
    QTest::mousePress(player.get(), Qt::RightButton, {}, QPoint(50, 50));
    EXPECT_EQ(menus, 1);

    player->setContextMenuEnabled(false);
    QTest::mousePress(player.get(), Qt::RightButton, {}, QPoint(50, 50));
    EXPECT_EQ(menus, 1);
}

TEST(MoviePlayer, MouseEventsReachTheWindow)
{
    MoviePlayer player;
    player.resize(200, 200);
    player.show();
    QPoint pressedAt;
    QPoint releasedAt;
    int moves = 0;
    QObject::connect(&player, &MoviePlayer::mousePressed, &player,
                     [&](QMouseEvent *event) { pressedAt = event->position().toPoint(); });
    QObject::connect(&player, &MoviePlayer::mouseMoved, &player, [&](QMouseEvent *) { ++moves; });
    QObject::connect(&player, &MoviePlayer::mouseReleased, &player,
                     [&](QMouseEvent *event) { releasedAt = event->position().toPoint(); });
    QTest::mousePress(&player, Qt::LeftButton, {}, QPoint(20, 30));
    QTest::mouseMove(&player, QPoint(60, 70));
    QTest::mouseRelease(&player, Qt::LeftButton, {}, QPoint(60, 70));
    EXPECT_EQ(pressedAt, QPoint(20, 30));
    EXPECT_EQ(releasedAt, QPoint(60, 70));
    EXPECT_GE(moves, 1);

    player.setVideoCursor(Qt::CrossCursor);
    EXPECT_EQ(player.videoCursor(), Qt::CrossCursor);
    EXPECT_EQ(player.cursor().shape(), Qt::CrossCursor);
}

// ---------------------------------------------------------------- MPEG streams

// MPE, MPV, M1V, MPV2 (video) and MP2, MPA (audio) are MPEG streams: they
// are movies and play whatever their extension.
TEST(MoviePlayer, BareMpegStreamsPlayUnderEachOfTheirExtensions)
{
    REQUIRE_CLIP(video, "m1v");
    REQUIRE_CLIP(audio, "mpa");
    QTemporaryDir dir;
    const struct {
        const char *extension;
        bool hasVideo;
    } cases[] = {{"mpe", true}, {"mpv", true}, {"m1v", true}, {"mpv2", true}, {"mp2", false}, {"mpa", false}};
    for (const auto &c : cases) {
        const QString path = dir.path() + "/stream." + c.extension;
        ASSERT_TRUE(QFile::copy(c.hasVideo ? video : audio, path));
        const auto player = shownPlayer();
        player->setAutoStart(true);
        player->setFileName(path);
        EXPECT_TRUE(QTest::qWaitFor([&] { return player->PlayState() == MoviePlayer::Playing; }, OpenTimeoutMs))
            << c.extension;
        if (c.hasVideo)
            EXPECT_TRUE(QTest::qWaitFor([&] { return TestClips::showsColourBars(player->currentFrame()); },
                                        OpenTimeoutMs))
                << c.extension;
        else
            EXPECT_TRUE(QTest::qWaitFor([&] { return player->Duration() > 1; }, OpenTimeoutMs)) << c.extension;
    }
}
