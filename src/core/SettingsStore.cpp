#include "core/SettingsStore.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>

int SettingsStore::readInt(const QString &section, const QString &key, int defaultValue) const
{
    bool ok = false;
    const int value = read(section, key).trimmed().toInt(&ok);
    return ok ? value : defaultValue;
}

bool SettingsStore::readBool(const QString &section, const QString &key, bool defaultValue) const
{
    // Booleans are written as "True"/"False"; numbers convert as any
    // non-zero value being true. Anything else keeps the default.
    const QString text = read(section, key).trimmed();
    if (text.compare(u"True", Qt::CaseInsensitive) == 0)
        return true;
    if (text.compare(u"False", Qt::CaseInsensitive) == 0)
        return false;
    bool ok = false;
    const double number = text.toDouble(&ok);
    return ok ? number != 0 : defaultValue;
}

IniSettingsStore::IniSettingsStore() : IniSettingsStore(defaultFilePath()) {}

IniSettingsStore::IniSettingsStore(const QString &filePath)
    : m_settings(new QSettings(filePath, QSettings::IniFormat))
{
}

IniSettingsStore::~IniSettingsStore()
{
    m_settings->sync();
    delete m_settings;
}

QString IniSettingsStore::defaultFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/Vimora/Vimora.ini");
}

QString IniSettingsStore::filePath() const { return m_settings->fileName(); }

QString IniSettingsStore::read(const QString &section, const QString &key, const QString &defaultValue) const
{
    const QVariant value = m_settings->value(section + QLatin1Char('/') + key);
    if (!value.isValid())
        return defaultValue;
    // A hand-edited line such as "a, b" comes back from QSettings as a list;
    // the store only knows text, so join it again.
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

void IniSettingsStore::write(const QString &section, const QString &key, const QString &value)
{
    m_settings->setValue(section + QLatin1Char('/') + key, value);
}

void IniSettingsStore::deleteKey(const QString &section, const QString &key)
{
    m_settings->remove(section + QLatin1Char('/') + key);
}

void IniSettingsStore::deleteSection(const QString &section)
{
    m_settings->remove(section);
}

void IniSettingsStore::flush() { m_settings->sync(); }

namespace SettingsText {
QString fromBool(bool value) { return value ? QStringLiteral("True") : QStringLiteral("False"); }
QString fromCheckState(bool checked) { return checked ? QStringLiteral("1") : QStringLiteral("0"); }
QString fromOption(bool selected) { return selected ? QStringLiteral("-1") : QStringLiteral("0"); }
}
