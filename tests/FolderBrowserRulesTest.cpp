#include "core/FileTypeCatalogue.h"
#include "platform/Drives.h"
#include "support/FakeSeams.h"
#include "viewer/FolderListing.h"
#include "viewer/PathHistory.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

void touch(const QString &path, qint64 bytes = 0)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(QByteArray(bytes, 'x'));
}

QStringList listed(const QString &folder, int item)
{
    const QStringList items = FileTypeCatalogue::typeFilterItems({});
    return FolderListing::listAll(folder, FileTypeCatalogue::filterCodeOfItem(items[item]), items[item]).names();
}

} // namespace

TEST(FolderListing, AdmittedNamesInNaturalOrderWithoutHiddenFiles)
{
    QTemporaryDir dir;
    for (const char *name : {"img10.jpg", "img2.jpg", "IMG1.JPG", "b.bmp", ".hidden.jpg", "notes.txt",
                             "clip.rmvb", "photoJPEG", "x.pps", "a b, c.gif", "è-accent.bmp", "line\nbreak.bmp"})
        touch(dir.path() + '/' + QString::fromUtf8(name));
    QDir(dir.path()).mkdir("folder.jpg"); // a folder is never a picture

    EXPECT_EQ(listed(dir.path(), 0), QStringList({"a b, c.gif", "b.bmp", QString::fromUtf8("è-accent.bmp"), "IMG1.JPG",
                                                  "img2.jpg", "img10.jpg", "line\nbreak.bmp", "photoJPEG", "x.pps"}));
    EXPECT_EQ(listed(dir.path(), 3), QStringList({"IMG1.JPG", "img2.jpg", "img10.jpg", "photoJPEG"}));
    EXPECT_EQ(listed(dir.path(), 5), QStringList({"b.bmp", QString::fromUtf8("è-accent.bmp"), "line\nbreak.bmp"}));
    EXPECT_EQ(listed(dir.path(), 16), QStringList());
    EXPECT_EQ(listed(dir.path(), 17), QStringList({"x.pps"}));
}

TEST(FolderListing, TotalsSizesAndSummaryText)
{
    QTemporaryDir dir;
    touch(dir.path() + "/a.bmp", 1000);
    touch(dir.path() + "/b.bmp", 23);
    const QStringList items = FileTypeCatalogue::typeFilterItems({});
    FolderListing listing = FolderListing::listAll(dir.path(), "ALLSUP", items[0]);
    EXPECT_EQ(listing.totalBytes(), 1023);
    EXPECT_EQ(FolderSummaryText(2, listing.totalBytes()), "2     1023 byte");
    EXPECT_EQ(FolderSummaryText(1, 1024), "1     1 K");
    EXPECT_EQ(FolderSummaryText(40, 10.0 * 1024 * 1024), "40     10240 K");
    EXPECT_EQ(FolderSummaryText(0, 0), "0     0 byte");
}

TEST(FolderListing, RunsInStepsAndCopesWithAMissingFolder)
{
    QTemporaryDir dir;
    for (int i = 0; i < 50; ++i)
        touch(dir.path() + QStringLiteral("/p%1.bmp").arg(i));
    FolderListing listing(dir.path(), "BMP", "BMP");
    int steps = 0;
    while (!listing.step(10))
        ++steps;
    EXPECT_GE(steps, 5);
    EXPECT_EQ(listing.names().size(), 50);
    EXPECT_EQ(listing.names().first(), "p0.bmp");
    EXPECT_EQ(listing.names().last(), "p49.bmp");

    FolderListing gone(dir.path() + "/no such folder", "ALLSUP", "");
    EXPECT_TRUE(gone.step(10));
    EXPECT_TRUE(gone.names().isEmpty());
}

TEST(PathHistory, InsertMovesToTheTopAndDropsTheOlderDuplicate)
{
    MemorySettingsStore settings;
    QStringList history = PathHistory::insert(settings, {}, "/a");
    history = PathHistory::insert(settings, history, "/b");
    history = PathHistory::insert(settings, history, "/c");
    EXPECT_EQ(history, QStringList({"/c", "/b", "/a"}));
    history = PathHistory::insert(settings, history, "/A");
    EXPECT_EQ(history, QStringList({"/A", "/c", "/b"}));
}

