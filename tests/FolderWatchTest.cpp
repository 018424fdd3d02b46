// The shown folder as other programs change it.
#include "index/frmIndex.h"
#include "platform/Drives.h"
#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"
#include "viewer/FolderListing.h"
#include "viewer/FolderWatch.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

TEST(FolderWatchRules, ABurstIsSettledWithinItsLatestMoment)
{
    EXPECT_EQ(FolderWatchRules::settleDelay(0), FolderWatch::QuietMs);
    EXPECT_EQ(FolderWatchRules::settleDelay(FolderWatch::LatestMs - 40), 40);
    EXPECT_EQ(FolderWatchRules::settleDelay(FolderWatch::LatestMs + 500), 0);
}

TEST(FolderWatchRules, AGoneFileGivesWayToTheNextOneStillThere)
{
    const QStringList before{"a", "b", "c", "d"};
    EXPECT_EQ(FolderWatchRules::successor(before, 1, {"a", "c", "d"}), "c");
    EXPECT_EQ(FolderWatchRules::successor(before, 1, {"a", "d", "e"}), "d"); // c went too
    EXPECT_EQ(FolderWatchRules::successor(before, 3, {"a", "b"}), "b");     // the last: the one before
    EXPECT_EQ(FolderWatchRules::successor(before, 1, {"x"}), "x");          // everything else went
    EXPECT_EQ(FolderWatchRules::successor(before, 1, {}), "");
}

namespace {

struct LiveFolder : ::testing::Test {
    MainWindowFixture fixture;
    QString folder = fixture.makeFolder("camera");

    frmMain &start(const QStringList &names)
    {
        fixture.makeFiles(folder, names);
        fixture.settings().write("UserDef", "Language", "EN");
        frmMain &window = fixture.start(folder + '/' + names.first());
        EXPECT_TRUE(QTest::qWaitFor([&] { return ui(window).LabFil->text() == names.first(); }, 5000));
        return window;
    }
    // As another program writes it: under a temporary name, then renamed.
    void writeElsewhere(const QString &name)
    {
        const QString scratch = fixture.makeFolder("scratch");
        fixture.makeFiles(scratch, {name});
        ASSERT_TRUE(QFile::rename(scratch + '/' + name, folder + '/' + name));
    }
    bool statusSays(frmMain &window, const QString &position, const QString &file)
    {
        return QTest::qWaitFor([&] { return ui(window).LabNum->text() == position && ui(window).LabFil->text() == file; },
                               3000);
    }
};

} // namespace

TEST_F(LiveFolder, FilesOtherProgramsAddRemoveOrRenameJoinOrLeaveTheListInTheirPlace)
{
    frmMain &window = start({"a.bmp", "c.bmp"});
    QSignalSpy shown(&window.context(), &ViewerContext::fileShown);
    writeElsewhere("b.bmp");
    EXPECT_TRUE(statusSays(window, " 1/3 ", "a.bmp"));
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"a.bmp", "b.bmp", "c.bmp"}));
    EXPECT_EQ(shown.count(), 0); // the picture on show was left alone

    QTest::keyClick(&window, Qt::Key_Down);
    ASSERT_TRUE(statusSays(window, " 2/3 ", "b.bmp"));
    ASSERT_TRUE(QFile::remove(folder + "/a.bmp"));
    EXPECT_TRUE(statusSays(window, " 1/2 ", "b.bmp"));
    EXPECT_FALSE(ui(window).cmdBack->isEnabled());

    ASSERT_TRUE(QFile::rename(folder + "/c.bmp", folder + "/0.bmp")); // renamed elsewhere: in its new place
    EXPECT_TRUE(statusSays(window, " 2/2 ", "b.bmp"));
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"0.bmp", "b.bmp"}));
}

TEST_F(LiveFolder, TheIndexPageAndItsCountAndSizeFollowWithinASecond)
{
    frmMain &window = start({"a.bmp", "c.bmp"});
    ui(window).cmdIndex->click();
    frmIndex &index = *window.indexWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index.pageLoading(); }, 20000));
    const auto summaryNow = [&] {
        double bytes = 0;
        const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files);
        for (const QFileInfo &file : files)
            bytes += double(file.size());
        return FolderSummaryText(int(files.size()), bytes);
    };
    const auto pageShows = [&](const QString &name, bool there) {
        return !index.pageLoading() && (index.cellOfPath(folder + '/' + name) >= 0) == there
            && ui(index).LabLoad->text().endsWith(" / " + summaryNow());
    };

    QElapsedTimer clock;
    clock.start();
    writeElsewhere("b.bmp");
    EXPECT_TRUE(QTest::qWaitFor([&] { return pageShows("b.bmp", true); }, 1000)) << ui(index).LabLoad->text().toStdString();
    EXPECT_EQ(index.cellOfPath(folder + "/b.bmp"), 1); // in its place between a and c
    EXPECT_LT(clock.elapsed(), 1000);

    clock.restart();
    ASSERT_TRUE(QFile::rename(folder + "/c.bmp", folder + "/0.bmp"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return pageShows("c.bmp", false) && pageShows("0.bmp", true); }, 1000))
        << ui(index).LabLoad->text().toStdString();
    EXPECT_EQ(index.cellOfPath(folder + "/0.bmp"), 0);
    EXPECT_LT(clock.elapsed(), 1000);
    EXPECT_EQ(ui(window).LabNum->text(), " 2/3 ");
}

