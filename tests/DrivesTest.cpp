#include "platform/Drives.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

void writeText(const QString &path, const QByteArray &text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(text);
}

// A fake /sys/class/block: sr0 without a disc, sr1 with one, disks beside.
class DrivesTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        QDir sys(sysBlock.path());
        for (const char *name : {"sr0/device", "sr1/device", "sda", "loop0"})
            sys.mkpath(name);
        writeText(sysBlock.path() + "/sr0/size", "0\n");
        writeText(sysBlock.path() + "/sr0/device/model", "DVD-RW UJ8   \n");
        writeText(sysBlock.path() + "/sr1/size", "1433600\n");
        drives = drivesFrom(mounts, sysBlock.path());
    }

    QStringList roots() const
    {
        QStringList list;
        for (const Drive &drive : drives)
            list.append(drive.rootPath);
        return list;
    }

    const Drive *find(const QString &root) const
    {
        for (const Drive &drive : drives)
            if (drive.rootPath == root)
                return &drive;
        return nullptr;
    }

    QTemporaryDir sysBlock;
    const QList<MountEntry> mounts{
        {"/", "overlay", "overlay", ""}, // a container's root
        {"/proc", "proc", "proc", ""},
        {"/sys", "sysfs", "sysfs", ""},
        {"/sys/fs/cgroup", "cgroup2", "cgroup2", ""},
        {"/dev", "devtmpfs", "devtmpfs", ""},
        {"/dev/shm", "tmpfs", "tmpfs", ""},
        {"/run/user/1000", "tmpfs", "tmpfs", ""},
        {"/run/user/1000/doc", "portal", "fuse.portal", ""},
        {"/snap/core22/1380", "/dev/loop0", "squashfs", ""},
        {"/home", "/dev/sda2", "ext4", "home"},
        {"/media/anna/USB STICK", "/dev/sdb1", "vfat", "USB STICK"},
        {"/run/media/anna/CARD", "/dev/mmcblk0p1", "exfat", "CARD"},
        {"/media/anna/DISC", "/dev/sr1", "iso9660", "DISC"},
        {"/mnt/iso", "/dev/loop3", "iso9660", "image"},
        {"/mnt/nas", "nas:/srv", "nfs4", ""},
        {"/mnt/share", "//server/photos", "cifs", "photos"},
        {"/home/anna/remote", "anna@host:", "fuse.sshfs", ""},
        {"/run/user/1000/gvfs", "gvfsd-fuse", "fuse.gvfsd-fuse", ""},
        {"/mnt/stacked", "/dev/sdc1", "ext4", "under"},
        {"/mnt/stacked", "//server/over", "cifs", "over"}, // mounted on top
    };
    QList<Drive> drives;
};

} // namespace

TEST_F(DrivesTest, RealMountsAndOpticalDrivesButNoPseudoFileSystems)
{
    EXPECT_EQ(roots(), QStringList({"/", "/dev/sr0", "/home", "/home/anna/remote", "/media/anna/DISC",
                                    "/media/anna/USB STICK", "/mnt/iso", "/mnt/nas", "/mnt/share", "/mnt/stacked",
                                    "/run/media/anna/CARD", "/run/user/1000/gvfs"}));
}

TEST_F(DrivesTest, AnOpticalDriveWithoutADiscIsListedButNotReady)
{
    const Drive *empty = find("/dev/sr0");
    ASSERT_NE(empty, nullptr);
    EXPECT_TRUE(empty->optical);
    EXPECT_FALSE(empty->ready);
    EXPECT_EQ(empty->label, "DVD-RW UJ8");

    // sr1 has its disc mounted: it is listed once, at its mount point.
    EXPECT_EQ(find("/dev/sr1"), nullptr);
    const Drive *disc = find("/media/anna/DISC");
    ASSERT_NE(disc, nullptr);
    EXPECT_TRUE(disc->optical);
    EXPECT_TRUE(disc->ready);
}

