#include "core/MessageCatalogue.h"
#include "files/FileOperations.h"
#include "files/FilePaths.h"
#include "core/FileSizeText.h"
#include "support/FakeSeams.h"
#include "support/TestFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>

#include <sys/mount.h>
#include <sys/stat.h>

namespace {

QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

struct FileOpsFixture : FileChoreFixture {};

// A disk that fills up after a number of bytes.
class FullDiskTarget : public CopyTarget {
public:
    explicit FullDiskTarget(qint64 room) : m_room(room), m_real(makeFileCopyTarget()) {}
    bool open(const QString &path) override { return m_real->open(path); }
    bool write(const char *data, qint64 size) override
    {
        if (size > m_room) {
            m_real->write(data, m_room);
            return false;
        }
        m_room -= size;
        return m_real->write(data, size);
    }
    bool commit() override { return m_real->commit(); }
    void discard() override { m_real->discard(); }
    QString errorString() const override { return QStringLiteral("No space left on device"); }

private:
    qint64 m_room;
    std::unique_ptr<CopyTarget> m_real;
};

// A source that is cut short (a pulled stick) once the copy has begun.
class ShrinkingSourceTarget : public CopyTarget {
public:
    explicit ShrinkingSourceTarget(QString source) : m_source(std::move(source)), m_real(makeFileCopyTarget()) {}
    bool open(const QString &path) override { return m_real->open(path); }
    bool write(const char *data, qint64 size) override
    {
        QFile::resize(m_source, 10);
        return m_real->write(data, size);
    }
    bool commit() override { return m_real->commit(); }
    void discard() override { m_real->discard(); }
    QString errorString() const override { return m_real->errorString(); }

private:
    QString m_source;
    std::unique_ptr<CopyTarget> m_real;
};

} // namespace

TEST(FilePaths, SplitAtBackslashOrSlash)
{
    struct Case {
        const char *path, *folder, *name;
    };
    const Case cases[] = {
        {"C:\\a\\b.jpg", "C:\\a", "b.jpg"},
        {"/home/u/b c.jpg", "/home/u", "b c.jpg"},
        {"\\\\server\\share\\x.avi", "\\\\server\\share", "x.avi"},
        {"//x.jpg", "/", "x.jpg"},
        {"C:\\a/b.jpg", "C:", "a/b.jpg"}, // a backslash makes "\" the separator
        {"/tmp/été, \"q\".jpg", "/tmp", "été, \"q\".jpg"},
        {"b.jpg", "<unchanged>", "b.jpg"},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(FolderOf(c.path, "<unchanged>"), c.folder) << c.path;
        EXPECT_EQ(FileNameOfPath(c.path), c.name) << c.path;
    }
}

TEST_F(FileOpsFixture, IsExistingFileOnlyForVisiblePlainFiles)
{
    const QString dir = folder("f");
    writeFile(dir + "/a.jpg", "x");
    writeFile(dir + "/.hidden.jpg", "x");
    writeFile(dir + "/line\nbreak.jpg", "x");
    const QList<QPair<QString, bool>> cases{
        {"", false}, {dir + "/a.jpg", true}, {dir + "/*.jpg", false}, {dir + "/a.jp?", false},
        {dir + "/.hidden.jpg", false}, {dir, false}, {dir + "/gone.jpg", false}, {dir + "/line\nbreak.jpg", true},
    };
    for (const auto &[path, expected] : cases)
        EXPECT_EQ(IsExistingFile(path), expected) << path.toStdString();
}

TEST_F(FileOpsFixture, SizeTextsOfRealFiles)
{
    const QString dir = folder("sizes");
    const QList<QPair<qint64, QString>> cases{
        {1023, "1023 bytes"}, {1024, "1 K"}, {1536000, "1.500 K"}, {10240000, "10.000 K"}};
    for (const auto &[bytes, text] : cases) {
        const QString path = dir + '/' + QString::number(bytes);
        writeFile(path, {});
        QFile::resize(path, bytes); // sparse: no real disk use
        EXPECT_EQ(FileSizeText(path, messages), text);
    }
    EXPECT_EQ(FileSizeText({}, messages), "");
    EXPECT_EQ(FileSizeText(dir + "/gone", messages), "");
    // 5 GiB of a selection: single precision would be off by kilobytes.
    EXPECT_EQ(sizeTextPrecise(5368709120.0 + 1024 * 7), "5.242.887 K");
}

