#include "core/MessageCatalogue.h"
#include "files/FileUndo.h"
#include "files/TrashInfo.h"
#include "support/FakeSeams.h"
#include "support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

struct Undo : FileChoreFixture {
    // The file sent to the Trash as Delete sends it; where it went.
    QString trash(const QString &path)
    {
        prompts.answers = {PromptAnswer::Yes};
        QStringList inTrash;
        EXPECT_EQ(RecycleFiles({path}, context, &inTrash), 0);
        prompts.asked.clear();
        return inTrash.value(0);
    }
};

} // namespace

TEST(TrashInfo, NamesTheOriginalPathPercentDecodedOrFromTheTopFolder)
{
    const QByteArray info = "[Trash Info]\nPath=/home/u/Pictures/caf%C3%A9%20%26%20bar.jpg\nDeletionDate=2026-01-01T10:00:00\n";
    EXPECT_EQ(TrashInfo::originalPath(info, "/"), QString::fromUtf8("/home/u/Pictures/café & bar.jpg"));
    EXPECT_EQ(TrashInfo::originalPath("[Trash Info]\r\nPath=photos/a.jpg\r\n", "/media/stick"),
              "/media/stick/photos/a.jpg");
    EXPECT_EQ(TrashInfo::originalPath("[Trash Info]\nPath=:/icons/a.png\n", "/media/stick"), "/media/stick/:/icons/a.png");
    // Only the group's own key counts; nothing usable gives "".
    EXPECT_EQ(TrashInfo::originalPath("[Other]\nPath=/x/a.jpg\n[Trash Info]\nPath=/y/b.jpg\n", "/"), "/y/b.jpg");
    for (const QByteArray &bad : {QByteArray(), QByteArray("Path=/x/a.jpg\n"), QByteArray("[Trash Info]\nPath=\n"),
                                 QByteArray("[Trash Info]\nPath=/\n"), QByteArray("[Trash Info]\nPath=/x/%00a\n")})
        EXPECT_EQ(TrashInfo::originalPath(bad, "/"), "") << bad.constData();
    EXPECT_EQ(TrashInfo::notePathOf("/d/Trash/files/a.jpg"), "/d/Trash/info/a.jpg.trashinfo");
    EXPECT_EQ(TrashInfo::topFolderOf("/media/stick/.Trash-1000/files/a.jpg"), "/media/stick");
    EXPECT_EQ(TrashInfo::topFolderOf("/media/stick/.Trash/1000/files/a.jpg"), "/media/stick");
}

TEST_F(Undo, AFileInTheTrashGoesBackWhereItsTrashInfoSays)
{
    const QString pics = folder("pics");
    writeFile(pics + "/a b.jpg", "picture");
    const QString inTrash = trash(pics + "/a b.jpg");
    ASSERT_TRUE(QFileInfo::exists(inTrash));
    ASSERT_TRUE(QFileInfo::exists(TrashInfo::notePathOf(inTrash)));
    // The .trashinfo, not the path recorded, decides.
    const FileUndo::Result result =
        FileUndo::undo({ChoreKind::Trash, {{pics + "/elsewhere.jpg", inTrash, true}}}, context);
    ASSERT_EQ(result.putBack.size(), 1);
    EXPECT_EQ(result.putBack[0].original, pics + "/a b.jpg");
    EXPECT_TRUE(result.putBack[0].favourite);
    EXPECT_EQ(readFile(pics + "/a b.jpg"), "picture");
    EXPECT_FALSE(QFileInfo::exists(inTrash));
    EXPECT_FALSE(QFileInfo::exists(TrashInfo::notePathOf(inTrash)));
    EXPECT_TRUE(prompts.asked.isEmpty());

    // Without its .trashinfo the recorded path is used, and a folder gone since is made again.
    writeFile(pics + "/c.jpg", "c");
    const QString second = trash(pics + "/c.jpg");
    ASSERT_TRUE(QFile::remove(TrashInfo::notePathOf(second)));
    FileUndo::undo({ChoreKind::Trash, {{pics + "/new/c.jpg", second, false}}}, context);
    EXPECT_EQ(readFile(pics + "/new/c.jpg"), "c");
}

