#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class SettingsStore;

// The path box's history, most recent first, kept in settings section
// "URL" under keys "0", "1", ...
namespace PathHistory {

constexpr int MaxEntries = 41;

// Up to 41 entries; stops at the first missing or empty key.
QStringList load(const SettingsStore &settings);

// Puts folder at the head, drops its older duplicate (case-blind) and
// returns the history as stored. Keys beyond the new count stay as they
// were: they are never read past the first empty one.
QStringList insert(SettingsStore &settings, const QStringList &current, const QString &folder);

void clear(SettingsStore &settings);

struct Completion {
    QString text;               // the entry and a "/"
    qsizetype selectionStart;   // the completed part is selected from here
};

// The first entry that, followed by "/", begins with the typed text.
std::optional<Completion> completion(const QStringList &history, const QString &typed);

} // namespace PathHistory
