#pragma once

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

class SettingsStore;

// The thirteen groups of types that Vimora can be the default viewer for,
// and the rules that read their "Linked" marks.
namespace AssociationGroups {

struct Extension {
    QString code;          // upper case, as the backups are keyed: "JPG"
    QString description;   // shown by file managers for the type
    QStringList mimeTypes; // the MIME types the desktop knows the extension by
    QString icon;          // Vimora's icon for the type, by its theme name
};

struct Group {
    QString key;      // "Linked" key and group code: "JPG"
    QString checkBox; // the dialog's check box: "CheckJPG"
    QList<Extension> extensions;
};

// In the order the dialog's OK applies them.
const QList<Group> &groups();

// What file managers call the type once Vimora no longer opens it: the
// linked description, except that JPG and JPEG share one.
QString unlinkedDescription(const Extension &extension);

// Every MIME type of every group, for the desktop entry.
QStringList allMimeTypes();

// Groups whose mark in "Linked" is "Y".
QSet<QString> readLinked(const SettingsStore &settings);

// The type text the index tests before "Shell Open": the last four
// characters upper-cased, and only what follows a "." among them.
QString typeTextOfPath(const QString &path);

// "Shell Open" is offered unless the type is one of the twelve codes and
// linked: the desktop would only open the file in Vimora again.
bool shellOpenAvailable(const QString &typeCode, const QSet<QString> &linked);

} // namespace AssociationGroups
