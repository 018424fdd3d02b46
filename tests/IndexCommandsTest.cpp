// The index's commands reach the real file, favourites, output and launch
// features through the main window.
#include "files/frmList.h"
#include "index/frmIndex.h"
#include "platform/MoviePlayer.h"
#include "support/MainWindowFixture.h"
#include "support/TestClips.h"
#include "support/WindowProbe.h"

#include <QAction>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QTest>

namespace {

struct IndexCommands : ::testing::Test {
    MainWindowFixture fixture;
    QString folder = fixture.makeFolder("pics");

    frmIndex &open(const QStringList &names)
    {
        fixture.makeFiles(folder, names);
        fixture.settings().write("UserDef", "Language", "EN");
        fixture.settings().write("UserDef", "savDir", folder);
        frmMain &window = fixture.start(folder + '/' + names.first());
        ui(window).cmdIndex->click();
        EXPECT_TRUE(waitForPage());
        return *window.indexWindow();
    }
    bool waitForPage()
    {
        frmIndex *index = fixture.window().indexWindow();
        return index && QTest::qWaitFor([&] { return !index->pageLoading(); }, 20000);
    }
    // What the mouse does last before a key: it selects the cell of the file.
    void select(frmIndex &index, const QString &name)
    {
        const int cell = index.cellOfPath(folder + '/' + name);
        ASSERT_GE(cell, 0) << name.toStdString();
        index.selectCell(cell);
    }
    QStringList labels(const frmIndex &index) const
    {
        QStringList names;
        for (const frmIndexControls::Cell &cell : ui(index).cells)
            if (!cell.path.isEmpty())
                names.append(cell.LabImage->text());
        return names;
    }
};

} // namespace

TEST_F(IndexCommands, RenameAndDeleteActOnTheFileOnDiskAndThePageFollows)
{
    frmIndex &index = open({"a.bmp", "b.bmp", "index-gone.bmp"});
    QStringList boxNames;
    fixture.window().setRenameBox([&](const QRect &, const QString &name) {
        boxNames.append(name);
        return QStringLiteral("b new.bmp");
    });
    select(index, "b.bmp");
    QTest::keyClick(&index, Qt::Key_N, Qt::AltModifier);
    ASSERT_TRUE(waitForPage());
    EXPECT_EQ(boxNames, QStringList{"b.bmp"});
    EXPECT_FALSE(QFileInfo::exists(folder + "/b.bmp"));
    EXPECT_TRUE(QFileInfo::exists(folder + "/b new.bmp"));
    EXPECT_TRUE(labels(index).contains("b new.bmp"));
    EXPECT_EQ(fixture.context->CurrentFileName(), "b new.bmp"); // as the main window's rename does

    // Delete goes to this run's Trash, for the hovered cell, not the file on show.
    select(index, "index-gone.bmp");
    fixture.prompts.answers = {PromptAnswer::Yes};
    QTest::keyClick(&index, Qt::Key_Delete);
    ASSERT_TRUE(waitForPage());
    EXPECT_FALSE(QFileInfo::exists(folder + "/index-gone.bmp"));
    EXPECT_TRUE(QFileInfo::exists(qEnvironmentVariable("XDG_DATA_HOME") + "/Trash/files/index-gone.bmp"));
    EXPECT_EQ(labels(index), QStringList({"a.bmp", "b new.bmp"}));
    EXPECT_EQ(fixture.context->CurrentFileName(), "b new.bmp");
}

TEST_F(IndexCommands, FavouritesMarkTheCellAndTheListWindowHoldsThem)
{
    frmIndex &index = open({"a.bmp", "b.bmp"});
    const QString b = folder + "/b.bmp";
    const int cell = index.cellOfPath(b);
    select(index, "b.bmp");
    QTest::keyClick(&index, Qt::Key_A, Qt::AltModifier);
    EXPECT_TRUE(ui(index).cells[cell].ImgList->isVisibleTo(&index));
    EXPECT_EQ(fixture.window().favourites().entries(), QStringList{b});
    EXPECT_TRUE(ui(fixture.window()).cmdList->isEnabled());

    // A page built again marks it from the list.
    index.cmdRefr_Click();
    ASSERT_TRUE(waitForPage());
    EXPECT_TRUE(ui(index).cells[index.cellOfPath(b)].ImgList->isVisibleTo(&index));

    select(index, "b.bmp");
    QTest::keyClick(&index, Qt::Key_R, Qt::AltModifier);
    EXPECT_FALSE(ui(index).cells[index.cellOfPath(b)].ImgList->isVisibleTo(&index));
    EXPECT_TRUE(fixture.window().favourites().entries().isEmpty());
}

