#include "support/MainWindowFixture.h"
#include "support/TestClips.h"
#include "support/WindowProbe.h"

#include "display/AnimationView.h"
#include "files/frmList.h"
#include "fullscreen/FullViewRules.h"
#include "fullscreen/frmFull.h"
#include "platform/MoviePlayer.h"
#include "viewer/ViewRules.h"

#include <QAction>
#include <QFile>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <QTest>

// ---------------------------------------------------------------- rules

TEST(FullViewRules, FitsWithOneFactorUpOrDown)
{
    struct Case {
        QSize picture, window, fitted;
    };
    const Case cases[] = {
        {{320, 240}, {1024, 768}, {1024, 768}}, // enlarged
        {{2000, 1000}, {1024, 768}, {1024, 512}},
        {{100, 400}, {1024, 768}, {192, 768}},  // the height limits
        {{1024, 768}, {1024, 768}, {1024, 768}},
        {{1, 5000}, {1024, 768}, {1, 768}},     // never below one pixel
        {{0, 240}, {1024, 768}, {}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(FullViewRules::fittedSize(c.picture, c.window), c.fitted) << c.picture.width() << "x"
                                                                             << c.picture.height();
}

TEST(FullViewRules, CentresOrKeepsTheCornerWhereLarger)
{
    EXPECT_EQ(FullViewRules::centredPosition({1024, 512}, {1024, 768}), QPoint(0, 128));
    EXPECT_EQ(FullViewRules::centredPosition({200, 100}, {1024, 768}), QPoint(412, 334));
    EXPECT_EQ(FullViewRules::centredPosition({2000, 100}, {1024, 768}), QPoint(0, 334));
    EXPECT_EQ(FullViewRules::centredPosition({200, 900}, {1024, 768}), QPoint(412, 0));
}

TEST(FullViewRules, KeysAndTooltip)
{
    using FullViewRules::KeyAction;
    const std::pair<int, KeyAction> keys[] = {
        {Qt::Key_Escape, KeyAction::Close}, {Qt::Key_Up, KeyAction::Previous},  {Qt::Key_PageUp, KeyAction::Previous},
        {Qt::Key_Space, KeyAction::Next},   {Qt::Key_Down, KeyAction::Next},    {Qt::Key_PageDown, KeyAction::Next},
        {Qt::Key_Left, KeyAction::None},    {Qt::Key_Return, KeyAction::None},
    };
    for (const auto &[key, action] : keys)
        EXPECT_EQ(FullViewRules::keyAction(key), action) << key;
    EXPECT_EQ(FullViewRules::pictureToolTip("a.jpg", {640, 480}, "12 KB"), " a.jpg  (640 x 480)  12 KB ");
}

// ---------------------------------------------------------------- window

namespace {

// A folder of two pictures and, when ffmpeg is there, a movie after them.
struct FullWindow {
    FullWindow()
    {
        folder = fixture.makeFolder("full");
        fixture.makePicture(folder, "a.bmp", {320, 240});
        fixture.makePicture(folder, "b.bmp", {2000, 1000});
        const QString clip = TestClips::clip("avi");
        if (!clip.isEmpty())
            QFile::copy(clip, folder + "/c.avi");
        fixture.settings().write("UserDef", "Language", "EN");
        fixture.start(folder + "/a.bmp");
    }
    frmMain &window() { return fixture.window(); }
    frmFull *open()
    {
        window().mnuFullScreen_Click();
        return window().fullView();
    }
    // The window is gone once its deferred deletion has run.
    bool closed(QPointer<frmFull> full)
    {
        return QTest::qWaitFor([&] { return full.isNull(); }, 2000);
    }

    MainWindowFixture fixture;
    QString folder;
};

QSize screenSize(const QWidget &widget) { return widget.screen()->geometry().size(); }

} // namespace

TEST(FullScreenView, CoversTheScreenWithThePictureFitted)
{
    FullWindow full;
    frmFull *view = full.open();
    ASSERT_NE(view, nullptr);
    EXPECT_TRUE(view->isLoaded());
    EXPECT_TRUE(full.fixture.context->FullScreenActive());
    EXPECT_TRUE(view->isVisible());
    const QSize screen = screenSize(*view);
    EXPECT_EQ(view->size(), screen);
    const QSize fitted = FullViewRules::fittedSize({320, 240}, screen);
    EXPECT_EQ(ui(view).ImgEgg->size(), fitted);
    EXPECT_EQ(ui(view).ImgEgg->pos(), FullViewRules::centredPosition(fitted, screen));
    EXPECT_TRUE(ui(view).ImgEgg->isVisible());
    EXPECT_TRUE(ui(view).ImgEgg->toolTip().startsWith(" a.bmp  (320 x 240)  "));
    EXPECT_EQ(view->windowTitle(), QString()) << "no caption table entry for the window itself";
}

TEST(FullScreenView, PagesWithTheKeysAndPlaysAMovieFullScreenInThePlayer)
{
    if (!TestClips::ffmpegAvailable())
        GTEST_SKIP() << "ffmpeg is not installed: no test clips";
    FullWindow full;
    QPointer<frmFull> view = full.open();
    ASSERT_TRUE(view);
    QTest::keyClick(view, Qt::Key_Down);
    EXPECT_EQ(full.fixture.context->CurrentFileName(), "b.bmp");
    EXPECT_EQ(ui(view).ImgEgg->size(), FullViewRules::fittedSize({2000, 1000}, screenSize(*view)));
    EXPECT_FALSE(full.window().isVisible()) << "paging keeps the main window hidden";
    QTest::keyClick(view, Qt::Key_Up);
    EXPECT_EQ(full.fixture.context->CurrentFileName(), "a.bmp");
    QTest::keyClick(view, Qt::Key_PageDown);
    QTest::keyClick(view, Qt::Key_Space);
    EXPECT_EQ(full.fixture.context->CurrentFileName(), "c.avi");

    MoviePlayer &player = *ui(full.window()).MediaPlayer1;
    EXPECT_EQ(player.DisplaySize(), MoviePlayer::FullScreen);
    EXPECT_TRUE(player.isFullScreen());
    EXPECT_FALSE(ui(view).ImgEgg->isVisible());
    EXPECT_FALSE(ui(view).WebBrowser1->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return player.PlayState() != MoviePlayer::Closed; }, 8000));

    // A key in the player ends both full-screen views.
    QTest::keyClick(&player, Qt::Key_Escape);
    EXPECT_TRUE(full.closed(view));
    EXPECT_NE(player.DisplaySize(), MoviePlayer::FullScreen);
    EXPECT_TRUE(full.window().isVisible());
    EXPECT_FALSE(full.fixture.context->FullScreenActive());
}

