#pragma once

#include <QString>

#include <functional>
#include <memory>

// Where the bytes of one copy go. The copy writes a temporary file beside
// the target and renames it at the end, so a failed or cancelled copy
// leaves no partial file; tests replace this to make the disk fill up or
// the source vanish half way.
class CopyTarget {
public:
    virtual ~CopyTarget() = default;
    virtual bool open(const QString &path) = 0;
    virtual bool write(const char *data, qint64 size) = 0;
    virtual bool commit() = 0;   // everything on the disk, file closed
    virtual void discard() = 0;  // closed and removed
    virtual QString errorString() const = 0;
};

// The real one: a file flushed to the disk with fsync before it counts.
std::unique_ptr<CopyTarget> makeFileCopyTarget();

struct CopyHooks {
    std::function<std::unique_ptr<CopyTarget>()> makeTarget; // empty: real files
    // Called after every chunk with the bytes done and the total; false
    // cancels. Empty: no progress is shown.
    std::function<bool(qint64 done, qint64 total)> progress;
};

// Incomplete: the source changed size under the copy, or the copy on the
// disk does not have the size written.
enum class CopyStatus { Copied, Cancelled, Failed, Incomplete };

struct CopyBytesResult {
    CopyStatus status = CopyStatus::Failed;
    QString error; // the system's reason of a failure
};

// Copies the source's bytes to the target path (replacing it when there)
// through a temporary file in the target's folder; the target keeps the
// source's modification time and permissions. The size written is checked
// against the source's size when the copy began.
CopyBytesResult copyFileBytes(const QString &source, const QString &target, const CopyHooks &hooks);

// Files from this size on show a progress window.
inline constexpr qint64 LargeCopyBytes = 8 * 1024 * 1024;
