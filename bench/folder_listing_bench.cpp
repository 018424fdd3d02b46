// Listing a folder of 100,000 files against a bare readdir + stat of it,
// and the longest pause one step of that listing gives the window.
#include "bench/BenchTable.h"
#include "bench/BenchWindow.h"

#include "core/FileTypeCatalogue.h"
#include "viewer/FolderListing.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

void folderListingBench(BenchTable &table);

// Mixed case and numbers of every width, so that sorting does real work.
void makeLargeFolder(const QString &folder, const QList<QByteArray> &suffixes)
{
    static const char *stems[] = {"holiday_", "IMG_", "scan ", "Clip-"};
    const QByteArray base = QFile::encodeName(folder) + '/';
    for (int i = 0; i < LargeFolderSize; ++i) {
        const QByteArray name = base + stems[i % 4] + QByteArray::number(i * 7919 % LargeFolderSize)
            + suffixes[i % suffixes.size()];
        const int fd = ::open(name.constData(), O_CREAT | O_WRONLY, 0644);
        if (fd < 0)
            continue;
        if (::write(fd, "data", 4) != 4) {
            // A shorter file changes no figure that matters here.
        }
        ::close(fd);
    }
}

namespace {

// As the main window lists: events run after this many entries.
constexpr int EntriesPerStep = 2000;

// The least any program does to list a folder with sizes.
qint64 plainReaddirAndStat(const QString &folder)
{
    DIR *dir = opendir(QFile::encodeName(folder).constData());
    if (!dir)
        return 0;
    qint64 total = 0;
    const int fd = dirfd(dir);
    while (const dirent *entry = readdir(dir)) {
        struct stat info;
        if (fstatat(fd, entry->d_name, &info, 0) == 0)
            total += info.st_size;
    }
    closedir(dir);
    return total;
}

void measure(BenchTable &table, const QString &kind, const QList<QByteArray> &suffixes)
{
    QTemporaryDir dir(QStringLiteral("/tmp/vimora-listing-XXXXXX"));
    makeLargeFolder(dir.path(), suffixes);
    const QString item = FileTypeCatalogue::typeFilterItems({}).first();
    const QString code = FileTypeCatalogue::filterCodeOfItem(item);
    plainReaddirAndStat(dir.path()); // both start from a warm cache

    double longestStep = 0;
    int listed = 0;
    const auto listOnce = [&] {
        FolderListing listing(dir.path(), code, item);
        QElapsedTimer step;
        step.start();
        listing.run(EntriesPerStep, [&] {
            longestStep = std::max(longestStep, step.nsecsElapsed() / 1e6);
            step.restart();
            return true;
        });
        longestStep = std::max(longestStep, step.nsecsElapsed() / 1e6);
        listed = listing.count();
    };
    // Taken in turns, so that a change in the machine's load meets both.
    double reference = 1e12, ours = 1e12;
    for (int run = 0; run < benchRuns(3); ++run) {
        reference = std::min(reference, bestOf(1, [&] { plainReaddirAndStat(dir.path()); }));
        ours = std::min(ours, bestOf(1, listOnce));
    }
    const QString what = QStringLiteral("list %1 files, %2, All Supported (%3 listed)");
    table.add({what.arg(LargeFolderSize).arg(kind).arg(listed), QStringLiteral("readdir + stat of the same folder"),
               ours, reference});
    table.add({QStringLiteral("  longest step of %1 entries (%2)").arg(EntriesPerStep).arg(kind),
               QStringLiteral("one frame at 60 Hz"), longestStep, 1000.0 / 60});
}

} // namespace

const QList<QByteArray> &mixedSuffixes()
{
    static const QList<QByteArray> suffixes{".jpg", ".BMP", ".txt", ".avi", ".gif",
                                            ".doc", ".mpeg", ".png", ".Jpeg", ".rm"};
    return suffixes;
}

void folderListingBench(BenchTable &table)
{
    measure(table, QStringLiteral("mixed types"), mixedSuffixes());
    // Every name listed: the most stat, collation and sorting there can be.
    measure(table, QStringLiteral("all pictures"), {".jpg", ".JPG", ".bmp", ".gif"});
}
