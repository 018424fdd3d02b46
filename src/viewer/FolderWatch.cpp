#include "viewer/FolderWatch.h"

#include <QFile>
#include <QSet>

#include <sys/stat.h>

#include <algorithm>

namespace {

timespec modificationStamp(const QString &folder)
{
    struct stat status {};
    if (::stat(QFile::encodeName(folder).constData(), &status) != 0)
        return {};
    return status.st_mtim;
}

bool operator==(const timespec &a, const timespec &b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

} // namespace

FolderWatch::FolderWatch(QObject *parent)
    : QObject(parent)
{
    m_settleTimer.setSingleShot(true);
    connect(&m_settleTimer, &QTimer::timeout, this, &FolderWatch::settle);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &FolderWatch::noticeChange);
}

void FolderWatch::watch(const QString &folder)
{
    if (folder == m_folder)
        return;
    if (!m_folder.isEmpty())
        m_watcher.removePath(m_folder);
    m_settleTimer.stop();
    m_folder = folder;
    if (!m_folder.isEmpty() && !m_watcher.addPath(m_folder))
        m_folder.clear(); // no inotify watch left: F5 still works
}

void FolderWatch::markListed()
{
    m_listedStamp = modificationStamp(m_folder);
}

void FolderWatch::reportAgainSoon()
{
    m_sinceFirstChange.start();
    m_settleTimer.start(QuietMs);
}

void FolderWatch::noticeChange()
{
    if (!m_settleTimer.isActive())
        m_sinceFirstChange.start();
    m_settleTimer.start(FolderWatchRules::settleDelay(m_sinceFirstChange.elapsed()));
}

void FolderWatch::settle()
{
    const bool unlisted = !m_folder.isEmpty() && !(modificationStamp(m_folder) == m_listedStamp);
    emit settled();
    if (unlisted)
        emit changed();
}

namespace FolderWatchRules {

int settleDelay(qint64 sinceFirstChangeMs)
{
    return int(std::clamp<qint64>(FolderWatch::LatestMs - sinceFirstChangeMs, 0, FolderWatch::QuietMs));
}

QString successor(const QStringList &before, int shownAt, const QStringList &after)
{
    const QSet<QString> left(after.begin(), after.end());
    for (int i = shownAt + 1; i < before.size(); ++i)
        if (left.contains(before[i]))
            return before[i];
    for (int i = std::min<int>(shownAt, int(before.size())) - 1; i >= 0; --i)
        if (left.contains(before[i]))
            return before[i];
    return after.value(0);
}

} // namespace FolderWatchRules
