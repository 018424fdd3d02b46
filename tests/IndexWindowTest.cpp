#include "index/frmIndex.h"
#include "platform/MoviePlayer.h"
#include "support/MainWindowFixture.h"
#include "support/TestClips.h"
#include "support/WindowProbe.h"

#include <QApplication>
#include <QFrame>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

namespace {

// The index of a started main window, opened with its button, once its
// page is built.
frmIndex &openIndex(frmMain &window)
{
    ui(window).cmdIndex->click();
    frmIndex *index = window.indexWindow();
    EXPECT_NE(index, nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !index->pageLoading(); }, 20000));
    return *index;
}

int visibleCells(const frmIndex &index)
{
    int count = 0;
    for (const frmIndexControls::Cell &cell : ui(index).cells)
        count += cell.Frame2->isVisibleTo(cell.Frame2->parentWidget()) ? 1 : 0;
    return count;
}

bool waitForState(MoviePlayer *player, int state)
{
    return QTest::qWaitFor([&] { return player->PlayState() == state; }, 8000);
}

QStringList numberedPictures(int count)
{
    QStringList names;
    for (int i = 0; i < count; ++i)
        names.append(QStringLiteral("p%1.bmp").arg(i, 2, 10, QLatin1Char('0')));
    return names;
}

} // namespace

TEST(IndexWindow, PagesThroughTwentyFiveFiles)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("many");
    fixture.makeFiles(folder, numberedPictures(25));
    frmMain &window = fixture.start(folder + "/p00.bmp");
    frmIndex &index = openIndex(window);

    EXPECT_TRUE(index.isOpen());
    EXPECT_EQ(visibleCells(index), 24);
    EXPECT_FALSE(ui(index).cmdBack->isEnabled());
    EXPECT_TRUE(ui(index).cmdNext->isEnabled());
    EXPECT_FALSE(ui(index).LabLoad->isVisibleTo(&index));
    EXPECT_EQ(ui(index).LabType->text(), "All Supported Files");
    EXPECT_EQ(index.windowTitle(), " " + folder);
    // Every picture cell got its thumbnail, tag and tooltip.
    EXPECT_FALSE(ui(index).cells[23].Image1->pixmap().isNull());
    EXPECT_EQ(ui(index).cells[0].tag, folder + "/p00.bmp / 71 x 48");
    EXPECT_TRUE(ui(index).cells[0].Frame2->toolTip().startsWith(" p00.bmp  (71 x 48)  "));

    ui(index).cmdBack->click(); // page 0: nothing happens
    EXPECT_EQ(index.IndexPage, 0);
    ui(index).cmdNext->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index.pageLoading(); }, 10000));
    EXPECT_EQ(index.IndexPage, 1);
    EXPECT_EQ(visibleCells(index), 1);
    EXPECT_EQ(ui(index).cells[0].LabImage->text(), "p24.bmp");
    EXPECT_TRUE(ui(index).cmdBack->isEnabled());
    EXPECT_FALSE(ui(index).cmdNext->isEnabled());

    // Page Down in the index moves the main window, not the page.
    const int shown = fixture.context->CurrentIndex();
    QTest::keyClick(&index, Qt::Key_PageDown);
    EXPECT_EQ(fixture.context->CurrentIndex(), shown + 1);
    EXPECT_EQ(index.IndexPage, 1);
}

TEST(IndexWindow, ChangingFolderCancelsThePageInProgress)
{
    MainWindowFixture fixture;
    const QString big = fixture.makeFolder("big");
    for (int i = 0; i < 24; ++i)
        fixture.makePicture(big, QStringLiteral("b%1.jpg").arg(i, 2, 10, QLatin1Char('0')), QSize(3000, 2000));
    const QString small = fixture.makeFolder("small");
    fixture.makeFiles(small, {"s1.bmp", "s2.bmp"});
    frmMain &window = fixture.start(big + "/b00.jpg");

    ui(window).cmdIndex->click();
    frmIndex &index = *window.indexWindow();
    ASSERT_TRUE(index.pageLoading());
    window.setDir1Path(small); // while the big pictures decode
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index.pageLoading(); }, 20000));
    QTest::qWait(300); // late results of the old page would land now

    EXPECT_EQ(index.IndexPage, 0);
    EXPECT_EQ(visibleCells(index), 2);
    EXPECT_EQ(ui(index).cells[0].path, small + "/s1.bmp");
    for (int cell = 2; cell < 24; ++cell)
        EXPECT_TRUE(ui(index).cells[cell].Image1->pixmap().isNull()) << cell;
}

