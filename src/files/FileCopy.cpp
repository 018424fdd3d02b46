#include "files/FileCopy.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

class FileCopyTarget : public CopyTarget {
public:
    bool open(const QString &path) override
    {
        m_path = path;
        // A nameless file in the target's folder: whatever goes wrong before
        // commit, nothing is left behind, even when the folder has meanwhile
        // become read-only. File systems without it get the named file.
        const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
        const int nameless = ::open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
        if (nameless >= 0) {
            m_nameless = true;
            return m_file.open(nameless, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle);
        }
        m_file.setFileName(path);
        // NewOnly: never write into a file that someone else just made.
        return m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
    }
    bool write(const char *data, qint64 size) override { return m_file.write(data, size) == size; }
    bool commit() override
    {
        if (!m_file.flush())
            return false;
        if (::fsync(m_file.handle()) != 0)
            return failWith(errno);
        if (m_nameless) {
            const QByteArray handle = "/proc/self/fd/" + QByteArray::number(m_file.handle());
            if (::linkat(AT_FDCWD, handle.constData(), AT_FDCWD, QFile::encodeName(m_path).constData(),
                         AT_SYMLINK_FOLLOW)
                != 0)
                return failWith(errno);
            m_named = true;
        }
        m_file.close();
        return m_file.error() == QFileDevice::NoError;
    }
    void discard() override
    {
        m_file.close();
        if (!m_nameless || m_named)
            QFile::remove(m_path);
        m_nameless = m_named = false;
    }
    QString errorString() const override { return m_error.isEmpty() ? m_file.errorString() : m_error; }

private:
    bool failWith(int error)
    {
        m_error = QString::fromLocal8Bit(std::strerror(error));
        return false;
    }

    QFile m_file;
    QString m_path;
    QString m_error;
    bool m_nameless = false; // O_TMPFILE, not yet linked
    bool m_named = false;
};

QString temporaryPathBeside(const QString &target)
{
    // Hidden, and short enough for the 255 bytes of a name in any script.
    const QFileInfo info(target);
    return info.absolutePath() + QStringLiteral("/.") + info.fileName().left(32) + QStringLiteral(".vimora-part-")
         + QString::number(QRandomGenerator::global()->generate(), 16);
}

} // namespace

std::unique_ptr<CopyTarget> makeFileCopyTarget() { return std::make_unique<FileCopyTarget>(); }

CopyBytesResult copyFileBytes(const QString &source, const QString &target, const CopyHooks &hooks)
{
    QFile input(source);
    if (!input.open(QIODevice::ReadOnly))
        return {CopyStatus::Failed, input.errorString()};
    const qint64 total = input.size();

    std::unique_ptr<CopyTarget> output = hooks.makeTarget ? hooks.makeTarget() : makeFileCopyTarget();
    const QString temporary = temporaryPathBeside(target);
    if (!output->open(temporary))
        return {CopyStatus::Failed, output->errorString()};

    auto fail = [&](CopyStatus status, const QString &why) {
        output->discard();
        QFile::remove(temporary); // also when a test target forgot to
        return CopyBytesResult{status, why};
    };

    constexpr qint64 Chunk = 1024 * 1024;
    QByteArray buffer(Chunk, Qt::Uninitialized);
    qint64 done = 0;
    while (done < total) {
        const qint64 got = input.read(buffer.data(), qMin(Chunk, total - done));
        if (got < 0)
            return fail(CopyStatus::Failed, input.errorString());
        if (got == 0)
            break; // the source got shorter under us: caught by the size check
        if (!output->write(buffer.constData(), got))
            return fail(CopyStatus::Failed, output->errorString());
        done += got;
        if (hooks.progress && !hooks.progress(done, total))
            return fail(CopyStatus::Cancelled, {});
    }
    if (done != total || QFileInfo(source).size() != total)
        return fail(CopyStatus::Incomplete, {});
    if (!output->commit())
        return fail(CopyStatus::Failed, output->errorString());
    if (QFileInfo(temporary).size() != total)
        return fail(CopyStatus::Incomplete, {});

    QFile written(temporary);
    written.setPermissions(input.permissions());
    if (written.open(QIODevice::ReadWrite)) {
        written.setFileTime(QFileInfo(source).lastModified(), QFileDevice::FileModificationTime);
        written.close();
    }
    if (std::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(target).constData()) != 0)
        return fail(CopyStatus::Failed, QString::fromLocal8Bit(std::strerror(errno)));
    return {CopyStatus::Copied, {}};
}