TEST_F(IndexCommands, ClipboardAndSaveCopyTakeTheSelectedFile)
{
    frmIndex &index = open({"a.bmp", "b.bmp"});
    select(index, "b.bmp");
    QGuiApplication::clipboard()->clear();
    QTest::keyClick(&index, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(69, 48)); // b.bmp, not a.bmp on show

    fixture.prompts.files = {ScriptedPrompts::AcceptProposed};
    QTest::keyClick(&index, Qt::Key_C, Qt::AltModifier);
    ASSERT_TRUE(waitForPage());
    ASSERT_EQ(fixture.prompts.fileRequests.size(), 1);
    EXPECT_EQ(fixture.prompts.fileRequests[0].title, "Select destination path for file copy ");
    EXPECT_TRUE(QFileInfo::exists(folder + "/Copy of b.bmp"));
    EXPECT_TRUE(labels(index).contains("Copy of b.bmp"));
    EXPECT_EQ(fixture.context->CurrentFileName(), "a.bmp");

    // Onto an existing file: one question, the copy's own; No keeps the file.
    QFile existing(folder + "/a.bmp");
    ASSERT_TRUE(existing.open(QIODevice::ReadOnly));
    const QByteArray before = existing.readAll();
    existing.close();
    select(index, "b.bmp");
    fixture.prompts.files = {folder + "/a.bmp"};
    QTest::keyClick(&index, Qt::Key_C, Qt::AltModifier);
    EXPECT_FALSE(fixture.prompts.fileRequests.last().confirmReplace);
    ASSERT_EQ(fixture.prompts.asked.size(), 1);
    EXPECT_TRUE(fixture.prompts.asked[0].text.contains("ALREADY EXISTING ... REPLACE ?"));
    ASSERT_TRUE(existing.open(QIODevice::ReadOnly));
    EXPECT_EQ(existing.readAll(), before);
}

TEST_F(IndexCommands, ShellOpenLaunchesUnlessTheTypeIsLinkedToVimora)
{
    fixture.settings().write("Linked", "JPG", "Y");
    frmIndex &index = open({"a.jpg", "b.ico", "c.jpeg"}); // ICO, JPEG: none of the guarded types
    fixture.launcher.started.clear();

    select(index, "a.jpg");
    EXPECT_FALSE(ui(index).mnuShellOpen->isVisible());
    index.onShellOpen(folder + "/a.jpg"); // the guard holds even when reached
    EXPECT_TRUE(fixture.launcher.started.isEmpty());

    select(index, "c.jpeg");
    EXPECT_TRUE(ui(index).mnuShellOpen->isVisible()); // shown when the launch would go ahead
    select(index, "b.ico");
    EXPECT_TRUE(ui(index).mnuShellOpen->isVisible());
    ui(index).mnuShellOpen->trigger();
    ASSERT_EQ(fixture.launcher.started.size(), 1);
    EXPECT_EQ(fixture.launcher.started[0].first, "xdg-open");
    EXPECT_EQ(fixture.launcher.started[0].second, QStringList{folder + "/b.ico"});
}

TEST_F(IndexCommands, MovedMovieIsLetGoByItsCellFirst)
{
    const QString clip = TestClips::clip("avi");
    if (clip.isEmpty())
        GTEST_SKIP() << "ffmpeg could not make a test clip";
    QFile::copy(clip, folder + "/clip.avi");
    frmIndex &index = open({"a.bmp"});
    const QString path = folder + "/clip.avi";
    MoviePlayer *player = ui(index).cells[index.cellOfPath(path)].MediaPlayer1;
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->FileName() == path; }, 8000));

    // Record how the file and the cell stood when the index was asked.
    QStringList seen;
    const auto release = fixture.state->ReleaseIndexPlayers;
    ASSERT_TRUE(release);
    fixture.state->ReleaseIndexPlayers = [&](const QString &asked) {
        seen << QStringLiteral("held %1 there %2").arg(player->FileName() == asked).arg(QFileInfo::exists(asked));
        release(asked);
        seen << QStringLiteral("held %1").arg(player->FileName() == asked);
    };
    const QString target = fixture.makeFolder("target");
    fixture.prompts.folders = {target};
    select(index, "clip.avi");
    QTest::keyClick(&index, Qt::Key_M, Qt::AltModifier);
    ASSERT_TRUE(waitForPage());

    EXPECT_EQ(seen, QStringList({"held 1 there 1", "held 0"}));
    EXPECT_TRUE(QFileInfo::exists(target + "/clip.avi"));
    EXPECT_EQ(index.cellOfPath(path), -1);

    // The index going with the main window takes its hooks away.
    fixture.state->ReleaseIndexPlayers = release;
    fixture.close();
    EXPECT_FALSE(fixture.state->ReleaseIndexPlayers);
    EXPECT_FALSE(fixture.state->MarkIndexThumbnail);
}