TEST(IndexWindow, PagingWhileAPageBuildsShowsOnlyTheLastPageAsked)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("big");
    // Large enough to be still decoding when the user pages; each its own hue.
    const auto hueOf = [](int i) { return i * 12; };
    for (int i = 0; i < 30; ++i) {
        QImage picture(3000, 2000, QImage::Format_RGB32);
        picture.fill(QColor::fromHsv(hueOf(i), 255, 255));
        ASSERT_TRUE(picture.save(folder + QStringLiteral("/b%1.jpg").arg(i, 2, 10, QLatin1Char('0'))));
    }
    frmMain &window = fixture.start(folder + "/b00.jpg");

    ui(window).cmdIndex->click();
    frmIndex &index = *window.indexWindow();
    ASSERT_TRUE(index.pageLoading());
    // Next, Back and Next again while the pictures of page 0 decode.
    ui(index).cmdNext->click();
    ui(index).cmdBack->click();
    ui(index).cmdNext->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index.pageLoading(); }, 30000));
    QTest::qWait(300); // late results of the older pages would land now

    EXPECT_EQ(index.IndexPage, 1);
    EXPECT_EQ(visibleCells(index), 6);
    EXPECT_EQ(ui(index).cells[0].LabImage->text(), "b24.jpg");
    for (int cell = 0; cell < 6; ++cell) {
        const QImage shown = ui(index).cells[cell].Image1->pixmap().toImage();
        ASSERT_FALSE(shown.isNull()) << cell;
        const int hue = shown.pixelColor(shown.rect().center()).hsvHue();
        EXPECT_NEAR(hue, hueOf(24 + cell), 6) << "cell " << cell << " shows another page's picture";
    }
    for (int cell = 6; cell < 24; ++cell)
        EXPECT_TRUE(ui(index).cells[cell].Image1->pixmap().isNull()) << cell;
}

