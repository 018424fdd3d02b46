#pragma once

#include <QList>
#include <QString>

// The "drives" of a Linux desktop: mounted volumes, and optical drives with
// or without a disc. A path's drive is the mount point that holds it.
struct Drive {
    QString rootPath;  // mount point; "/dev/srN" for an optical drive without a mounted disc
    QString label;
    bool optical = false;
    bool ready = true; // an optical drive without a disc is not ready
    bool network = false;
};

struct MountEntry {
    QString rootPath;
    QString device;
    QString fsType;
    QString label;
};

// The drives of these mounts plus the optical drives found under the given
// /sys/class/block folder ("sr0", ...); pseudo file systems are left out.
// Tests hand in their own mounts and a fake sysfs folder.
QList<Drive> drivesFrom(const QList<MountEntry> &mounts, const QString &sysBlockFolder);
QList<Drive> listDrives(); // this machine's

bool isNetworkFileSystem(const QString &fsType);
// The system's own mounts (proc, cgroup, snaps, tmpfs under /run, ...);
// never the root.
bool isPseudoFileSystem(const QString &fsType, const QString &rootPath);

// The drive holding a path: the longest mount point that is a prefix of it.
QString driveOf(const QString &path, const QList<Drive> &drives);
bool isNetworkPath(const QString &path, const QList<Drive> &drives);
bool isNetworkPath(const QString &path);

// False only for an optical drive that is not ready, or a path on no drive.
bool Testa_CDPronto(const QString &path, const QList<Drive> &drives);
// True when the path lies on an optical drive.
bool Testa_CDRom(const QString &path, const QList<Drive> &drives);
