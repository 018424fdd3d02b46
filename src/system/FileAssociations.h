#pragma once

#include "system/AssociationGroups.h"
#include "system/MimePackage.h"

#include <QSet>
#include <QString>

class MessageCatalogue;
class SettingsStore;

// Vimora as the desktop's default program for a type: a vimora.desktop entry
// in the user's applications folder and, per MIME type, the default in
// mimeapps.list, with Vimora's descriptions and icons for the types in the
// user's MIME database. What each type had before is kept in "RegBak", three
// keys per extension: EXTCmd the default programs, EXTIcon the icon and
// EXTComm the name the open entry showed, each as "type=value" entries
// joined by "|" (empty when the type had none), so that unlinking puts them
// back.
namespace FileAssociations {

inline const QString DesktopId = QStringLiteral("vimora.desktop");

struct Places {
    QString userMimeApps;       // $XDG_CONFIG_HOME/mimeapps.list
    QString systemMimeApps;     // changed only when it exists and may be written; may be empty
    QString desktopEntryFolder; // $XDG_DATA_HOME/applications
    QString programPath;        // what the desktop entry starts
    QString userMimeFolder;     // $XDG_DATA_HOME/mime: the database Vimora's package goes into
    QStringList systemMimeFolders; // the other databases, to learn which types the system knows
    QStringList applicationFolders; // where desktop entries are looked up, first wins
    QString iconSource;         // Vimora's type icons (<name>.svg)
    QString userIconFolder;     // where the icon theme finds them for this user

    static Places standard();
};

// The desktop entry's Exec value for the program: quoted, with the file as
// its one argument, so a path with blanks reaches Vimora whole.
QString execLine(const QString &programPath);
bool writeDesktopEntry(const Places &places, const MessageCatalogue &messages);

// The package declarations for the groups as they now stand: linked
// extensions get their description and Vimora's icon; those linked once
// keep the unlinked description and get their old icon back; IVF gets a
// type of its own when the system has none.
QList<MimePackage::Declaration> packageDeclarations(const QSet<QString> &linked, const Places &places,
                                                   const SettingsStore &settings);

// Links or unlinks one extension; failures to write are ignored, as the
// remaining extensions must still be done.
void SetFileAssociation(const AssociationGroups::Extension &extension, bool unlink, const Places &places,
                        SettingsStore &settings);

// The dialog's OK: links the checked groups, unlinks the cleared ones that
// were linked, stores "Y"/"N" in "Linked"; returns the groups now linked.
QSet<QString> applyChoices(const QSet<QString> &checked, const QSet<QString> &linked, const Places &places,
                           SettingsStore &settings, const MessageCatalogue &messages);

} // namespace FileAssociations
