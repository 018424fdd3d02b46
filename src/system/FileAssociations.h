#pragma once

#include "system/AssociationGroups.h"

#include <QSet>
#include <QString>

class MessageCatalogue;
class SettingsStore;

// Vimora as the desktop's default program for a type: a vimora.desktop entry
// in the user's applications folder and, per MIME type, the default in
// mimeapps.list. The previous defaults are kept in "RegBak" so that
// unlinking puts them back.
namespace FileAssociations {

inline const QString DesktopId = QStringLiteral("vimora.desktop");

struct Places {
    QString userMimeApps;       // $XDG_CONFIG_HOME/mimeapps.list
    QString systemMimeApps;     // changed only when it exists and may be written; may be empty
    QString desktopEntryFolder; // $XDG_DATA_HOME/applications
    QString programPath;        // what the desktop entry starts

    static Places standard();
};

// The desktop entry's Exec value for the program: quoted, with the file as
// its one argument, so a path with blanks reaches Vimora whole.
QString execLine(const QString &programPath);
bool writeDesktopEntry(const Places &places, const MessageCatalogue &messages);

// Links or unlinks one extension; failures to write are ignored, as the
// remaining extensions must still be done.
void SetFileAssociation(const AssociationGroups::Extension &extension, bool unlink, const Places &places,
                        SettingsStore &settings);

// The dialog's OK: links the checked groups, unlinks the cleared ones that
// were linked, stores "Y"/"N" in "Linked"; returns the groups now linked.
QSet<QString> applyChoices(const QSet<QString> &checked, const QSet<QString> &linked, const Places &places,
                           SettingsStore &settings, const MessageCatalogue &messages);

} // namespace FileAssociations
