#include "viewer/PathHistory.h"

#include "core/SettingsStore.h"

namespace PathHistory {

namespace {
const QString Section = QStringLiteral("URL");
}

QStringList load(const SettingsStore &settings)
{
    QStringList history;
    for (int i = 0; i < MaxEntries; ++i) {
        const QString value = settings.read(Section, QString::number(i));
        if (value.isEmpty())
            break;
        history.append(value);
    }
    return history;
}

QStringList insert(SettingsStore &settings, const QStringList &current, const QString &folder)
{
    // Upper-cased, not case-folded: "/Straße" and "/STRASSE" are one entry.
    const QString upperFolder = folder.toUpper();
    int k = 0;
    for (const QString &entry : current) {
        if (entry.toUpper() != upperFolder)
            settings.write(Section, QString::number(++k), entry);
    }
    settings.write(Section, QStringLiteral("0"), folder);
    return load(settings);
}

void clear(SettingsStore &settings) { settings.deleteSection(Section); }

std::optional<Completion> completion(const QStringList &history, const QString &typed)
{
    const QString wanted = typed.trimmed();
    if (wanted.isEmpty())
        return std::nullopt;
    for (const QString &entry : history) {
        const QString candidate = entry.endsWith(QLatin1Char('/')) ? entry : entry + QLatin1Char('/');
        if (candidate.startsWith(wanted, Qt::CaseInsensitive))
            return Completion{candidate, wanted.size()};
    }
    return std::nullopt;
}

} // namespace PathHistory