struct CloseCase {
    const char *name;
    void (*close)(frmFull &view);
};

class FullScreenViewClosing : public ::testing::TestWithParam<CloseCase> {};

TEST_P(FullScreenViewClosing, GivesTheMainWindowBackWithFocusOnCmdTrucco)
{
    FullWindow full;
    ui(full.window()).cmdRefr->setFocus();
    QPointer<frmFull> view = full.open();
    ASSERT_TRUE(view);
    GetParam().close(*view);
    EXPECT_TRUE(full.closed(view));
    EXPECT_FALSE(full.fixture.context->FullScreenActive());
    EXPECT_TRUE(full.window().isVisible());
    EXPECT_EQ(full.window().focusWidget(), ui(full.window()).cmdTrucco);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, FullScreenViewClosing,
    ::testing::Values(CloseCase{"Escape", [](frmFull &view) { QTest::keyClick(&view, Qt::Key_Escape); }},
                      CloseCase{"DoubleClickOnWindow", [](frmFull &view) { QTest::mouseDClick(&view, Qt::LeftButton, {}, {3, 3}); }},
                      CloseCase{"DoubleClickOnPicture",
                                [](frmFull &view) { QTest::mouseDClick(ui(view).ImgEgg, Qt::LeftButton, {}, {5, 5}); }},
                      CloseCase{"RestoreItem", [](frmFull &view) { ui(view).mnuNormal->trigger(); }}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(FullScreenView, ZoomItemClosesAndZoomsInTheMainWindow)
{
    FullWindow full;
    QPointer<frmFull> view = full.open();
    ASSERT_TRUE(view);
    QAction *item = view->findChild<QAction *>("mnu200");
    ASSERT_NE(item, nullptr);
    item->trigger();
    EXPECT_TRUE(full.closed(view));
    EXPECT_EQ(ui(full.window()).LabZoom->text(), ViewRules::zoomLabel(200));
    EXPECT_EQ(ui(full.window()).ImgEgg->size(), QSize(640, 480));
}

TEST(FullScreenView, PopupRunsTheMainWindowsCommandsOnTheFileShown)
{
    FullWindow full;
    QPointer<frmFull> view = full.open();
    ASSERT_TRUE(view);
    QTest::mousePress(ui(view).ImgEgg, Qt::RightButton, {}, {4, 4});
    ASSERT_TRUE(ui(view).SFPOPUP->isVisible());
    ui(view).SFPOPUP->hide();
    EXPECT_EQ(ui(view).SFPOPUP->defaultAction(), ui(view).mnuNormal);
    EXPECT_FALSE(ui(view).mnuPlay->isVisible()) << "a picture: no player items";
    EXPECT_FALSE(ui(view).mnuAnim->isVisible());
    for (QAction *item : {ui(view).mnuAdd, ui(view).mnuRemove, ui(view).mnuPrint, ui(view).mnuSave, ui(view).mnuWall,
                          ui(view).mnuRemoveWall})
        EXPECT_TRUE(item->isEnabled()) << item->objectName().toStdString();
    EXPECT_EQ(ui(view).mnuAdd->text(), "Add to list");
    EXPECT_EQ(ui(view).mnuNormal->text(), "Restore");

    const QString shown = full.folder + "/a.bmp";
    ui(view).mnuAdd->trigger();
    EXPECT_TRUE(full.window().favourites().entries().contains(shown));
    ui(view).mnuRemove->trigger();
    EXPECT_FALSE(full.window().favourites().entries().contains(shown));

    full.fixture.launcher.started.clear();
    ui(view).mnuShellOpen->trigger();
    ASSERT_FALSE(full.fixture.launcher.started.isEmpty());
    EXPECT_TRUE(full.fixture.launcher.started.last().second.contains(shown));
    EXPECT_TRUE(view->isVisible()) << "these commands keep the view up";
}

TEST(FullScreenView, SaveAsAndPrintComeUpOverTheViewAndItsKeysWorkAfterThem)
{
    FullWindow full;
    QPointer<frmFull> view = full.open();
    ASSERT_TRUE(view);
    const QString copy = full.fixture.makeFolder("copies") + "/copy.bmp";
    full.fixture.prompts.files = {copy};
    ui(view).mnuSave->trigger();
    ASSERT_EQ(full.fixture.prompts.fileRequests.size(), 1);
    EXPECT_EQ(full.fixture.prompts.fileRequests[0].title, "Select destination path for file copy ");
    EXPECT_EQ(full.fixture.prompts.fileRequests[0].owner, view.data());
    EXPECT_TRUE(QFile::exists(copy));

    ui(view).mnuPrint->trigger(); // cancelled by the scripted dialog
    ASSERT_EQ(full.fixture.prompts.printRequests.size(), 1);
    EXPECT_EQ(full.fixture.prompts.printRequests[0].owner, view.data());

    ASSERT_TRUE(view && view->isVisible());
    QTest::keyClick(view, Qt::Key_Down);
    EXPECT_EQ(full.window().windowTitle(), " b.bmp  - Vimora ");
}
