#include "viewer/FolderListing.h"

#include "core/FileTypeCatalogue.h"

#include <QCollator>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLocale>
#include <QThreadPool>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <deque>
#include <cstring>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

QCollator naturalCollator()
{
    // The C locale's collator ignores numeric mode and case; English rules
    // are then the closest to what a reader expects.
    QLocale locale;
    if (locale.language() == QLocale::C)
        locale = QLocale(QLocale::English, QLocale::UnitedStates);
    QCollator collator(locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

// Names in natural order, sorted a run at a time as they come in and
// merged like a binary counter. A merge goes on across calls when its
// deadline comes first, so no single step of a large listing has to sort or
// merge everything at once.
class NaturalOrder {
public:
    NaturalOrder() : m_collator(naturalCollator()) {}

    void add(QString name)
    {
        m_keys.push_back(m_collator.sortKey(name));
        m_names.append(std::move(name));
    }

    // Sorts the names added since the last call as one run, then merges
    // what the binary counter asks for until the deadline.
    void closeRun(const QDeadlineTimer &until = QDeadlineTimer::Forever)
    {
        const size_t start = m_order.size();
        if (start != m_keys.size()) {
            for (size_t i = start; i < m_keys.size(); ++i)
                m_order.push_back(quint32(i));
            std::sort(m_order.begin() + qptrdiff(start), m_order.end(),
                      [this](quint32 a, quint32 b) { return less(a, b); });
            m_runStarts.push_back(start);
        }
        merge(until, false);
    }

    // Merges every run into one; false when the deadline came first.
    bool mergeAll(const QDeadlineTimer &until) { return merge(until, true); }

    // Puts the merged names in order until the deadline; true once done.
    bool arrange(const QDeadlineTimer &until)
    {
        if (m_sorted.isEmpty())
            m_sorted.reserve(m_names.size());
        while (m_arranged < m_order.size()) {
            const size_t end = std::min(m_order.size(), m_arranged + 4096);
            for (; m_arranged < end; ++m_arranged)
                m_sorted.append(std::move(m_names[qsizetype(m_order[m_arranged])]));
            if (until.hasExpired() && m_arranged < m_order.size())
                return false;
        }
        return true;
    }

    QStringList takeSorted()
    {
        closeRun();
        mergeAll(QDeadlineTimer::Forever);
        arrange(QDeadlineTimer::Forever);
        return std::move(m_sorted);
    }

private:
    bool less(quint32 a, quint32 b) const
    {
        const int order = m_keys[a].compare(m_keys[b]);
        // Names equal but for case still get a fixed order, not the
        // directory's, so the same folder always lists the same way.
        return order != 0 ? order < 0 : m_names[a] < m_names[b];
    }

    size_t runLength(size_t run) const
    {
        const size_t end = run + 1 < m_runStarts.size() ? m_runStarts[run + 1] : m_order.size();
        return end - m_runStarts[run];
    }

    bool merge(const QDeadlineTimer &until, bool all)
    {
        for (;;) {
            if (m_merging && !continueMerge(until))
                return false;
            const size_t runs = m_runStarts.size();
            if (runs < 2 || (!all && runLength(runs - 2) > runLength(runs - 1)))
                return runs < 2;
            // The last two runs, stably: on equal names the earlier run first.
            m_merging = true;
            m_left = m_runStarts[runs - 2];
            m_middle = m_runStarts[runs - 1];
            m_end = m_order.size();
            m_fromLeft = m_left;
            m_fromRight = m_middle;
            m_merged.clear();
            m_merged.reserve(m_end - m_left);
        }
    }

    bool continueMerge(const QDeadlineTimer &until)
    {
        while (m_fromLeft < m_middle || m_fromRight < m_end) {
            for (int i = 0; i < 4096 && (m_fromLeft < m_middle || m_fromRight < m_end); ++i) {
                const bool right =
                    m_fromLeft == m_middle || (m_fromRight < m_end && less(m_order[m_fromRight], m_order[m_fromLeft]));
                m_merged.push_back(right ? m_order[m_fromRight++] : m_order[m_fromLeft++]);
            }
            if (until.hasExpired() && (m_fromLeft < m_middle || m_fromRight < m_end))
                return false;
        }
        std::copy(m_merged.begin(), m_merged.end(), m_order.begin() + qptrdiff(m_left));
        m_runStarts.erase(std::find(m_runStarts.begin(), m_runStarts.end(), m_middle));
        m_merging = false;
        return true;
    }

    QCollator m_collator;
    // One key per name: comparing through the collator itself is ten times
    // slower on a large folder. Indices are sorted, not keys: a key has no
    // move, only a reference-counted copy.
    // A deque: growing a vector would copy every key, a frame's work at once.
    std::deque<QCollatorSortKey> m_keys;
    QStringList m_names;
    std::vector<quint32> m_order;
    std::vector<size_t> m_runStarts;
    // The merge under way: [left, middle) and [middle, end) of m_order.
    bool m_merging = false;
    size_t m_left = 0, m_middle = 0, m_end = 0, m_fromLeft = 0, m_fromRight = 0;
    std::vector<quint32> m_merged;
    QStringList m_sorted;
    size_t m_arranged = 0;
};

// The names put in order on a thread of its own while the window's thread
// reads the folder: the collation and the stat calls then share two cores
// instead of adding up, and no step of the window's waits for a merge.
class BackgroundOrder {
public:
    BackgroundOrder() { m_pool.setMaxThreadCount(1); } // one thread: the runs go in order
    ~BackgroundOrder() { m_stop = true; } // m_pool, last member, goes first and waits

    // The name as the folder gives it: decoding it is left to the sorting
    // thread too, and one buffer a run spares the reading thread an
    // allocation a name.
    void add(const char *name)
    {
        m_batch.append(name, qsizetype(std::strlen(name) + 1));
        ++m_batchCount;
    }

    // Hands the names added since the last call over as one run.
    void closeRun()
    {
        if (m_batchCount == 0)
            return;
        m_pool.start([this, batch = std::move(m_batch)] {
            if (m_stop)
                return;
            for (const char *name = batch.constData(); name < batch.constData() + batch.size();) {
                const qsizetype length = qsizetype(std::strlen(name));
                m_order.add(QFile::decodeName(QByteArray::fromRawData(name, length)));
                name += length + 1;
            }
            m_order.closeRun();
        });
        m_batch = QByteArray();
        m_batchCount = 0;
    }

    // After the last run: merges everything, giving up soon once stopped.
    void finish()
    {
        closeRun();
        m_pool.start([this] {
            const auto slice = [] { return QDeadlineTimer(2); };
            while (!m_order.mergeAll(slice()))
                if (m_stop)
                    return;
            while (!m_order.arrange(slice()))
                if (m_stop)
                    return;
            m_sorted = m_order.takeSorted();
        });
    }

    // True once finish()'s work is done, waiting at most ms for it.
    bool waitForSorted(int ms) { return m_pool.waitForDone(ms); }
    QStringList takeSorted() { return std::move(m_sorted); }

private:
    NaturalOrder m_order; // touched only by the pool's thread
    QByteArray m_batch; // names, each ended by a zero byte
    int m_batchCount = 0;
    QStringList m_sorted;
    std::atomic_bool m_stop = false;
    QThreadPool m_pool;
};

} // namespace

struct FolderListing::State {
    QString filterCode;
    QString filterItemText;
    DIR *handle = nullptr;
    bool allRead = false; // then the steps wait for the sorting
    BackgroundOrder order;
    // admits() depends only on a name's last four characters: the answer
    // is kept per tail, so most names are judged before being decoded.
    QHash<quint32, bool> admittedAsciiTails;
    QHash<QString, bool> admittedTails;

    ~State()
    {
        if (handle)
            closedir(handle);
    }

    bool admits(const char *name)
    {
        const size_t length = std::strlen(name);
        const size_t tailLength = std::min<size_t>(length, 4);
        const char *tail = name + length - tailLength;
        quint32 packed = 0;
        bool ascii = true;
        for (size_t i = 0; i < tailLength; ++i) {
            const auto byte = static_cast<unsigned char>(tail[i]);
            ascii = ascii && byte < 0x80;
            packed = packed << 8 | byte;
        }
        // Bytes below 0x80 are whole characters in UTF-8, so an ASCII tail
        // is also the decoded name's last four characters.
        if (ascii) {
            const auto found = admittedAsciiTails.constFind(packed);
            if (found != admittedAsciiTails.cend())
                return *found;
            const bool admitted = FileTypeCatalogue::admits(QString::fromLatin1(tail, qsizetype(tailLength)),
                                                            filterCode, filterItemText);
            admittedAsciiTails.insert(packed, admitted);
            return admitted;
        }
        const QString decodedTail = QFile::decodeName(name).right(4);
        const auto found = admittedTails.constFind(decodedTail);
        if (found != admittedTails.cend())
            return *found;
        const bool admitted = FileTypeCatalogue::admits(decodedTail, filterCode, filterItemText);
        admittedTails.insert(decodedTail, admitted);
        return admitted;
    }
};

FolderListing::FolderListing(const QString &folder, const QString &filterCode, const QString &filterItemText)
    : m_state(std::make_unique<State>())
{
    m_state->filterCode = filterCode;
    m_state->filterItemText = filterItemText;
    m_state->handle = opendir(QFile::encodeName(folder).constData());
    if (!m_state->handle) {
        m_done = true;
        m_unreadable = QFileInfo(folder).isDir();
        m_state.reset();
    }
}

FolderListing::~FolderListing() = default;
FolderListing::FolderListing(FolderListing &&) noexcept = default;
FolderListing &FolderListing::operator=(FolderListing &&) noexcept = default;

bool FolderListing::step(int maxEntries)
{
    if (m_done)
        return true;
    DIR *dir = m_state->handle;
    const int dirFd = dirfd(dir);
    QElapsedTimer clock;
    clock.start();
    if (m_state->allRead) {
        if (!m_state->order.waitForSorted(StepBudgetMs))
            return false;
        m_names = m_state->order.takeSorted();
        m_state.reset();
        m_done = true;
        return true;
    }
    for (int i = 0; i < maxEntries; ++i) {
        if (i % 128 == 127 && clock.elapsed() >= StepBudgetMs)
            break;
        errno = 0;
        const dirent *entry = readdir(dir);
        if (!entry) {
            m_unreadable = errno != 0; // an I/O error part way through
            m_state->allRead = true;
            m_state->order.finish();
            return false;
        }
        if (entry->d_name[0] == '.')
            continue; // hidden, and "." and ".."
        if (entry->d_type != DT_REG && entry->d_type != DT_LNK && entry->d_type != DT_UNKNOWN)
            continue;
        // Names that fail the filter need no stat: in a large folder most
        // of the time goes there.
        if (!m_state->admits(entry->d_name))
            continue;
        struct stat info;
        if (fstatat(dirFd, entry->d_name, &info, 0) != 0 || !S_ISREG(info.st_mode))
            continue; // vanished meanwhile, a dangling link, or a folder
        m_state->order.add(entry->d_name);
        m_totalBytes += double(info.st_size);
    }
    m_state->order.closeRun();
    return false;
}

bool FolderListing::run(int entriesPerStep, const std::function<bool()> &shouldContinue)
{
    while (!step(entriesPerStep)) {
        if (!shouldContinue()) {
            cancel();
            return false;
        }
    }
    return !m_cancelled;
}

void FolderListing::cancel()
{
    m_state.reset();
    m_names.clear();
    m_totalBytes = 0;
    m_done = true;
    m_cancelled = true;
}

QStringList FolderListing::fileNames() const { return m_names.isEmpty() ? QStringList{QString()} : m_names; }

FolderListing FolderListing::listAll(const QString &folder, const QString &filterCode, const QString &filterItemText)
{
    FolderListing listing(folder, filterCode, filterItemText);
    while (!listing.step(4096)) {
    }
    return listing;
}

bool WouldBeListed(const QString &folder, const QString &name, const QString &filterCode,
                   const QString &filterItemText)
{
    if (name.isEmpty() || name.startsWith(QLatin1Char('.')) || name.contains(QLatin1Char('/')))
        return false;
    // The listing judges a name by its last four characters.
    if (!FileTypeCatalogue::admits(name.right(4), filterCode, filterItemText))
        return false;
    struct stat info;
    const QString path = folder.endsWith(QLatin1Char('/')) ? folder + name : folder + QLatin1Char('/') + name;
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 && S_ISREG(info.st_mode);
}

QString FolderSummaryText(int count, double totalBytes)
{
    const double k = std::floor(totalBytes / 1024);
    const QString size = k != 0 ? QString::number(qint64(k)) + QStringLiteral(" K")
                                : QString::number(qint64(totalBytes)) + QStringLiteral(" byte");
    return QString::number(count) + QStringLiteral("     ") + size;
}

int FileCount(const QStringList &fileNames)
{
    return fileNames.value(0).isEmpty() ? 0 : int(fileNames.size());
}

void sortNaturally(QStringList &names)
{
    NaturalOrder order;
    for (const QString &name : std::as_const(names))
        order.add(name);
    names = order.takeSorted();
}