TEST(IndexWindow, PlaysPausesAndStopsAllMoviesOfThePage)
{
    if (!TestClips::ffmpegAvailable())
        GTEST_SKIP() << "ffmpeg is not installed: no test clips";
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("movies");
    fixture.makeFiles(folder, {"a.bmp"});
    for (const char *extension : {"avi", "mpg", "mov"})
        ASSERT_TRUE(QFile::copy(TestClips::clip(extension), folder + "/clip." + extension));
    frmMain &window = fixture.start(folder + "/a.bmp");
    frmIndex &index = openIndex(window);

    std::vector<int> movies;
    for (int cell = 0; cell < 24; ++cell)
        if (ui(index).cells[cell].movie)
            movies.push_back(cell);
    ASSERT_EQ(movies.size(), 3u);
    for (int cell : movies) {
        ASSERT_TRUE(waitForState(ui(index).cells[cell].MediaPlayer1, MoviePlayer::Stopped)) << cell;
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui(index).cells[cell].durationShown; }, 5000));
        EXPECT_TRUE(ui(index).cells[cell].tag.endsWith(" / 01\"")) << ui(index).cells[cell].tag.toStdString();
        EXPECT_TRUE(ui(index).cells[cell].cmdPlaySmall->isEnabled());
    }

    ui(index).cmdPlay->click();
    for (int cell : movies)
        EXPECT_TRUE(waitForState(ui(index).cells[cell].MediaPlayer1, MoviePlayer::Playing)) << cell;
    ui(index).cmdPause->click();
    for (int cell : movies)
        EXPECT_EQ(ui(index).cells[cell].MediaPlayer1->PlayState(), MoviePlayer::Paused) << cell;

    // Stop all leaves a paused movie paused, rewound.
    ui(index).cells[movies[0]].HScroll1->setValue(40);
    ui(index).cmdStop->click();
    for (int cell : movies) {
        EXPECT_EQ(ui(index).cells[cell].MediaPlayer1->PlayState(), MoviePlayer::Paused) << cell;
        EXPECT_LT(ui(index).cells[cell].MediaPlayer1->CurrentPosition(), 0.05) << cell;
        EXPECT_EQ(ui(index).cells[cell].HScroll1->value(), 0) << cell;
    }

    // A cell's own buttons play, pause and stop that cell alone.
    const int second = movies[1];
    MoviePlayer *secondPlayer = ui(index).cells[second].MediaPlayer1;
    ui(index).cells[second].cmdPlaySmall->click();
    EXPECT_TRUE(waitForState(secondPlayer, MoviePlayer::Playing));
    for (int cell : {movies[0], movies[2]})
        EXPECT_EQ(ui(index).cells[cell].MediaPlayer1->PlayState(), MoviePlayer::Paused) << cell;
    ui(index).cells[second].cmdPauseSmall->click();
    EXPECT_TRUE(waitForState(secondPlayer, MoviePlayer::Paused));
    ui(index).cells[second].cmdPlaySmall->click();
    ASSERT_TRUE(waitForState(secondPlayer, MoviePlayer::Playing));
    ui(index).cells[second].cmdStopSmall->click();
    EXPECT_TRUE(waitForState(secondPlayer, MoviePlayer::Stopped));
    for (int cell : {movies[0], movies[2]})
        EXPECT_EQ(ui(index).cells[cell].MediaPlayer1->PlayState(), MoviePlayer::Paused) << cell;

    // Seeking a cell's bar to half its length.
    const int first = movies[0];
    ui(index).cells[first].HScroll1->setValue(50);
    index.HScroll1_Change(first);
    EXPECT_NEAR(ui(index).cells[first].MediaPlayer1->CurrentPosition(),
                ui(index).cells[first].MediaPlayer1->Duration() / 2, 0.05);

    // The same movie never plays in the main window and in a cell at once.
    window.Mostra_Image(false, "clip.avi");
    ui(window).MediaPlayer1->Play();
    ASSERT_TRUE(waitForState(ui(window).MediaPlayer1, MoviePlayer::Playing));
    const int aviCell = index.cellOfPath(folder + "/clip.avi");
    MoviePlayer *cellPlayer = ui(index).cells[aviCell].MediaPlayer1;
    // Loaded, so that a Play would take effect at once rather than once libmpv opens it.
    ASSERT_TRUE(QTest::qWaitFor([&] { return cellPlayer->Duration() > 0; }, 20000));
    bool cellPlayed = false;
    QObject::connect(cellPlayer, &MoviePlayer::PlayStateChange, cellPlayer,
                     [&](int, int state) { cellPlayed = cellPlayed || state == MoviePlayer::Playing; });
    ui(index).cells[aviCell].cmdPlaySmall->click();
    QCoreApplication::sendPostedEvents();
    EXPECT_FALSE(cellPlayed);
    EXPECT_NE(cellPlayer->PlayState(), MoviePlayer::Playing);
}

