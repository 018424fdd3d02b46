#include "system/FileAssociations.h"

#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
#include "platform/DataFolder.h"
#include "system/MimeAppsList.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>

namespace FileAssociations {

namespace {
const QString Defaults = QStringLiteral("Default Applications");
const QString RegBak = QStringLiteral("RegBak");

bool isOurs(const QString &defaultValue)
{
    return defaultValue.split(QLatin1Char(';')).value(0).trimmed() == DesktopId;
}

// One extension may stand for several MIME types, so its backup holds
// "type=previous default" entries joined by "|".
QMap<QString, QString> decodeBackup(const QString &text)
{
    QMap<QString, QString> backup;
    for (const QString &entry : text.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
        const qsizetype equals = entry.indexOf(QLatin1Char('='));
        if (equals > 0)
            backup.insert(entry.left(equals), entry.mid(equals + 1));
    }
    return backup;
}

QString encodeBackup(const QMap<QString, QString> &backup)
{
    QStringList entries;
    for (auto it = backup.begin(); it != backup.end(); ++it)
        entries.append(it.key() + QLatin1Char('=') + it.value());
    return entries.join(QLatin1Char('|'));
}

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(1 << 20)) : QString();
}

// The name a file manager shows for "open with" the first of the defaults.
QString applicationName(const QString &defaults, const Places &places)
{
    const QString id = defaults.split(QLatin1Char(';')).value(0).trimmed();
    if (id.isEmpty())
        return {};
    for (const QString &folder : places.applicationFolders) {
        const QString entry = folder + QLatin1Char('/') + id;
        if (QFile::exists(entry))
            return MimeAppsList::load(entry).value(QStringLiteral("Desktop Entry"), QStringLiteral("Name"));
    }
    return {};
}

QString iconInUserDatabase(const QString &mime, const Places &places)
{
    const QString icon = MimePackage::iconOf(readText(places.userMimeFolder + QLatin1Char('/') + mime + QStringLiteral(".xml")));
    return icon.startsWith(QStringLiteral("vimora-")) ? QString() : icon;
}

// Adds what the types had before to one backup key; the key is written even
// when there was nothing, so a fresh system shows it empty.
void backUp(SettingsStore &settings, const QString &key, const QMap<QString, QString> &previous)
{
    static const QString missing = QStringLiteral("\x01missing");
    const QString stored = settings.read(RegBak, key, missing);
    QMap<QString, QString> backup = stored == missing ? QMap<QString, QString>() : decodeBackup(stored);
    for (auto it = previous.begin(); it != previous.end(); ++it) {
        if (it.value().isEmpty())
            backup.remove(it.key());
        else
            backup.insert(it.key(), it.value());
    }
    const QString encoded = encodeBackup(backup);
    if (encoded != stored)
        settings.write(RegBak, key, encoded);
}

bool mayWrite(const QString &path)
{
    const QFileInfo info(path);
    return !path.isEmpty() && info.exists() && info.isWritable() && QFileInfo(info.absolutePath()).isWritable();
}

void setOrRemove(MimeAppsList &list, const QString &mime, const QString &value)
{
    if (value.isEmpty())
        list.remove(Defaults, mime);
    else
        list.setValue(Defaults, mime, value);
}
} // namespace