TEST(PathHistory, KeysBeyondTheLoadedOnesAreLeftInPlace)
{
    MemorySettingsStore settings;
    for (int i = 0; i < 45; ++i)
        settings.write("URL", QString::number(i), QStringLiteral("/f%1").arg(i));
    const QStringList history = PathHistory::insert(settings, PathHistory::load(settings), "/new");
    EXPECT_EQ(history.size(), 41);
    EXPECT_EQ(history.first(), "/new");
    EXPECT_EQ(settings.read("URL", "41"), "/f40");
    EXPECT_EQ(settings.read("URL", "44"), "/f44"); // stale, never read
}

TEST(PathHistory, LoadStopsAtTheFirstEmptyKeyAndAt41Entries)
{
    MemorySettingsStore settings;
    for (int i = 0; i < 6; ++i)
        settings.write("URL", QString::number(i), QStringLiteral("/f%1").arg(i));
    settings.write("URL", "3", "");
    EXPECT_EQ(PathHistory::load(settings), QStringList({"/f0", "/f1", "/f2"}));

    for (int i = 0; i < 60; ++i)
        settings.write("URL", QString::number(i), QStringLiteral("/g%1").arg(i));
    EXPECT_EQ(PathHistory::load(settings).size(), 41);

    PathHistory::clear(settings);
    EXPECT_TRUE(PathHistory::load(settings).isEmpty());
}

TEST(PathHistory, CompletionFromTheTypedStart)
{
    const QStringList history{"/home/anna/Pictures", "/home/anna/Movies", "/media/cdrom"};
    const auto pictures = PathHistory::completion(history, "/HOME/an");
    ASSERT_TRUE(pictures.has_value());
    EXPECT_EQ(pictures->text, "/home/anna/Pictures/");
    EXPECT_EQ(pictures->selectionStart, 8);
    EXPECT_EQ(PathHistory::completion(history, "/home/anna/M")->text, "/home/anna/Movies/");
    EXPECT_EQ(PathHistory::completion(history, "/media/cdrom/")->text, "/media/cdrom/");
    EXPECT_FALSE(PathHistory::completion(history, "/srv").has_value());
    EXPECT_FALSE(PathHistory::completion(history, "  ").has_value());
}

TEST(Drives, MountsOpticalDrivesAndNetworkShares)
{
    QTemporaryDir sys;
    QDir(sys.path()).mkpath("sr0/device");
    QDir(sys.path()).mkpath("sr1");
    QDir(sys.path()).mkpath("sda");
    touch(sys.path() + "/sr0/size");
    const QList<MountEntry> mounts{
        {"/", "/dev/sda1", "ext4", ""},
        {"/home", "/dev/sda2", "ext4", ""},
        {"/proc", "proc", "proc", ""},
        {"/run/user/1000", "tmpfs", "tmpfs", ""},
        {"/mnt/share", "//server/photos", "cifs", "photos"},
        {"/media/anna/DISC", "/dev/sr1", "iso9660", "DISC"},
    };
    const QList<Drive> drives = drivesFrom(mounts, sys.path());
    QStringList roots;
    for (const Drive &drive : drives)
        roots.append(drive.rootPath);
    EXPECT_EQ(roots, QStringList({"/", "/dev/sr0", "/home", "/media/anna/DISC", "/mnt/share"}));

    EXPECT_EQ(driveOf("/home/anna/x.jpg", drives), "/home");
    EXPECT_EQ(driveOf("/homework", drives), "/");
    EXPECT_TRUE(isNetworkPath("/mnt/share/2024", drives));
    EXPECT_FALSE(isNetworkPath("/home/anna", drives));

    EXPECT_FALSE(Testa_CDPronto("/dev/sr0", drives)); // no disc
    EXPECT_TRUE(Testa_CDRom("/dev/sr0", drives));
    EXPECT_TRUE(Testa_CDPronto("/media/anna/DISC/photos", drives));
    EXPECT_TRUE(Testa_CDRom("/media/anna/DISC/photos", drives));
    EXPECT_FALSE(Testa_CDRom("/home", drives));
    EXPECT_FALSE(Testa_CDPronto("relative/path", drives));
}
