#include "platform/Drives.h"

#include <QDir>
#include <QFile>
#include <QStorageInfo>

#include <algorithm>

namespace {

bool isUnder(const QString &path, const QString &root)
{
    if (root == u"/")
        return path.startsWith(QLatin1Char('/'));
    return path == root || path.startsWith(root + QLatin1Char('/'));
}

const Drive *driveHolding(const QString &path, const QList<Drive> &drives)
{
    const Drive *best = nullptr;
    for (const Drive &drive : drives)
        if (isUnder(path, drive.rootPath) && (!best || drive.rootPath.size() > best->rootPath.size()))
            best = &drive;
    return best;
}

QString readSysText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromLatin1(file.readAll()).trimmed();
}

} // namespace

bool isNetworkFileSystem(const QString &fsType)
{
    static const QStringList network{"nfs", "nfs4", "cifs", "smb3", "smbfs", "sshfs", "fuse.sshfs",
                                     "fuse.gvfsd-fuse", "gvfs", "9p", "afs", "ncpfs", "fuse.rclone"};
    return network.contains(fsType);
}

bool isPseudoFileSystem(const QString &fsType, const QString &rootPath)
{
    static const QStringList pseudo{"proc", "sysfs", "devtmpfs", "devpts", "cgroup", "cgroup2", "securityfs",
                                    "debugfs", "tracefs", "pstore", "bpf", "mqueue", "hugetlbfs", "configfs",
                                    "fusectl", "autofs", "binfmt_misc", "efivarfs", "nsfs", "rpc_pipefs",
                                    "squashfs", "overlay", "ramfs"};
    if (pseudo.contains(fsType))
        return true;
    // Memory file systems are the system's own, except a user's /tmp-like
    // mounts under /media or /mnt.
    if (fsType == u"tmpfs")
        return !rootPath.startsWith(QStringLiteral("/media/")) && !rootPath.startsWith(QStringLiteral("/mnt/"));
    return rootPath.startsWith(QStringLiteral("/proc")) || rootPath.startsWith(QStringLiteral("/sys"))
        || rootPath.startsWith(QStringLiteral("/snap/"));
}

QList<Drive> drivesFrom(const QList<MountEntry> &mounts, const QString &sysBlockFolder)
{
    QList<Drive> drives;
    for (const MountEntry &mount : mounts) {
        if (isPseudoFileSystem(mount.fsType, mount.rootPath))
            continue;
        Drive drive;
        drive.rootPath = mount.rootPath;
        drive.label = mount.label;
        drive.network = isNetworkFileSystem(mount.fsType);
        drive.optical = mount.fsType == u"iso9660" || mount.fsType == u"udf"
            || QFileInfo(mount.device).fileName().startsWith(QStringLiteral("sr"));
        drives.append(drive);
    }

    // Optical drives are listed even without a disc, which is what makes
    // them "not ready" rather than absent.
    const QStringList opticals = QDir(sysBlockFolder).entryList({QStringLiteral("sr*")}, QDir::AllEntries | QDir::System);
    for (const QString &name : opticals) {
        const QString device = QStringLiteral("/dev/") + name;
        const bool mounted = std::any_of(mounts.begin(), mounts.end(),
                                         [&](const MountEntry &m) { return m.device == device; });
        if (mounted)
            continue;
        Drive drive;
        drive.rootPath = device;
        drive.label = readSysText(sysBlockFolder + QLatin1Char('/') + name + QStringLiteral("/device/model"));
        drive.optical = true;
        // Without a mounted disc there is nothing to browse: no disc, or one
        // the desktop has not mounted (yet).
        drive.ready = false;
        drives.append(drive);
    }
    std::sort(drives.begin(), drives.end(), [](const Drive &a, const Drive &b) { return a.rootPath < b.rootPath; });
    return drives;
}

QList<Drive> listDrives()
{
    QList<MountEntry> mounts;
    for (const QStorageInfo &volume : QStorageInfo::mountedVolumes())
        mounts.append({volume.rootPath(), QString::fromLocal8Bit(volume.device()),
                       QString::fromLatin1(volume.fileSystemType()), volume.displayName()});
    return drivesFrom(mounts, QStringLiteral("/sys/class/block"));
}

QString driveOf(const QString &path, const QList<Drive> &drives)
{
    const Drive *drive = driveHolding(path, drives);
    return drive ? drive->rootPath : QString();
}

bool isNetworkPath(const QString &path, const QList<Drive> &drives)
{
    const Drive *drive = driveHolding(path, drives);
    return drive && drive->network;
}

bool isNetworkPath(const QString &path) { return isNetworkPath(path, listDrives()); }

bool Testa_CDPronto(const QString &path, const QList<Drive> &drives)
{
    const Drive *drive = driveHolding(path, drives);
    return drive && (!drive->optical || drive->ready);
}

bool Testa_CDRom(const QString &path, const QList<Drive> &drives)
{
    const Drive *drive = driveHolding(path, drives);
    return drive && drive->optical;
}