TEST(IndexWindow, DoubleClickOnAPlayingCellContinuesInTheMainWindow)
{
    if (!TestClips::ffmpegAvailable())
        GTEST_SKIP() << "ffmpeg is not installed: no test clips";
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("one");
    fixture.makeFiles(folder, {"a.bmp"});
    ASSERT_TRUE(QFile::copy(TestClips::clip("avi"), folder + "/clip.avi"));
    frmMain &window = fixture.start(folder + "/a.bmp");
    frmIndex &index = openIndex(window);
    const int cell = index.cellOfPath(folder + "/clip.avi");
    ASSERT_GE(cell, 0);
    MoviePlayer *player = ui(index).cells[cell].MediaPlayer1;
    ASSERT_TRUE(waitForState(player, MoviePlayer::Stopped));

    player->Play();
    ASSERT_TRUE(waitForState(player, MoviePlayer::Playing));
    QTest::qWait(400);
    QTest::mouseDClick(player, Qt::LeftButton, {}, player->rect().center());

    EXPECT_EQ(player->PlayState(), MoviePlayer::Paused);
    EXPECT_EQ(fixture.context->CurrentFileName(), "clip.avi");
    EXPECT_TRUE(fixture.context->MainMovieLoaded());
    EXPECT_NEAR(ui(window).MediaPlayer1->CurrentPosition(), player->CurrentPosition(), 0.1);

    // With the main window already playing it, a double-click does nothing.
    ui(window).MediaPlayer1->Play();
    ASSERT_TRUE(waitForState(ui(window).MediaPlayer1, MoviePlayer::Playing));
    player->Stop();
    QSignalSpy shown(&window.context(), &ViewerContext::fileShown);
    QTest::mouseDClick(player, Qt::LeftButton, {}, player->rect().center());
    EXPECT_EQ(shown.size(), 0);
    EXPECT_EQ(ui(window).MediaPlayer1->PlayState(), MoviePlayer::Playing);
}

TEST(IndexWindow, CommandsOfOtherFeaturesReachTheirHooks)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("hooks");
    fixture.makeFiles(folder, {"a.bmp", "b.bmp", "c.ico"});
    frmMain &window = fixture.start(folder + "/a.bmp");
    frmIndex &index = openIndex(window);
    index.onDelete = nullptr;
    index.updateCommandStates();
    EXPECT_FALSE(ui(index).SFDelete->isEnabled()) << "no hook, no command";

    QStringList calls;
    index.onDelete = [&](const QString &path) { calls << "delete " + path; };
    index.onClipboard = [&](const QString &path) { calls << "clip " + path; };
    index.onAddToFavourites = [&](const QString &path) { calls << "add " + path; };
    index.updateCommandStates();

    // The keyboard acts on the cell last touched by the mouse, not on the
    // file of the main window.
    const QPointF inside(5, 5);
    QMouseEvent move(QEvent::MouseMove, inside, ui(index).cells[1].Image1->mapToGlobal(inside), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(ui(index).cells[1].Image1, &move);
    EXPECT_EQ(index.SelectedFile, folder + "/b.bmp");
    QTest::keyClick(&index, Qt::Key_Delete);
    QTest::keyClick(&index, Qt::Key_A, Qt::AltModifier);
    QTest::keyClick(&index, Qt::Key_C, Qt::ControlModifier);
    const int icon = index.cellOfPath(folder + "/c.ico");
    index.selectCell(icon);
    QTest::keyClick(&index, Qt::Key_C, Qt::ControlModifier); // icons do not go to the clipboard
    EXPECT_EQ(calls, QStringList({"delete " + folder + "/b.bmp", "add " + folder + "/b.bmp",
                                  "clip " + folder + "/b.bmp"}));

    index.MarkIndexThumbnail(folder + "/b.bmp", true);
    EXPECT_TRUE(ui(index).cells[1].ImgList->isVisibleTo(&index));
}

TEST(IndexWindow, ClosingWhileAPageLoadsStopsIt)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("big");
    for (int i = 0; i < 8; ++i)
        fixture.makePicture(folder, QStringLiteral("b%1.jpg").arg(i), QSize(3000, 2000));
    frmMain &window = fixture.start(folder + "/b0.jpg");
    ui(window).cmdIndex->click();
    frmIndex &index = *window.indexWindow();
    ASSERT_TRUE(index.pageLoading());

    index.close();
    EXPECT_FALSE(index.pageLoading());
    EXPECT_FALSE(index.isOpen());
    QTest::qWait(500);
    EXPECT_TRUE(ui(index).cells[7].Image1->pixmap().isNull());

    // Opening again builds the page afresh.
    ui(window).cmdIndex->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index.pageLoading(); }, 20000));
    EXPECT_FALSE(ui(index).cells[7].Image1->pixmap().isNull());
}
