#pragma once

#include <QString>

class QSettings;

// Text values by (section, key) under the application "Vimora". Every
// caller goes through these four operations; a test can watch them.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    virtual QString read(const QString &section, const QString &key, const QString &defaultValue = {}) const = 0;
    virtual void write(const QString &section, const QString &key, const QString &value) = 0;
    virtual void deleteKey(const QString &section, const QString &key) = 0;
    virtual void deleteSection(const QString &section) = 0;
    virtual void flush() {}

    // Typed reads: text that does not convert gives the default.
    int readInt(const QString &section, const QString &key, int defaultValue) const;
    bool readBool(const QString &section, const QString &key, bool defaultValue) const;
};

// The per-user INI file: $XDG_CONFIG_HOME/Vimora/Vimora.ini.
class IniSettingsStore : public SettingsStore {
public:
    IniSettingsStore();
    explicit IniSettingsStore(const QString &filePath);
    ~IniSettingsStore() override;

    QString read(const QString &section, const QString &key, const QString &defaultValue = {}) const override;
    void write(const QString &section, const QString &key, const QString &value) override;
    void deleteKey(const QString &section, const QString &key) override;
    void deleteSection(const QString &section) override;
    void flush() override;

    QString filePath() const;
    static QString defaultFilePath();

private:
    QSettings *m_settings;
};

// Text forms of the stored values.
namespace SettingsText {
QString fromBool(bool value);          // "True" / "False"
QString fromCheckState(bool checked);  // "1" / "0"
QString fromOption(bool selected);     // "-1" / "0"
}
