#include "output/Wallpaper.h"

#include "output/PictureOutput.h"
#include "platform/DataFolder.h"
#include "platform/Launcher.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

namespace Wallpaper {

namespace {
const QString KeptPrefix = QStringLiteral("wallpaper-");

Command gsettings(const char *schema, const char *key, const QString &value)
{
    return {QStringLiteral("gsettings"), {QStringLiteral("set"), QLatin1String(schema), QLatin1String(key), value}};
}

Command xfconf(const char *property, const char *type, const QString &value)
{
    // -n creates the property on a display that never had one.
    return {QStringLiteral("xfconf-query"),
            {QStringLiteral("-c"), QStringLiteral("xfce4-desktop"), QStringLiteral("-p"),
             QStringLiteral("/backdrop/screen0/monitor0/workspace0/") + QLatin1String(property), QStringLiteral("-n"),
             QStringLiteral("-t"), QLatin1String(type), QStringLiteral("-s"), value}};
}
} // namespace

Desktop desktopOf(const QString &currentDesktop)
{
    for (const QString &name : currentDesktop.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        const QString n = name.trimmed().toUpper();
        if (n == u"X-CINNAMON" || n == u"CINNAMON")
            return Desktop::Cinnamon;
        if (n == u"GNOME" || n == u"UNITY" || n == u"BUDGIE" || n == u"PANTHEON" || n == u"GNOME-FLASHBACK")
            return Desktop::Gnome;
        if (n == u"MATE")
            return Desktop::Mate;
        if (n == u"KDE")
            return Desktop::Kde;
        if (n == u"XFCE")
            return Desktop::Xfce;
        if (n == u"LXQT")
            return Desktop::Lxqt;
        if (n == u"LXDE")
            return Desktop::Lxde;
    }
    return Desktop::Other;
}

bool installedOnPath(const QString &program) { return !QStandardPaths::findExecutable(program).isEmpty(); }

QList<Command> setCommands(Desktop desktop, const QString &file, const Installed &installed)
{
    const QString uri = QUrl::fromLocalFile(file).toString();
    switch (desktop) {
    case Desktop::Gnome:
        // The dark-style key exists from GNOME 42 on; older ones ignore it.
        return {gsettings("org.gnome.desktop.background", "picture-uri", uri),
                gsettings("org.gnome.desktop.background", "picture-uri-dark", uri),
                gsettings("org.gnome.desktop.background", "picture-options", QStringLiteral("zoom"))};
    case Desktop::Cinnamon:
        return {gsettings("org.cinnamon.desktop.background", "picture-uri", uri),
                gsettings("org.cinnamon.desktop.background", "picture-options", QStringLiteral("zoom"))};
    case Desktop::Mate:
        return {gsettings("org.mate.background", "picture-filename", file),
                gsettings("org.mate.background", "picture-options", QStringLiteral("zoom"))};
    case Desktop::Kde:
        return {{QStringLiteral("plasma-apply-wallpaperimage"), {file}}};
    case Desktop::Xfce:
        return {xfconf("last-image", "string", file), xfconf("image-style", "int", QStringLiteral("5"))};
    case Desktop::Lxqt:
        return {{QStringLiteral("pcmanfm-qt"), {QStringLiteral("--set-wallpaper"), file}}};
    case Desktop::Lxde:
        return {{QStringLiteral("pcmanfm"), {QStringLiteral("--set-wallpaper"), file}}};
    case Desktop::Other:
        break;
    }
    if (installed(QStringLiteral("feh")))
        return {{QStringLiteral("feh"), {QStringLiteral("--no-fehbg"), QStringLiteral("--bg-fill"), file}}};
    if (installed(QStringLiteral("xwallpaper")))
        return {{QStringLiteral("xwallpaper"), {QStringLiteral("--zoom"), file}}};
    return {};
}

QList<Command> removeCommands(Desktop desktop, const Installed &installed)
{
    switch (desktop) {
    case Desktop::Gnome:
        return {gsettings("org.gnome.desktop.background", "picture-options", QStringLiteral("none"))};
    case Desktop::Cinnamon:
        return {gsettings("org.cinnamon.desktop.background", "picture-options", QStringLiteral("none"))};
    case Desktop::Mate:
        return {gsettings("org.mate.background", "picture-filename", QString())};
    case Desktop::Xfce:
        return {xfconf("image-style", "int", QStringLiteral("0"))};
    case Desktop::Lxqt:
        return {{QStringLiteral("pcmanfm-qt"), {QStringLiteral("--wallpaper-mode=color")}}};
    case Desktop::Lxde:
        return {{QStringLiteral("pcmanfm"), {QStringLiteral("--wallpaper-mode=color")}}};
    case Desktop::Kde: // Plasma has no command that removes the picture
        return {};
    case Desktop::Other:
        break;
    }
    if (installed(QStringLiteral("xsetroot")))
        return {{QStringLiteral("xsetroot"), {QStringLiteral("-solid"), QStringLiteral("black")}}};
    return {};
}

QString newKeptPath()
{
    return DataFolder::userDataFolder() + KeptPrefix + QString::number(QDateTime::currentMSecsSinceEpoch())
        + QStringLiteral(".bmp");
}

void removeOlderKept(const QString &kept)
{
    QDir dir(DataFolder::userDataFolder());
    for (const QString &name : dir.entryList({KeptPrefix + QLatin1Char('*')}, QDir::Files))
        if (name != QFileInfo(kept).fileName())
            dir.remove(name);
}

bool run(Launcher &launcher, const QList<Command> &commands)
{
    if (commands.isEmpty())
        return false;
    bool allStarted = true;
    for (const Command &command : commands)
        allStarted = launcher.start(command.program, command.arguments).started && allStarted;
    return allStarted;
}

namespace {
Outcome setKept(Launcher &launcher, const QString &kept, bool written, const QString &currentDesktop)
{
    if (!written)
        return Outcome::NotWritten;
    if (!run(launcher, setCommands(desktopOf(currentDesktop), kept))) {
        QFile::remove(kept);
        return Outcome::NoSetter;
    }
    removeOlderKept(kept);
    return Outcome::Set;
}
} // namespace

Outcome setFromBitmapFile(Launcher &launcher, const QString &bitmapPath, const QString &currentDesktop)
{
    const QString kept = newKeptPath();
    return setKept(launcher, kept, PictureOutput::copyFile(bitmapPath, kept), currentDesktop);
}

Outcome setFromPicture(Launcher &launcher, const QImage &picture, const QString &currentDesktop)
{
    const QString kept = newKeptPath();
    const QString scratch = PictureOutput::TempBitmapPath();
    const bool written = PictureOutput::saveBitmap(picture, scratch) && PictureOutput::copyFile(scratch, kept);
    QFile::remove(scratch);
    return setKept(launcher, kept, written, currentDesktop);
}

Outcome remove(Launcher &launcher, const QString &currentDesktop)
{
    return run(launcher, removeCommands(desktopOf(currentDesktop))) ? Outcome::Set : Outcome::NoSetter;
}

} // namespace Wallpaper
