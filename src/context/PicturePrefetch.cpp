#include "context/PicturePrefetch.h"

#include "core/FileTypeCatalogue.h"
#include "platform/PictureLoaderWait.h"
#include "context/PartRules.h"
#include "context/PrefetchRules.h"

#include <QEventLoop>
#include <QFile>
#include <QFutureWatcher>
#include <QTimer>
#include <QtConcurrent>

#include <algorithm>

#include <sys/stat.h>

namespace {

PictureLoader::Picture loadForFit(const QString &path, QSize fitInto)
{
    PictureLoader::Options options;
    options.fitInto = fitInto;
    if (FileTypeCatalogue::normalisedTypeCode(FileTypeCatalogue::extensionOf(path)) == u"JPG")
        options.fitInto = PrefetchRules::jpegFitBound(PictureLoader::readNaturalSize(path), fitInto);
    return PictureLoader::load(path, options);
}

// Waits for a decoding ahead as a decoding now would: the window keeps
// painting, user input waits, and a decoding past the limit is given up.
bool waitWithinLimit(const QFuture<PictureLoader::Picture> &picture, int limitMs)
{
    if (picture.isFinished())
        return true;
    QFutureWatcher<PictureLoader::Picture> watcher;
    QEventLoop loop;
    QObject::connect(&watcher, &QFutureWatcherBase::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(limitMs, &loop, &QEventLoop::quit);
    watcher.setFuture(picture);
    if (!picture.isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    return picture.isFinished();
}

} // namespace

PictureLoader::Picture PicturePrefetch::loadFor(const QString &path, const Target &target)
{
    if (target.fitInto.isValid())
        return loadForFit(path, target.fitInto);
    PictureLoader::Options options;
    if (target.viewport.isValid()) {
        const QSize natural = PictureLoader::readNaturalSize(path);
        options.part = PartRules::partToDecode(PartRules::visibleAtActualSize(natural, target.viewport), natural);
    }
    return PictureLoader::load(path, options);
}

PicturePrefetch::Stamp PicturePrefetch::stampOf(const QString &path)
{
    struct stat info;
    // A pipe or device named like a picture could block a worker for good.
    if (::stat(QFile::encodeName(path).constData(), &info) != 0 || !S_ISREG(info.st_mode))
        return {};
    return {qint64(info.st_size), qint64(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec,
            quint64(info.st_ino)};
}

PicturePrefetch::PicturePrefetch()
{
    // Two at most: the next and the previous picture; more would only take
    // cores from the thumbnail index.
    m_pool.setMaxThreadCount(std::clamp(QThread::idealThreadCount() - 1, 1, 2));
}

PicturePrefetch::~PicturePrefetch() { clear(); }

PictureLoader::Picture PicturePrefetch::obtain(const QString &path, const Target &target, int limitMs)
{
    const Stamp stamp = stampOf(path);
    const auto held = std::find_if(m_entries.begin(), m_entries.end(),
                                   [&](const Entry &entry) { return entry.path == path && entry.target == target; });
    if (held != m_entries.end()) {
        if (held->stamp == stamp && stamp.size >= 0) {
            if (waitWithinLimit(held->picture, limitMs)) {
                ++m_hits;
                return held->picture.result();
            }
            drop(held);
            return {};
        }
        drop(held);
    }
    const PictureLoader::Picture picture = PictureLoader::loadWithinLimit(
        path, {}, limitMs, [target](const QString &file, const PictureLoader::Options &) { return loadFor(file, target); });
    if (picture.isNull())
        return picture; // maybe given up for time: tried again next time, not held as broken
    if (stamp.size >= 0)
        m_entries.push_back({path, target, stamp, QtFuture::makeReadyFuture(picture),
                             std::make_shared<std::atomic_bool>(true)});
    return picture;
}

bool PicturePrefetch::isReady(const QString &path, const Target &target) const
{
    const auto held = std::find_if(m_entries.begin(), m_entries.end(),
                                   [&](const Entry &entry) { return entry.path == path && entry.target == target; });
    return held != m_entries.end() && held->picture.isFinished() && held->stamp == stampOf(path);
}

void PicturePrefetch::hold(const QStringList &paths, const Target &target)
{
    for (auto entry = m_entries.begin(); entry != m_entries.end();) {
        if (!(entry->target == target) || !paths.contains(entry->path))
            entry = drop(entry);
        else
            ++entry;
    }
    for (const QString &path : paths) {
        const bool held = std::any_of(m_entries.begin(), m_entries.end(),
                                      [&](const Entry &entry) { return entry.path == path; });
        const Stamp stamp = stampOf(path);
        if (held || stamp.size < 0)
            continue;
        auto wanted = std::make_shared<std::atomic_bool>(true);
        QFuture<PictureLoader::Picture> picture = QtConcurrent::run(&m_pool, [path, target, wanted] {
            return wanted->load() ? loadFor(path, target) : PictureLoader::Picture{};
        });
        m_entries.push_back({path, target, stamp, std::move(picture), std::move(wanted)});
    }
}

void PicturePrefetch::clear()
{
    while (!m_entries.empty())
        drop(m_entries.begin());
    m_pool.waitForDone();
}

std::vector<PicturePrefetch::Entry>::iterator PicturePrefetch::drop(std::vector<Entry>::iterator entry)
{
    // A decoding under way runs to its end; its result goes with the last
    // reference to it.
    entry->wanted->store(false);
    return m_entries.erase(entry);
}
