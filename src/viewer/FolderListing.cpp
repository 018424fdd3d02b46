#include "viewer/FolderListing.h"

#include "core/FileTypeCatalogue.h"

#include <QCollator>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <cmath>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

struct FolderListing::Directory {
    DIR *handle = nullptr;
    ~Directory()
    {
        if (handle)
            closedir(handle);
    }
};

FolderListing::FolderListing(const QString &folder, const QString &filterCode, const QString &filterItemText)
    : m_directory(std::make_unique<Directory>())
{
    const QStringList extensions = FileTypeCatalogue::admittedExtensions(filterCode, filterItemText);
    m_extensions = QSet<QString>(extensions.begin(), extensions.end());
    m_directory->handle = opendir(QFile::encodeName(folder).constData());
    m_done = m_directory->handle == nullptr;
    m_unreadable = m_done && QFileInfo(folder).isDir();
}

FolderListing::~FolderListing() = default;
FolderListing::FolderListing(FolderListing &&) noexcept = default;
FolderListing &FolderListing::operator=(FolderListing &&) noexcept = default;

bool FolderListing::done() const { return m_done; }

bool FolderListing::step(int maxEntries)
{
    if (m_done)
        return true;
    DIR *dir = m_directory->handle;
    const int dirFd = dirfd(dir);
    for (int i = 0; i < maxEntries; ++i) {
        const dirent *entry = readdir(dir);
        if (!entry) {
            sortNaturally(m_names);
            m_directory.reset();
            m_done = true;
            return true;
        }
        if (entry->d_name[0] == '.')
            continue; // hidden, and "." and ".."
        if (entry->d_type != DT_REG && entry->d_type != DT_LNK && entry->d_type != DT_UNKNOWN)
            continue;
        const QString name = QFile::decodeName(entry->d_name);
        // Names that fail the filter need no stat: in a large folder most
        // of the time goes there.
        if (!m_extensions.contains(FileTypeCatalogue::extensionOf(name)))
            continue;
        struct stat info;
        if (fstatat(dirFd, entry->d_name, &info, 0) != 0 || !S_ISREG(info.st_mode))
            continue; // vanished meanwhile, a dangling link, or a folder
        m_names.append(name);
        m_totalBytes += double(info.st_size);
    }
    return false;
}

FolderListing FolderListing::listAll(const QString &folder, const QString &filterCode, const QString &filterItemText)
{
    FolderListing listing(folder, filterCode, filterItemText);
    while (!listing.step(4096)) {
    }
    return listing;
}

QString FolderSummaryText(int count, double totalBytes)
{
    const double k = std::floor(totalBytes / 1024);
    const QString size = k != 0 ? QString::number(qint64(k)) + QStringLiteral(" K")
                                : QString::number(qint64(totalBytes)) + QStringLiteral(" byte");
    return QString::number(count) + QStringLiteral("     ") + size;
}

void sortNaturally(QStringList &names)
{
    // The C locale's collator ignores numeric mode and case; English rules
    // are then the closest to what a reader expects.
    QLocale locale;
    if (locale.language() == QLocale::C)
        locale = QLocale(QLocale::English, QLocale::UnitedStates);
    QCollator collator(locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    // Sort keys once per name: comparing through the collator directly
    // costs far more on a folder of 100,000 names.
    std::vector<std::pair<QCollatorSortKey, qsizetype>> keys;
    keys.reserve(size_t(names.size()));
    for (qsizetype i = 0; i < names.size(); ++i)
        keys.emplace_back(collator.sortKey(names[i]), i);
    std::stable_sort(keys.begin(), keys.end(),
                     [](const auto &a, const auto &b) { return a.first.compare(b.first) < 0; });
    QStringList sorted;
    sorted.reserve(names.size());
    for (const auto &key : keys)
        sorted.append(names[key.second]);
    names = std::move(sorted);
}
