#pragma once

#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <ctime>

// Tells when another program changed the shown folder (files added, removed
// or renamed), through inotify. Changes are settled first, so that a burst
// (a camera import of thousands of files) is one report, never later than
// LatestMs after it began. A change already listed, such as Vimora's own
// chores that re-read the folder, is not reported again: the folder's
// modification time is compared with the one it had when last listed.
class FolderWatch : public QObject {
    Q_OBJECT
public:
    static constexpr int QuietMs = 150;
    static constexpr int LatestMs = 600;

    explicit FolderWatch(QObject *parent = nullptr);

    // An empty folder watches nothing.
    void watch(const QString &folder);
    const QString &folder() const { return m_folder; }
    // The folder is being listed now: only later changes are reported.
    void markListed();
    // A report that could not be acted on yet comes again a little later.
    void reportAgainSoon();

signals:
    void changed();
    void settled(); // after every settled burst, reported or not (tests wait on it)

private:
    void noticeChange();
    void settle();

    QFileSystemWatcher m_watcher;
    QTimer m_settleTimer;
    QElapsedTimer m_sinceFirstChange;
    QString m_folder;
    timespec m_listedStamp{};
};

namespace FolderWatchRules {

// How long to wait after a change before looking: until the folder has been
// quiet for QuietMs, but no later than LatestMs after the burst's first change.
int settleDelay(qint64 sinceFirstChangeMs);

// The file to show when the one on show (at shownAt in `before`) is gone from
// `after`: the first one after it that is still there, else the nearest one
// before it, else the first of `after` (empty when `after` is).
QString successor(const QStringList &before, int shownAt, const QStringList &after);

} // namespace FolderWatchRules
