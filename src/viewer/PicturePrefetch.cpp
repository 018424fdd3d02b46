#include "viewer/PicturePrefetch.h"

#include "core/FileTypeCatalogue.h"
#include "viewer/PrefetchRules.h"

#include <QFile>
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

} // namespace

PicturePrefetch::Stamp PicturePrefetch::stampOf(const QString &path)
{
    struct stat info;
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
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

PictureLoader::Picture PicturePrefetch::obtain(const QString &path, QSize fitInto)
{
    const Stamp stamp = stampOf(path);
    const auto held = std::find_if(m_entries.begin(), m_entries.end(),
                                   [&](const Entry &entry) { return entry.path == path && entry.fitInto == fitInto; });
    if (held != m_entries.end()) {
        if (held->stamp == stamp && stamp.size >= 0) {
            ++m_hits;
            return held->picture.result(); // runs it here if no worker took it yet
        }
        drop(held);
    }
    const PictureLoader::Picture picture = loadForFit(path, fitInto);
    if (stamp.size >= 0)
        m_entries.push_back({path, fitInto, stamp, QtFuture::makeReadyFuture(picture),
                             std::make_shared<std::atomic_bool>(true)});
    return picture;
}

void PicturePrefetch::hold(const QStringList &paths, QSize fitInto)
{
    for (auto entry = m_entries.begin(); entry != m_entries.end();) {
        if (entry->fitInto != fitInto || !paths.contains(entry->path))
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
        QFuture<PictureLoader::Picture> picture = QtConcurrent::run(&m_pool, [path, fitInto, wanted] {
            return wanted->load() ? loadForFit(path, fitInto) : PictureLoader::Picture{};
        });
        m_entries.push_back({path, fitInto, stamp, std::move(picture), std::move(wanted)});
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
