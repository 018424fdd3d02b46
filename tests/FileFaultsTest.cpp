#include "core/MessageCatalogue.h"
#include "files/FileOperations.h"
#include "support/FakeSeams.h"
#include "support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

enum class Fault { DiskFull, FolderTurnsReadOnly, SourceVanishes, Cancelled };
enum class Operation { Copy, MoveAcrossFileSystems };

struct FaultCase {
    const char *name;
    Fault fault;
    Operation operation;
};

void PrintTo(const FaultCase &c, std::ostream *out) { *out << c.name; }

// Also for root, who ignores permissions: an immutable folder takes no new
// names, and none go away, whoever asks.
bool setImmutable(const QString &folder, bool on)
{
    const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    if (fd < 0)
        return false;
    int flags = 0;
    bool done = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    if (done) {
        flags = on ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
        done = ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    }
    ::close(fd);
    return done;
}

// The real target, with a fault after the first chunk: the disk fills up,
// or something else happens to the folder or the source meanwhile.
class FaultyTarget : public CopyTarget {
public:
    FaultyTarget(qint64 room, std::function<void()> afterFirstChunk)
        : m_room(room), m_afterFirstChunk(std::move(afterFirstChunk)), m_real(makeFileCopyTarget())
    {
    }
    bool open(const QString &path) override { return m_real->open(path); }
    bool write(const char *data, qint64 size) override
    {
        if (m_room >= 0 && size > m_room) {
            m_real->write(data, m_room);
            m_error = QString::fromLocal8Bit(std::strerror(ENOSPC));
            return false;
        }
        if (m_room >= 0)
            m_room -= size;
        const bool written = m_real->write(data, size);
        if (m_afterFirstChunk)
            std::exchange(m_afterFirstChunk, nullptr)();
        return written;
    }
    bool commit() override { return m_real->commit(); }
    void discard() override { m_real->discard(); }
    QString errorString() const override { return m_error.isEmpty() ? m_real->errorString() : m_error; }

private:
    qint64 m_room; // -1: no limit
    std::function<void()> m_afterFirstChunk;
    std::unique_ptr<CopyTarget> m_real;
    QString m_error;
};

class FileFaults : public ::testing::TestWithParam<FaultCase> {
protected:
    QTemporaryDir root;
    ScriptedPrompts prompts;
    MessageCatalogue messages;
    FileContext context{prompts, messages, {}, {}};
    QString from, to;
    bool mounted = false;
    std::unique_ptr<QTemporaryDir> shm;

    void SetUp() override
    {
        from = root.path() + "/from";
        QDir().mkpath(from);
        if (GetParam().operation == Operation::Copy) {
            to = root.path() + "/to";
        } else {
            // A second file system: a tmpfs of our own (root only), else /dev/shm.
            const QString point = root.path() + "/tmpfs";
            QDir().mkpath(point);
            struct stat here {}, other {};
            if (::mount("vimora-test", QFile::encodeName(point).constData(), "tmpfs", 0, "size=16m") == 0) {
                mounted = true;
                to = point + "/to";
            } else if (::stat(QFile::encodeName(root.path()).constData(), &here) == 0
                       && ::stat("/dev/shm", &other) == 0 && here.st_dev != other.st_dev
                       && QFileInfo("/dev/shm").isWritable()) {
                shm = std::make_unique<QTemporaryDir>("/dev/shm/vimora-test-XXXXXX");
                to = shm->path() + "/to";
            } else {
                GTEST_SKIP() << "no second file system";
            }
        }
        QDir().mkpath(to);
    }
    void TearDown() override
    {
        if (!to.isEmpty()) {
            setImmutable(to, false);
            QFile::setPermissions(to, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        }
        if (mounted)
            ::umount2(QFile::encodeName(root.path() + "/tmpfs").constData(), MNT_DETACH);
    }
};

TEST_P(FileFaults, SourceSurvivesAndNoPartialTargetRemains)
{
    const FaultCase c = GetParam();
    const QString source = from + "/clip.avi";
    const QByteArray bytes(3 * 1024 * 1024 + 17, 'c');
    {
        QFile file(source);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QString reason;
    bool readOnlyTakes = true;
    switch (c.fault) {
    case Fault::DiskFull:
        context.copy.makeTarget = [] { return std::make_unique<FaultyTarget>(1500000, nullptr); };
        reason = QString::fromLocal8Bit(std::strerror(ENOSPC));
        break;
    case Fault::FolderTurnsReadOnly:
        context.copy.makeTarget = [this, &readOnlyTakes] {
            return std::make_unique<FaultyTarget>(-1, [this, &readOnlyTakes] {
                QFile::setPermissions(to, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
                readOnlyTakes = ::geteuid() != 0 || setImmutable(to, true);
            });
        };
        break;
    case Fault::SourceVanishes:
        context.copy.makeTarget = [source] {
            return std::make_unique<FaultyTarget>(-1, [source] { QFile::remove(source); });
        };
        reason = "The copy is not complete";
        break;
    case Fault::Cancelled:
        context.copy.progress = [](qint64 done, qint64) { return done < 1024 * 1024; };
        break;
    }

    const QString target = to + "/clip.avi";
    const FileResult result = c.operation == Operation::Copy ? CopyThisFile(source, to, context)
                                                             : MoveFileTo(source, target, context);
    if (!readOnlyTakes)
        GTEST_SKIP() << "this file system cannot make a folder read-only for root";

    EXPECT_EQ(result.outcome, c.fault == Fault::Cancelled ? FileOutcome::Cancelled : FileOutcome::Failed);
    if (c.fault != Fault::SourceVanishes) {
        EXPECT_EQ(readFile(source), bytes);
    }
    EXPECT_TRUE(QDir(to).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).isEmpty())
        << QDir(to).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).join(", ").toStdString();

    if (c.fault == Fault::Cancelled) {
        EXPECT_TRUE(prompts.asked.isEmpty());
        return;
    }
    ASSERT_EQ(prompts.asked.size(), 1);
    const QString text = prompts.asked[0].text;
    EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Critical);
    EXPECT_TRUE(text.startsWith(c.operation == Operation::Copy ? "The file could not be copied:"
                                                               : "The file could not be moved:"))
        << text.toStdString();
    if (!reason.isEmpty()) {
        EXPECT_TRUE(text.contains(reason)) << text.toStdString();
    } else {
        EXPECT_GT(text.count("\r\n\r\n"), 1) << "the system's reason is given: " << text.toStdString();
    }
}

const FaultCase faultCases[] = {
    {"CopyOntoFullDisk", Fault::DiskFull, Operation::Copy},
    {"CopyIntoFolderTurningReadOnly", Fault::FolderTurnsReadOnly, Operation::Copy},
    {"CopyOfVanishingSource", Fault::SourceVanishes, Operation::Copy},
    {"MoveOntoFullDisk", Fault::DiskFull, Operation::MoveAcrossFileSystems},
    {"MoveIntoFolderTurningReadOnly", Fault::FolderTurnsReadOnly, Operation::MoveAcrossFileSystems},
    {"MoveOfVanishingSource", Fault::SourceVanishes, Operation::MoveAcrossFileSystems},
    {"MoveCancelled", Fault::Cancelled, Operation::MoveAcrossFileSystems},
};

INSTANTIATE_TEST_SUITE_P(Cases, FileFaults, ::testing::ValuesIn(faultCases),
                         [](const ::testing::TestParamInfo<FaultCase> &info) { return std::string(info.param.name); });

} // namespace