Places Places::standard()
{
    Places places;
    places.userMimeApps =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/mimeapps.list");
    const QStringList configDirs = qEnvironmentVariable("XDG_CONFIG_DIRS", QStringLiteral("/etc/xdg"))
                                       .split(QLatin1Char(':'), Qt::SkipEmptyParts);
    // Other users' defaults may only name a desktop entry they can see: one
    // that a system-wide install put in a shared data folder, never the one
    // in the home of whoever runs this (root included).
    const QStringList dataDirs = qEnvironmentVariable("XDG_DATA_DIRS", QStringLiteral("/usr/local/share:/usr/share"))
                                     .split(QLatin1Char(':'), Qt::SkipEmptyParts);
    const bool installedForAll = std::any_of(dataDirs.begin(), dataDirs.end(), [](const QString &dir) {
        return QFile::exists(dir + QStringLiteral("/applications/") + DesktopId);
    });
    if (installedForAll && !configDirs.isEmpty())
        places.systemMimeApps = configDirs.first() + QStringLiteral("/mimeapps.list");
    places.desktopEntryFolder =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/applications");
    places.programPath = QCoreApplication::applicationFilePath();
    const QString dataHome = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    places.userMimeFolder = dataHome + QStringLiteral("/mime");
    places.applicationFolders.append(places.desktopEntryFolder);
    for (const QString &dir : dataDirs) {
        places.systemMimeFolders.append(dir + QStringLiteral("/mime"));
        places.applicationFolders.append(dir + QStringLiteral("/applications"));
    }
    places.iconSource =
        DataFolder::locate(QCoreApplication::applicationDirPath()) + QStringLiteral("hicolor/scalable/mimetypes");
    places.userIconFolder = dataHome + QStringLiteral("/icons/hicolor/scalable/mimetypes");
    return places;
}

QString execLine(const QString &programPath)
{
    // A plain path is written bare: xdg-mime's own reader of desktop entries
    // takes the quotes for part of the program name and skips the entry.
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    // A literal % is written %% in either form: %f and the like are field codes.
    if (std::none_of(programPath.begin(), programPath.end(), [](QChar c) { return reserved.contains(c); }))
        return QString(programPath).replace(QLatin1Char('%'), QStringLiteral("%%")) + QStringLiteral(" %f");
    // Inside a quoted argument the desktop entry format puts a backslash
    // before " ` $ and the backslash; the key file doubles each backslash.
    QString quoted;
    for (const QChar c : programPath) {
        if (c == u'"' || c == u'`' || c == u'$')
            quoted += QStringLiteral("\\\\");
        else if (c == u'\\')
            quoted += QStringLiteral("\\\\\\");
        quoted += c;
        if (c == u'%')
            quoted += c;
    }
    return QLatin1Char('"') + quoted + QStringLiteral("\" %f");
}

