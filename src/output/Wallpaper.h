#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

class Launcher;
class QImage;

// The desktop background, set through the desktop's own setter.
namespace Wallpaper {

enum class Desktop { Gnome, Cinnamon, Mate, Kde, Xfce, Lxqt, Lxde, Other };

// From XDG_CURRENT_DESKTOP, a ":" separated list: the first one known.
Desktop desktopOf(const QString &currentDesktop);

struct Command {
    QString program;
    QStringList arguments;
    bool operator==(const Command &) const = default;
};

// Whether a program is installed; tests give their own.
using Installed = std::function<bool(const QString &program)>;
bool installedOnPath(const QString &program);

// The commands that make file the wallpaper, or that remove it; empty when
// this desktop has none (no generic setter installed, or no removal).
QList<Command> setCommands(Desktop desktop, const QString &file, const Installed &installed = installedOnPath);
QList<Command> removeCommands(Desktop desktop, const Installed &installed = installedOnPath);

// A new name in the per-user data folder for each wallpaper: the desktops
// read the file later, and some ignore a setting that names the same file.
QString newKeptPath();
// Once the desktop has the new one, the older files can go.
void removeOlderKept(const QString &kept);

// Starts the commands; false when there are none or one could not start.
bool run(Launcher &launcher, const QList<Command> &commands);

enum class Outcome { Set, NotWritten, NoSetter };

// Sets a wallpaper on the desktop named by currentDesktop: a bitmap file
// is kept as it is; any other picture (or a movie frame) passes through the
// scratch bitmap, which is removed at once. Every window's command uses it.
Outcome setFromBitmapFile(Launcher &launcher, const QString &bitmapPath, const QString &currentDesktop);
Outcome setFromPicture(Launcher &launcher, const QImage &picture, const QString &currentDesktop);
Outcome remove(Launcher &launcher, const QString &currentDesktop);

} // namespace Wallpaper
