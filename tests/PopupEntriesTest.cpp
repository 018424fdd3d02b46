// Each window's real popup, opened by a right click as a user opens it, for
// each class of file, read entry by entry.
#include "display/AnimationView.h"
#include "files/frmList.h"
#include "fullscreen/frmFull.h"
#include "index/frmIndex.h"
#include "platform/MoviePlayer.h"
#include "support/MainWindowFixture.h"
#include "support/TestClips.h"
#include "support/WindowProbe.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QFile>
#include <QListWidget>
#include <QMenu>
#include <QTest>

namespace {

constexpr int OpenTimeoutMs = 8000;

// The entries a user sees, top to bottom: "-" for a separator between
// entries, "(text)" for a disabled one, "*" after the default.
QString entries(QMenu &menu)
{
    QStringList seen;
    for (QAction *item : menu.actions()) {
        if (!item->isVisible())
            continue;
        if (item->isSeparator()) {
            if (!seen.isEmpty() && seen.last() != "-")
                seen.append("-");
            continue;
        }
        QString text = item->text().remove('&');
        if (!item->isEnabled())
            text = '(' + text + ')';
        if (menu.defaultAction() == item)
            text += '*';
        seen.append(text);
    }
    if (!seen.isEmpty() && seen.last() == "-")
        seen.removeLast();
    return seen.join(" | ");
}

// Opens the popup with a right click and reads it.
QString rightClick(QWidget *target, QMenu &menu, QPoint at = {20, 20})
{
    menu.hide();
    // Apart from the last click by more than a double click's time.
    QTest::mousePress(target, Qt::RightButton, {}, at, QApplication::doubleClickInterval() + 10);
    QTest::mouseRelease(target, Qt::RightButton, {}, at);
    if (!QTest::qWaitFor([&] { return menu.isVisible(); }, 2000))
        return "no menu";
    const QString read = entries(menu);
    menu.hide();
    return read;
}

// Opens the popup with a right click and clicks the entry of that text.
bool choose(QWidget *target, QMenu &menu, const QString &text, QPoint at = {20, 20})
{
    menu.hide();
    QTest::mousePress(target, Qt::RightButton, {}, at, QApplication::doubleClickInterval() + 10);
    QTest::mouseRelease(target, Qt::RightButton, {}, at);
    if (!QTest::qWaitFor([&] { return menu.isVisible(); }, 2000))
        return false;
    for (QAction *item : menu.actions()) {
        if (item->isVisible() && item->text().remove('&') == text) {
            QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(item).center());
            return true;
        }
    }
    menu.hide();
    return false;
}

const QString PictureEntries =
    "Full Screen | Save as | Print | Copy | - | Wallpaper | Restore | Move | - | Add to list | Remove from list | "
    "Global Operations | - | Rename | Delete | (Undo) | File info | Shell Open | Shell Edit | - | Fit window | Full Size | Zoom";

struct Folder {
    Folder()
    {
        folder = fixture.makeFolder("files");
        fixture.makePicture(folder, "a.bmp", {320, 240});
        fixture.makeFiles(folder, {"b.gif"});
        fixture.makePicture(folder, "c.jpg", {320, 240});
        fixture.settings().write("UserDef", "Language", "EN");
        const QString clip = TestClips::clip("avi");
        if (!clip.isEmpty())
            QFile::copy(clip, folder + "/m.avi");
        fixture.start(folder + "/a.bmp");
        ui(window()).chkAnim->setChecked(false);
        ui(window()).ChkAuto->setChecked(false); // a movie waits stopped
    }
    frmMain &window() { return fixture.window(); }
    MoviePlayer &player() { return *ui(window()).MediaPlayer1; }
    bool showMovie()
    {
        window().Mostra_Image(false, "m.avi");
        return QTest::qWaitFor([&] { return player().PlayState() != MoviePlayer::Closed; }, OpenTimeoutMs);
    }
    QWidget *displayArea() { return ui(window()).ImgEgg; }

    MainWindowFixture fixture;
    QString folder;
};

#define REQUIRE_FFMPEG()                                                                                           \
    if (!TestClips::ffmpegAvailable())                                                                             \
    GTEST_SKIP() << "ffmpeg is not installed: no test clips"

} // namespace

TEST(PopupEntries, MainWindowForAPictureAndAGif)
{
    Folder files;
    frmMain &window = files.window();
    EXPECT_EQ(rightClick(files.displayArea(), *ui(window).SFPOPUP), PictureEntries);

    window.Mostra_Image(false, "b.gif");
    EXPECT_EQ(rightClick(files.displayArea(), *ui(window).SFPOPUP), "GIF | - | " + PictureEntries);
    ui(window).chkAnim->click(); // the animation shows over the still picture
    ASSERT_TRUE(ui(window).WebBrowser1->isVisible());
    EXPECT_EQ(rightClick(ui(window).WebBrowser1, *ui(window).SFPOPUP), "GIF | - | " + PictureEntries);
    EXPECT_TRUE(ui(window).mnuAnim->isChecked()) << "the entry follows the box";
}

