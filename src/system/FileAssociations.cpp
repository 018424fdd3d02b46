#include "system/FileAssociations.h"

#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
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
    const QString backupKey = extension.code + QStringLiteral("Cmd");
    QMap<QString, QString> backup = decodeBackup(settings.read(RegBak, backupKey));
    const QString own = DesktopId + QLatin1Char(';');

    MimeAppsList user = MimeAppsList::load(places.userMimeApps);
    bool backupChanged = false;
    for (const QString &mime : extension.mimeTypes) {
        const QString current = user.value(Defaults, mime);
        if (!unlink) {
            // A default that is already ours is not kept, so linking twice
            // leaves the first backup as it was.
            if (!isOurs(current) && (!backup.contains(mime) || backup.value(mime) != current)) {
                backup.insert(mime, current);
                backupChanged = true;
            }
            user.setValue(Defaults, mime, own);
        } else if (isOurs(current)) {
            // A default the user chose after linking is left alone.
            setOrRemove(user, mime, backup.value(mime));
        }
    }
    user.save(places.userMimeApps);
    if (backupChanged)
        settings.write(RegBak, backupKey, encodeBackup(backup));

    // The system-wide list gets the same defaults, without backups of its own.
    if (!mayWrite(places.systemMimeApps))
        return;
    MimeAppsList system = MimeAppsList::load(places.systemMimeApps);
    for (const QString &mime : extension.mimeTypes) {
        if (!unlink)
            system.setValue(Defaults, mime, own);
        else if (isOurs(system.value(Defaults, mime)))
            setOrRemove(system, mime, backup.value(mime));
    }
    system.save(places.systemMimeApps);
}

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
    return nowLinked;
}

} // namespace FileAssociations