TEST_F(Undo, AMoveOrARenameGoesBackAndEveryFileOfTheChoreWithIt)
{
    const QString from = folder("from"), to = folder("to");
    writeFile(to + "/a.jpg", "a");
    writeFile(to + "/b.jpg", "b");
    writeFile(from + "/new name.jpg", "c");
    EXPECT_EQ(FileUndo::undo({ChoreKind::Move, {{from + "/a.jpg", to + "/a.jpg", false},
                                                {from + "/b.jpg", to + "/b.jpg", false}}},
                             context)
                  .putBack.size(),
              2);
    EXPECT_EQ(readFile(from + "/a.jpg"), "a");
    EXPECT_EQ(readFile(from + "/b.jpg"), "b");
    EXPECT_EQ(released, QStringList({to + "/b.jpg", to + "/a.jpg"})); // the last first

    FileUndo::undo({ChoreKind::Rename, {{from + "/old.jpg", from + "/new name.jpg", false}}}, context);
    EXPECT_EQ(readFile(from + "/old.jpg"), "c");
    EXPECT_FALSE(QFileInfo::exists(from + "/new name.jpg"));
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(Undo, AFileThatTookTheOldNameIsReplacedOnlyWhenTheUserSaysSo)
{
    const QString pics = folder("pics");
    writeFile(pics + "/new.jpg", "renamed");
    writeFile(pics + "/old.jpg", "newcomer");
    const UndoRecord rename{ChoreKind::Rename, {{pics + "/old.jpg", pics + "/new.jpg", false}}};

    FileUndo::Result result = FileUndo::undo(rename, context); // No, the default
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(prompts.asked[0].text, "file : " + pics + "/old.jpg\r\n\r\nALREADY EXISTING ... REPLACE ?");
    EXPECT_EQ(prompts.asked[0].defaultButton, 2);
    EXPECT_EQ(readFile(pics + "/old.jpg"), "newcomer");
    EXPECT_EQ(readFile(pics + "/new.jpg"), "renamed");
    EXPECT_TRUE(result.putBack.isEmpty());
    ASSERT_EQ(result.kept.size(), 1); // may be tried again

    prompts.answers = {PromptAnswer::Yes};
    result = FileUndo::undo(rename, context);
    EXPECT_EQ(result.putBack.size(), 1);
    EXPECT_EQ(readFile(pics + "/old.jpg"), "renamed");
    EXPECT_FALSE(QFileInfo::exists(pics + "/new.jpg"));

    // From the Trash too.
    const QString inTrash = trash(pics + "/old.jpg");
    writeFile(pics + "/old.jpg", "newcomer");
    result = FileUndo::undo({ChoreKind::Trash, {{pics + "/old.jpg", inTrash, false}}}, context);
    EXPECT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(readFile(pics + "/old.jpg"), "newcomer");
    EXPECT_EQ(readFile(inTrash), "renamed");
    EXPECT_TRUE(QFileInfo::exists(TrashInfo::notePathOf(inTrash)));
}

TEST_F(Undo, AFileGoneSinceIsReportedAndForgotten)
{
    const QString pics = folder("pics");
    const FileUndo::Result result =
        FileUndo::undo({ChoreKind::Move, {{pics + "/a.jpg", pics + "/gone/a.jpg", false}}}, context);
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(prompts.asked[0].text, "File Not Found !\r\n\r\n" + pics + "/gone/a.jpg");
    EXPECT_TRUE(result.putBack.isEmpty());
    EXPECT_TRUE(result.kept.isEmpty());
    EXPECT_FALSE(QFileInfo::exists(pics + "/a.jpg"));
}

TEST_F(Undo, AMoveAcrossFileSystemsGoesBackByACheckedCopy)
{
    struct stat here {}, shm {};
    if (::stat(QFile::encodeName(root.path()).constData(), &here) != 0 || ::stat("/dev/shm", &shm) != 0
        || here.st_dev == shm.st_dev || !QFileInfo("/dev/shm").isWritable())
        GTEST_SKIP() << "/dev/shm is not a second file system here";
    QTemporaryDir other("/dev/shm/vimora-test-XXXXXX");
    const QString pics = folder("pics");
    writeFile(other.path() + "/a.jpg", QByteArray(100000, 'a'));
    const FileUndo::Result result =
        FileUndo::undo({ChoreKind::Move, {{pics + "/a.jpg", other.path() + "/a.jpg", false}}}, context);
    EXPECT_EQ(result.putBack.size(), 1);
    EXPECT_EQ(readFile(pics + "/a.jpg"), QByteArray(100000, 'a'));
    EXPECT_FALSE(QFileInfo::exists(other.path() + "/a.jpg"));
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST(UndoHistory, TheLastChoreComesFirstAndEmptyOnesAreNotKept)
{
    UndoHistory history;
    history.record({ChoreKind::Move, {}});
    EXPECT_TRUE(history.isEmpty());
    history.record({ChoreKind::Move, {{"/a", "/b", false}}});
    history.record({ChoreKind::Rename, {{"/c", "/d", false}}});
    EXPECT_EQ(history.takeLast().kind, ChoreKind::Rename);
    EXPECT_EQ(history.takeLast().kind, ChoreKind::Move);
    EXPECT_TRUE(history.isEmpty());
}
