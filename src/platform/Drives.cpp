#include "platform/Drives.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
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
    if (path.isEmpty())
        return nullptr;
    // "/mnt/share/../x" lies on the root's drive, not on the share.
    const QString cleanPath = QDir::cleanPath(path);
    const Drive *best = nullptr;
    for (const Drive &drive : drives)
        if (isUnder(cleanPath, drive.rootPath) && (!best || drive.rootPath.size() > best->rootPath.size()))
            best = &drive;
    return best;
}

bool isOpticalDevice(const QString &device)
{
    static const QRegularExpression optical(QStringLiteral("^/dev/(sr|scd|cdrom|dvd)[0-9]*$"));
    return optical.match(device).hasMatch();
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
                                     "fuse.gvfsd-fuse", "gvfs", "9p", "afs", "ncpfs", "ceph", "glusterfs",
                                     "fuse.glusterfs", "davfs", "fuse.davfs2", "fuse.rclone", "fuse.curlftpfs",
                                     "fuse.s3fs", "fuse.smbnetfs"};
    return network.contains(fsType);
}

bool isPseudoFileSystem(const QString &fsType, const QString &rootPath)
{
    // Containers and live systems run from overlay or squashfs roots: the
    // root is always a drive, or no path would have one.
    if (rootPath == u"/")
        return false;
    static const QStringList pseudo{"proc", "sysfs", "devtmpfs", "devpts", "cgroup", "cgroup2", "securityfs",
                                    "debugfs", "tracefs", "pstore", "bpf", "mqueue", "hugetlbfs", "configfs",
                                    "fusectl", "autofs", "binfmt_misc", "efivarfs", "nsfs", "rpc_pipefs",
                                    "squashfs", "overlay", "ramfs", "selinuxfs", "fuse.portal",
                                    "fuse.snapfuse", "fuse.lxcfs"};
    if (pseudo.contains(fsType))
        return true;
    // Memory file systems are the system's own, except a user's /tmp-like
    // mounts under /media or /mnt.
    if (fsType == u"tmpfs")
        return !rootPath.startsWith(QStringLiteral("/media/")) && !rootPath.startsWith(QStringLiteral("/mnt/"));
    // Not /run: removable media (/run/media) and gvfs shares live there.
    return isUnder(rootPath, QStringLiteral("/proc")) || isUnder(rootPath, QStringLiteral("/sys"))
        || isUnder(rootPath, QStringLiteral("/dev")) || rootPath.startsWith(QStringLiteral("/snap/"));
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
        // A mounted disc image is a CD-ROM too, as it is on the desktop.
        drive.optical = mount.fsType == u"iso9660" || mount.fsType == u"udf" || isOpticalDevice(mount.device);
        // A later mount on the same point hides the earlier one.
        const auto same = std::find_if(drives.begin(), drives.end(),
                                       [&](const Drive &d) { return d.rootPath == drive.rootPath; });
        if (same != drives.end())
            *same = drive;
        else
            drives.append(drive);
    }

    // Inside a chroot the root is no mount point of its own, yet every path
    // still lies on it.
    if (std::none_of(drives.begin(), drives.end(), [](const Drive &d) { return d.rootPath == u"/"; })) {
        Drive root;
        root.rootPath = QStringLiteral("/");
        drives.append(root);
    }

    // Optical drives are listed even without a disc, which is what makes
    // them "not ready" rather than absent.
    const QStringList opticals =
        QDir(sysBlockFolder).entryList({QStringLiteral("sr*")}, QDir::AllEntries | QDir::System);
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
    for (const QStorageInfo &volume : QStorageInfo::mountedVolumes()) {
        // Files bind-mounted into containers (/etc/hosts) are no drives.
        if (!QFileInfo(volume.rootPath()).isDir())
            continue;
        mounts.append({volume.rootPath(), QString::fromLocal8Bit(volume.device()),
                       QString::fromLatin1(volume.fileSystemType()), volume.displayName()});
    }
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
