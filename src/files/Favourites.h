#pragma once

#include "files/FileOperations.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class MessageCatalogue;
class SettingsStore;

// The rules of the favourites list, without its window.
namespace Favourites {

// Settings section; keys "0", "1", ... hold the full paths, no count.
inline const QString Section = QStringLiteral("Favor");

// Keys from "0" up to the first empty value: a gap ends the list.
QStringList load(const SettingsStore &settings);

// Deletes keys 0 to storedCount (one more than were read), then writes the
// entries as 0, 1, ...; stale keys further up stay, unread.
void save(SettingsStore &settings, const QStringList &entries, int storedCount);

// Position of the entry equal to the path in any letter case, or -1.
int find(const QStringList &entries, const QString &path);

// "Size of selected files : 1.500 K"; "" when the files add up to 0 bytes
// or none can be measured.
QString selectionSizeText(const QStringList &paths, const MessageCatalogue &messages);

// What a batch command did to the list.
struct BatchResult {
    QStringList removed;                    // entries to take out of the list
    QList<QPair<QString, QString>> moved;   // entry -> its new path
    QStringList gone;                       // files that left their folder
    QList<QPair<QString, QString>> trashed; // file -> where it went in the Trash
    bool cancelled = false;
};

// A missing file: "File Not Found !" with the path, then the offer to take
// it off the list. True when the user accepts.
bool askRemoveMissing(const QString &path, const FileContext &context);

// The commands of the favourites window over the selected entries, in
// list order, into a folder that already ends in "/".
BatchResult copyEntries(const QStringList &selected, const QString &folder, const FileContext &context);
BatchResult moveEntries(const QStringList &selected, const QString &folder, const FileContext &context);
// Missing files are offered for removal; the rest go to the Trash in one request.
BatchResult deleteEntries(const QStringList &selected, const FileContext &context);

} // namespace Favourites