TEST_F(FileOpsFixture, CopyAndMoveKeepAwkwardNames)
{
    const QString from = folder("from"), to = folder("to");
    const QStringList names{"with space.jpg",     "a,b.jpg",       "100% %1 %2.jpg",
                            "quote \"x\" 'y'.avi", "new\nline.jpg", "Città ÆØ 写真.bmp"};
    for (const QString &name : names) {
        writeFile(from + '/' + name, name.toUtf8());
        ASSERT_TRUE(CopyThisFile(from + '/' + name, to + '/', context).done()) << name.toStdString();
        EXPECT_EQ(readFile(to + '/' + name), name.toUtf8());
        QFile::remove(to + '/' + name);
        prompts.folders = {to};
        EXPECT_EQ(MoveFileToFolder(from + '/' + name, context), to + '/' + name);
        EXPECT_EQ(readFile(to + '/' + name), name.toUtf8());
        EXPECT_FALSE(QFileInfo::exists(from + '/' + name));
    }
    EXPECT_EQ(namesIn(to).size(), names.size()); // no temporary files left
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_EQ(released.size(), names.size());
}

TEST_F(FileOpsFixture, CopyKeepsTheModificationTime)
{
    const QString from = folder("from"), to = folder("to");
    writeFile(from + "/old.jpg", "old");
    QFile old(from + "/old.jpg");
    ASSERT_TRUE(old.open(QIODevice::ReadWrite));
    const QDateTime when = QDateTime::fromSecsSinceEpoch(1'000'000'000);
    old.setFileTime(when, QFileDevice::FileModificationTime);
    old.close();
    ASSERT_TRUE(CopyThisFile(from + "/old.jpg", to, context).done());
    EXPECT_EQ(QFileInfo(to + "/old.jpg").lastModified(), when);
}

TEST_F(FileOpsFixture, CopyOntoExistingFileAsksFirst)
{
    const QString from = folder("from"), to = folder("to");
    writeFile(from + "/a.jpg", "new");
    writeFile(to + "/a.jpg", "old");
    EXPECT_EQ(CopyThisFile(from + "/a.jpg", to + "/", context).outcome, FileOutcome::Declined);
    EXPECT_EQ(readFile(to + "/a.jpg"), "old");
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(prompts.asked[0].text, "file : " + to + "/a.jpg\r\n\r\nALREADY EXISTING ... REPLACE ?");
    EXPECT_EQ(prompts.asked[0].defaultButton, 2);
    prompts.answers = {PromptAnswer::Yes};
    EXPECT_TRUE(CopyThisFile(from + "/a.jpg", to + "/a.jpg", context).done());
    EXPECT_EQ(readFile(to + "/a.jpg"), "new");
}

TEST_F(FileOpsFixture, FailedOrCancelledCopyLeavesNoPartialFile)
{
    const QString from = folder("from"), to = folder("to");
    const QByteArray big(3 * 1024 * 1024 + 17, 'p');
    writeFile(from + "/big.avi", big);
    writeFile(to + "/big.avi", "the old one");

    struct Case {
        const char *what;
        CopyHooks hooks;
        FileOutcome outcome;
        bool message;
    };
    const QString source = from + "/big.avi";
    const Case cases[] = {
        {"full disk", {[] { return std::make_unique<FullDiskTarget>(1500000); }, {}}, FileOutcome::Failed, true},
        {"source cut short", {[source] { return std::make_unique<ShrinkingSourceTarget>(source); }, {}},
         FileOutcome::Failed, true},
        {"cancelled", {{}, [](qint64 done, qint64) { return done < 2 * 1024 * 1024; }}, FileOutcome::Cancelled, false},
    };
    for (const Case &c : cases) {
        writeFile(source, big);
        prompts.asked.clear();
        prompts.answers = {PromptAnswer::Yes}; // replace the old one
        context.copy = c.hooks;
        EXPECT_EQ(CopyThisFile(source, to, context).outcome, c.outcome) << c.what;
        EXPECT_EQ(namesIn(to), QStringList{"big.avi"}) << c.what;
        EXPECT_EQ(readFile(to + "/big.avi"), "the old one") << c.what;
        EXPECT_EQ(prompts.asked.size(), c.message ? 2 : 1) << c.what;
        if (c.message) {
            EXPECT_EQ(prompts.asked.last().icon, PromptIcon::Critical) << c.what;
        }
    }
}

TEST_F(FileOpsFixture, MissingSourcesRaiseTheirErrorNumbers)
{
    const QString dir = folder("d");
    const FileResult copy = CopyThisFile(dir + "/gone.jpg", dir, context);
    EXPECT_EQ(copy.error.number, 3013);
    EXPECT_EQ(copy.error.source, "FileOperations::CopyThisFile");
    const FileResult rename = RenameThisFile(dir + "/*.jpg", dir + "/b.jpg", context);
    EXPECT_EQ(rename.error.number, 3001);
    EXPECT_EQ(rename.error.source, "FileOperation::RenameThisFile");
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(FileOpsFixture, RenameNeverReplacesAnotherFile)
{
    const QString dir = folder("d");
    writeFile(dir + "/a.jpg", "a");
    writeFile(dir + "/b.jpg", "b");
    EXPECT_EQ(RenameThisFile(dir + "/a.jpg", dir + "/b.jpg", context).outcome, FileOutcome::Refused);
    EXPECT_EQ(readFile(dir + "/a.jpg"), "a");
    EXPECT_EQ(readFile(dir + "/b.jpg"), "b");
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked[0].text.contains(dir + "/b.jpg"));

    EXPECT_TRUE(RenameThisFile(dir + "/a.jpg", dir + "/A \"Ä\",\n.jpg", context).done());
    EXPECT_EQ(readFile(dir + "/A \"Ä\",\n.jpg"), "a");
    EXPECT_EQ(namesIn(dir).size(), 2);
}

// The rename itself refuses a taken name, so a file that takes it between
// the check and the rename is not replaced either.
TEST_F(FileOpsFixture, TheRenameStepItselfNeverReplaces)
{
    const QString dir = folder("race");
    writeFile(dir + "/a.jpg", "a");
    writeFile(dir + "/taken.jpg", "taken meanwhile");
    EXPECT_FALSE(RenameWithoutReplacing(dir + "/a.jpg", dir + "/taken.jpg"));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(readFile(dir + "/a.jpg"), "a");
    EXPECT_EQ(readFile(dir + "/taken.jpg"), "taken meanwhile");
    EXPECT_TRUE(RenameWithoutReplacing(dir + "/a.jpg", dir + "/free.jpg"));
    EXPECT_EQ(readFile(dir + "/free.jpg"), "a");
    EXPECT_FALSE(QFile::exists(dir + "/a.jpg"));
}

TEST_F(FileOpsFixture, MoveAsksBeforeReplacingAndStaysForItsOwnFolder)
{
    const QString from = folder("from"), to = folder("to");
    writeFile(from + "/a.jpg", "new");
    writeFile(to + "/a.jpg", "old");

    prompts.folders = {from.toUpper()}; // the same folder in other case
    EXPECT_EQ(MoveFileToFolder(from + "/a.jpg", context), from + "/a.jpg");
    prompts.folders = {}; // chooser cancelled
    EXPECT_EQ(MoveFileToFolder(from + "/a.jpg", context), from + "/a.jpg");
    EXPECT_TRUE(prompts.asked.isEmpty());

    prompts.folders = {to};
    prompts.answers = {PromptAnswer::No};
    EXPECT_EQ(MoveFileToFolder(from + "/a.jpg", context), from + "/a.jpg");
    EXPECT_EQ(readFile(from + "/a.jpg"), "new");
    EXPECT_EQ(readFile(to + "/a.jpg"), "old");
    EXPECT_TRUE(released.isEmpty());

    prompts.folders = {to + '/'};
    prompts.answers = {PromptAnswer::Yes};
    EXPECT_EQ(MoveFileToFolder(from + "/a.jpg", context), to + "/a.jpg");
    EXPECT_EQ(readFile(to + "/a.jpg"), "new");
    EXPECT_FALSE(QFileInfo::exists(from + "/a.jpg"));
    EXPECT_EQ(released, QStringList{from + "/a.jpg"});
}

TEST_F(FileOpsFixture, TrashTakesTheListAfterOneQuestion)
{
    const QString dir = folder("d");
    QStringList paths;
    for (const char *name : {"one.jpg", "two, too.avi", "trè.bmp"}) {
        writeFile(dir + '/' + QString::fromUtf8(name), "x");
        paths.append(dir + '/' + QString::fromUtf8(name));
    }
    EXPECT_EQ(RecycleFiles(paths, context), RecycleCancelled);
    EXPECT_EQ(namesIn(dir).size(), 3);

    const QString dataHome = folder("data");
    const QByteArray previous = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", dataHome.toUtf8());
    prompts.answers = {PromptAnswer::Yes};
    const int result = RecycleFiles(paths, context);
    qputenv("XDG_DATA_HOME", previous);

    EXPECT_EQ(result, 0);
    EXPECT_EQ(prompts.asked.size(), 2);
    EXPECT_TRUE(prompts.asked[1].text.contains('3'));
    EXPECT_TRUE(namesIn(dir).isEmpty());
    for (const char *name : {"one.jpg", "two, too.avi", "trè.bmp"}) {
        EXPECT_EQ(readFile(dataHome + "/Trash/files/" + QString::fromUtf8(name)), "x");
        EXPECT_TRUE(readFile(dataHome + "/Trash/info/" + QString::fromUtf8(name) + ".trashinfo").contains("Path="))
            << name;
    }
}

// A second file system: a small tmpfs mounted for the test (root only),
// else /dev/shm when it is one.
class OtherFileSystem : public FileOpsFixture {
protected:
    QString mountPoint;
    bool mounted = false;

    void SetUp() override
    {
        const QString point = folder("tmpfs");
        if (::mount("vimora-test", QFile::encodeName(point).constData(), "tmpfs", 0, "size=1m") == 0) {
            mounted = true;
            mountPoint = point;
            return;
        }
        struct stat here {}, shm {};
        if (::stat(QFile::encodeName(root.path()).constData(), &here) == 0 && ::stat("/dev/shm", &shm) == 0
            && here.st_dev != shm.st_dev && QFileInfo("/dev/shm").isWritable()) {
            m_shm = std::make_unique<QTemporaryDir>("/dev/shm/vimora-test-XXXXXX");
            mountPoint = m_shm->path();
            return;
        }
        GTEST_SKIP() << "no second file system: mounting a tmpfs needs root and /dev/shm is not one";
    }
    void TearDown() override
    {
        if (mounted)
            ::umount(QFile::encodeName(mountPoint).constData());
    }

private:
    std::unique_ptr<QTemporaryDir> m_shm;
};

TEST_F(OtherFileSystem, MoveCopiesVerifiesThenRemovesTheSource)
{
    const QString from = folder("from");
    const QByteArray bytes(300 * 1024, 'm');
    writeFile(from + "/clip é.avi", bytes);
    prompts.folders = {mountPoint};
    EXPECT_EQ(MoveFileToFolder(from + "/clip é.avi", context), mountPoint + "/clip é.avi");
    EXPECT_EQ(readFile(mountPoint + "/clip é.avi"), bytes);
    EXPECT_FALSE(QFileInfo::exists(from + "/clip é.avi"));
}

TEST_F(OtherFileSystem, MoveThatDoesNotFitLeavesTheSource)
{
    if (!mounted)
        GTEST_SKIP() << "needs the small tmpfs of this test to fill it";
    const QString from = folder("from");
    const QByteArray bytes(2 * 1024 * 1024, 'b'); // twice the tmpfs
    writeFile(from + "/big.avi", bytes);
    prompts.folders = {mountPoint};
    EXPECT_EQ(MoveFileToFolder(from + "/big.avi", context), from + "/big.avi");
    EXPECT_EQ(readFile(from + "/big.avi"), bytes);
    EXPECT_TRUE(namesIn(mountPoint).isEmpty());
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Critical);
}