bool writeDesktopEntry(const Places &places, const MessageCatalogue &messages)
{
    const QString verb = messages.GetMsg(2, QStringLiteral("View with")) + QStringLiteral(" Vimora");
    QStringList lines{
        QStringLiteral("[Desktop Entry]"),
        QStringLiteral("Type=Application"),
        QStringLiteral("Name=Vimora"),
        QStringLiteral("Comment=") + verb,
        QStringLiteral("Exec=") + execLine(places.programPath),
        QStringLiteral("Icon=vimora"),
        QStringLiteral("Terminal=false"),
        QStringLiteral("Categories=Graphics;Viewer;"),
        QStringLiteral("MimeType=") + AssociationGroups::allMimeTypes().join(QLatin1Char(';')) + QLatin1Char(';'),
    };
    QDir().mkpath(places.desktopEntryFolder);
    QSaveFile file(places.desktopEntryFolder + QLatin1Char('/') + DesktopId);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write((lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8());
    return file.commit();
}

void SetFileAssociation(const AssociationGroups::Extension &extension, bool unlink, const Places &places,
                        SettingsStore &settings)
{
    const QMap<QString, QString> commands = decodeBackup(settings.read(RegBak, extension.code + QStringLiteral("Cmd")));
    const QString own = DesktopId + QLatin1Char(';');

    MimeAppsList user = MimeAppsList::load(places.userMimeApps);
    QMap<QString, QString> previousCommands, previousIcons, previousNames;
    for (const QString &mime : extension.mimeTypes) {
        const QString current = user.value(Defaults, mime);
        if (!unlink) {
            // A type that is already ours has nothing of its own to keep, so
            // linking twice leaves the first backups as they were.
            if (!isOurs(current)) {
                previousCommands.insert(mime, current);
                previousIcons.insert(mime, iconInUserDatabase(mime, places));
                previousNames.insert(mime, applicationName(current, places));
            }
            user.setValue(Defaults, mime, own);
        } else if (isOurs(current)) {
            // A default the user chose after linking is left alone.
            setOrRemove(user, mime, commands.value(mime));
        }
    }
    user.save(places.userMimeApps);
    if (!unlink) {
        backUp(settings, extension.code + QStringLiteral("Icon"), previousIcons);
        backUp(settings, extension.code + QStringLiteral("Comm"), previousNames);
        backUp(settings, extension.code + QStringLiteral("Cmd"), previousCommands);
    }

    // The system-wide list gets the same defaults, without backups of its own.
    if (!mayWrite(places.systemMimeApps))
        return;
    MimeAppsList system = MimeAppsList::load(places.systemMimeApps);
    for (const QString &mime : extension.mimeTypes) {
        if (!unlink)
            system.setValue(Defaults, mime, own);
        else if (isOurs(system.value(Defaults, mime)))
            setOrRemove(system, mime, commands.value(mime));
    }
    system.save(places.systemMimeApps);
}

QList<MimePackage::Declaration> packageDeclarations(const QSet<QString> &linked, const Places &places,
                                                   const SettingsStore &settings)
{
    static const QString missing = QStringLiteral("\x01missing");
    bool systemKnowsIvf = false;
    for (const QString &folder : places.systemMimeFolders)
        systemKnowsIvf = systemKnowsIvf
                         || MimePackage::globsName(readText(folder + QStringLiteral("/globs2")), QStringLiteral("*.ivf"));

    QList<MimePackage::Declaration> declarations;
    for (const AssociationGroups::Group &group : AssociationGroups::groups()) {
        for (const AssociationGroups::Extension &extension : group.extensions) {
            const bool isLinked = linked.contains(group.key);
            const QString commands = settings.read(RegBak, extension.code + QStringLiteral("Cmd"), missing);
            const bool isIvf = extension.code == u"IVF" && !systemKnowsIvf;
            if (!isLinked && commands == missing && !isIvf)
                continue;
            const QMap<QString, QString> icons =
                decodeBackup(settings.read(RegBak, extension.code + QStringLiteral("Icon")));
            for (const QString &mime : extension.mimeTypes) {
                MimePackage::Declaration declaration{mime,
                                                     isLinked ? extension.description
                                                              : AssociationGroups::unlinkedDescription(extension),
                                                     isLinked ? extension.icon : icons.value(mime),
                                                     {}};
                if (isIvf)
                    declaration.globs.append(QStringLiteral("*.ivf"));
                // Extensions sharing a type: the later one in the table speaks for it.
                const auto same = std::find_if(declarations.begin(), declarations.end(),
                                               [&](const MimePackage::Declaration &d) { return d.mimeType == mime; });
                if (same != declarations.end())
                    *same = declaration;
                else
                    declarations.append(declaration);
            }
        }
    }
    return declarations;
}

namespace {
void installTypeIcons(const Places &places)
{
    QDir().mkpath(places.userIconFolder);
    const QStringList icons = QDir(places.iconSource).entryList({QStringLiteral("vimora-*.svg")}, QDir::Files);
    for (const QString &name : icons) {
        const QString target = places.userIconFolder + QLatin1Char('/') + name;
        QFile::remove(target);
        QFile::copy(places.iconSource + QLatin1Char('/') + name, target);
    }
}
} // namespace

QSet<QString> applyChoices(const QSet<QString> &checked, const QSet<QString> &linked, const Places &places,
                           SettingsStore &settings, const MessageCatalogue &messages)
{
    QSet<QString> nowLinked = linked;
    if (!checked.isEmpty())
        writeDesktopEntry(places, messages);
    for (const AssociationGroups::Group &group : AssociationGroups::groups()) {
        const bool link = checked.contains(group.key);
        if (link || linked.contains(group.key))
            for (const AssociationGroups::Extension &extension : group.extensions)
                SetFileAssociation(extension, !link, places, settings);
        settings.write(QStringLiteral("Linked"), group.key, link ? QStringLiteral("Y") : QStringLiteral("N"));
        if (link)
            nowLinked.insert(group.key);
        else
            nowLinked.remove(group.key);
    }
    settings.flush();
    if (!checked.isEmpty() || !linked.isEmpty()) {
        installTypeIcons(places);
        MimePackage::install(places.userMimeFolder, packageDeclarations(nowLinked, places, settings));
    }
    return nowLinked;
}

} // namespace FileAssociations