TEST_F(DrivesTest, TheTopmostOfTwoMountsOnOnePointCounts)
{
    const Drive *stacked = find("/mnt/stacked");
    ASSERT_NE(stacked, nullptr);
    EXPECT_EQ(stacked->label, "over");
    EXPECT_TRUE(stacked->network);
}

TEST_F(DrivesTest, APathBelongsToItsLongestMountPoint)
{
    const struct {
        const char *path;
        const char *drive;
    } cases[]{
        {"/home/anna/x.jpg", "/home"},
        {"/home", "/home"},
        {"/home/", "/home"},
        {"/homework/x.jpg", "/"}, // a prefix of the text is not a parent folder
        {"/home/anna/remote/pics", "/home/anna/remote"},
        {"/mnt/share/../nas/2024", "/mnt/nas"},
        {"/media/anna/USB STICK/DCIM", "/media/anna/USB STICK"},
        {"/proc/cpuinfo", "/"}, // pseudo mounts are no drives
        {"/", "/"},
        {"relative/path", ""},
        {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(driveOf(c.path, drives), c.drive) << c.path;
}

TEST_F(DrivesTest, NetworkPathsAreThoseOnNetworkFileSystems)
{
    const struct {
        const char *path;
        bool network;
    } cases[]{
        {"/mnt/nas/photos", true},
        {"/mnt/share/2024", true},
        {"/home/anna/remote/a.jpg", true},
        {"/run/user/1000/gvfs/smb-share:server=nas,share=photos/a.jpg", true},
        {"/home/anna", false},
        {"/mnt/sharepoint", false},
        {"/media/anna/USB STICK", false},
        {"/", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(isNetworkPath(c.path, drives), c.network) << c.path;
}

TEST_F(DrivesTest, DriveReadinessAndOpticalDrives)
{
    const struct {
        const char *path;
        bool ready;
        bool optical;
    } cases[]{
        {"/dev/sr0", false, true},               // no disc
        {"/media/anna/DISC/photos", true, true}, // a mounted disc
        {"/mnt/iso/VIDEO_TS", true, true},       // a disc image counts as a disc
        {"/mnt/nas/x", true, false},             // "nas:/srv" is no CD device
        {"/home/anna", true, false},
        {"/", true, false},
        {"relative/path", false, false},        // matches no drive
    };
    for (const auto &c : cases) {
        EXPECT_EQ(Testa_CDPronto(c.path, drives), c.ready) << c.path;
        EXPECT_EQ(Testa_CDRom(c.path, drives), c.optical) << c.path;
    }
    EXPECT_FALSE(Testa_CDPronto("/home", {}));
}

TEST(DrivesSources, NoOpticalDrivesWithoutSysfs)
{
    const QList<Drive> drives = drivesFrom({{"/", "/dev/sda1", "ext4", ""}}, "/nonexistent/sys/class/block");
    ASSERT_EQ(drives.size(), 1);
    EXPECT_EQ(drives.first().rootPath, "/");
    EXPECT_TRUE(drives.first().ready);
}

TEST(DrivesSources, ARootWithoutAMountOfItsOwnIsStillADrive)
{
    // What a chroot sees: the bind mounts made for it, none for "/".
    const QList<Drive> drives = drivesFrom({{"/tmp", "/dev/vda", "ext4", ""}, {"/home/me/usb", "/dev/sdb1", "vfat", ""}},
                                           "/nonexistent/sys/class/block");
    EXPECT_EQ(driveOf("/home/me/pictures", drives), "/");
    EXPECT_TRUE(Testa_CDPronto("/home/me/pictures", drives));
    EXPECT_EQ(driveOf("/home/me/usb/a.jpg", drives), "/home/me/usb");
}

TEST(DrivesSources, ThisMachineHasARootDrive)
{
    const QList<Drive> drives = listDrives();
    EXPECT_EQ(driveOf(QDir::tempPath(), drives).isEmpty(), false);
    EXPECT_TRUE(Testa_CDPronto(QStringLiteral("/"), drives));
}