TEST(PopupEntries, MainWindowOverAMovieWindowedAndFullScreenThenTheNextPicture)
{
    REQUIRE_FFMPEG();
    Folder files;
    frmMain &window = files.window();
    ASSERT_TRUE(files.showMovie());
    EXPECT_EQ(rightClick(&files.player(), *ui(window).SFPOPUP),
              "Play/Pause | (Stop) | - | Full Screen* | Save as | Print | Copy | Grab Image | - | Wallpaper | Restore | "
              "Move | - | Add to list | Remove from list | Global Operations | - | Rename | Delete | (Undo) | File info | "
              "Shell Open | Shell Edit | - | Fit window | Full Size | Zoom");

    ui(window).mnuFullScreen->trigger();
    ASSERT_EQ(files.player().DisplaySize(), MoviePlayer::FullScreen);
    ui(window).mnuPlay->trigger();
    EXPECT_EQ(rightClick(&files.player(), *ui(window).SFPOPUP),
              "Play/Pause | Stop | - | Restore* | Add to list | Remove from list | Shell Open | Shell Edit");
    ASSERT_TRUE(choose(&files.player(), *ui(window).SFPOPUP, "Restore"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return files.player().DisplaySize() != MoviePlayer::FullScreen; }, 2000));

    // The next picture's popup owes nothing to the movie's.
    window.Mostra_Image(false, "a.bmp");
    ASSERT_FALSE(files.fixture.context->MainMovieLoaded());
    EXPECT_EQ(rightClick(files.displayArea(), *ui(window).SFPOPUP), PictureEntries);
}

TEST(PopupEntries, FullScreenViewForAPictureAndAGif)
{
    Folder files;
    frmMain &window = files.window();
    ui(window).mnuFullScreen->trigger();
    QPointer<frmFull> view = window.fullView();
    ASSERT_TRUE(view);
    const QString rest = "Restore* | Zoom | Fit window | Full Size | - | Add to list | Remove from list | - | "
                         "Shell Open | Shell Edit | Print | Save as | - | Wallpaper | Restore";
    EXPECT_EQ(rightClick(ui(view).ImgEgg, *ui(view).SFPOPUP), rest);
    EXPECT_EQ(rightClick(view, *ui(view).SFPOPUP, {2, 2}), rest) << "beside the picture too";

    QTest::keyClick(view, Qt::Key_Down); // b.gif, shown still
    ASSERT_EQ(files.fixture.context->CurrentFileName(), "b.gif");
    EXPECT_EQ(rightClick(view, *ui(view).SFPOPUP, {2, 2}), "GIF | - | " + rest);
    view->close();
}

TEST(PopupEntries, IndexForAPictureAndAMovieCell)
{
    Folder files;
    frmMain &window = files.window();
    ui(window).cmdIndex->click();
    frmIndex *index = window.indexWindow();
    ASSERT_NE(index, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index->pageLoading(); }, 20000));
    const QString fileEntries = "Save as | Print | Copy | - | Wallpaper | Restore | Move | - | Add to list | "
                                "Remove from list | Global Operations | - | Rename | Delete | (Undo) | File info | Shell Open | "
                                "Shell Edit";
    EXPECT_EQ(rightClick(ui(index).cells[0].Image1, *ui(index).SFPOPUP), "Show* | " + fileEntries);
    if (!TestClips::ffmpegAvailable())
        return;
    const int movieCell = index->cellOfPath(files.folder + "/m.avi");
    ASSERT_GE(movieCell, 0);
    EXPECT_EQ(rightClick(ui(index).cells[movieCell].MediaPlayer1, *ui(index).SFPOPUP),
              "Show* | Play/Pause | (Stop) | - | Save as | Print | Copy | - | (Wallpaper) | Restore | Move | - | "
              "Add to list | Remove from list | Global Operations | - | Rename | Delete | (Undo) | File info | Shell Open | "
              "Shell Edit");
    // Back on a picture, nothing of the movie's entries is left.
    EXPECT_EQ(rightClick(ui(index).cells[0].Image1, *ui(index).SFPOPUP), "Show* | " + fileEntries);
}

TEST(PopupEntries, FavouritesWindow)
{
    Folder files;
    frmMain &window = files.window();
    ui(window).cmdAdd->click();
    ui(window).cmdList->click();
    frmList &list = window.favourites();
    ASSERT_EQ(ui(list).ListImage->count(), 1);
    QWidget *viewport = ui(list).ListImage->viewport();
    const QPoint at = ui(list).ListImage->visualItemRect(ui(list).ListImage->item(0)).center();
    QContextMenuEvent click(QContextMenuEvent::Mouse, at, viewport->mapToGlobal(at));
    QApplication::sendEvent(viewport, &click);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui(list).SFPOPUP->isVisible(); }, 2000));
    EXPECT_EQ(entries(*ui(list).SFPOPUP),
              "Show* | Copy to .. | Move to .. | Delete | Rename | (Undo) | Properties | - | Remove from list | Clear List");
    ui(list).SFPOPUP->hide();
}