TEST_F(LiveFolder, AFileOnShowRemovedElsewhereGivesWayToTheNextAsAfterDelete)
{
    frmMain &window = start({"a.bmp", "b.bmp", "c.bmp"});
    QTest::keyClick(&window, Qt::Key_Down);
    ASSERT_TRUE(statusSays(window, " 2/3 ", "b.bmp"));
    ASSERT_TRUE(QFile::remove(folder + "/b.bmp"));
    EXPECT_TRUE(statusSays(window, " 2/2 ", "c.bmp"));

    ASSERT_TRUE(QFile::remove(folder + "/a.bmp"));
    ASSERT_TRUE(QFile::remove(folder + "/c.bmp"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return fixture.context->listIsEmpty(); }, 3000));
    EXPECT_TRUE(fixture.context->CurrentFileName().isEmpty());
    writeElsewhere("new.bmp"); // into an empty folder: shown
    EXPECT_TRUE(statusSays(window, " 1/1 ", "new.bmp"));
}

TEST_F(LiveFolder, ABurstOfTenThousandNewFilesIsReadAFewTimesNotTenThousandAndTheIndexFollows)
{
    frmMain &window = start({"a.bmp"});
    ui(window).cmdIndex->click();
    frmIndex &index = *window.indexWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index.pageLoading(); }, 20000));
    QSignalSpy reread(&window.context(), &ViewerContext::listLoaded);
    for (int i = 0; i < 10000; ++i) {
        QFile file(folder + QStringLiteral("/burst %1.jpg").arg(i, 5, 10, QLatin1Char('0')));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    EXPECT_TRUE(statusSays(window, " 1/10001 ", "a.bmp"));
    QSignalSpy settled(&window.folderWatch(), &FolderWatch::settled);
    EXPECT_TRUE(settled.wait(3000) || reread.count() > 0); // the burst's last events are in
    EXPECT_GE(reread.count(), 1);
    EXPECT_LE(reread.count(), 3);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return !index.pageLoading() && index.cellOfPath(folder + "/burst 00000.jpg") >= 0;
        },
        20000));
}

TEST_F(LiveFolder, VimorasOwnChoresAreNotListedTwice)
{
    frmMain &window = start({"a.bmp", "b.bmp", "c.bmp"});
    QSignalSpy reread(&window.context(), &ViewerContext::listLoaded);
    QSignalSpy settled(&window.folderWatch(), &FolderWatch::settled);
    QSignalSpy changed(&window.folderWatch(), &FolderWatch::changed);
    fixture.prompts.answers = {PromptAnswer::Yes};
    QTest::keyClick(&window, Qt::Key_Delete);
    ASSERT_TRUE(statusSays(window, " 1/2 ", "b.bmp"));
    EXPECT_EQ(reread.count(), 1);
    ASSERT_TRUE(settled.wait(3000)); // the deletion's own inotify events, settled
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(reread.count(), 1);
}

TEST_F(LiveFolder, NetworkAndOpticalFoldersAreLeftToF5AsInotifyDoesNotHearThem)
{
    for (const bool network : {true, false}) {
        MainWindowFixture mounted;
        const QString root = mounted.makeFolder("mounted");
        mounted.makeFiles(root, {"a.bmp"});
        mounted.settings().write("UserDef", "Language", "EN");
        const Drive drive{root, "share", !network, true, network};
        mounted.beforeLoad = [&](frmMain &window) { window.setDriveSource([&] { return QList<Drive>{drive}; }); };
        frmMain &window = mounted.start(root + "/a.bmp");
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui(window).LabNum->text() == " 1/1 "; }, 5000));
        EXPECT_TRUE(window.folderWatch().folder().isEmpty()) << network;

        mounted.makeFiles(root, {"b.bmp"});
        QTest::keyClick(&window, Qt::Key_F5);
        EXPECT_TRUE(QTest::qWaitFor([&] { return ui(window).LabNum->text() == " 1/2 "; }, 5000)) << network;
    }
    start({"a.bmp"}); // on a local disc: watched
    EXPECT_EQ(fixture.context->CurrentFolder(), folder);
    EXPECT_EQ(fixture.window().folderWatch().folder(), folder);
}
