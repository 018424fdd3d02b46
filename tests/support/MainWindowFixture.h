#pragma once

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
#include "display/PictureView.h"
#include "support/FakeSeams.h"
#include "viewer/frmMain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStringList>
#include <QToolButton>
#include <QTreeView>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

// The INI store that also logs the order of its writes.
class LoggingIniStore : public IniSettingsStore {
public:
    using IniSettingsStore::IniSettingsStore;
    QStringList writeLog;
    void write(const QString &section, const QString &key, const QString &value) override
    {
        writeLog.append(section + '/' + key);
        IniSettingsStore::write(section, key, value);
    }
};

// A main window over a fresh state, a settings file and a program folder of
// its own, with prompts and launcher that tests script.
class MainWindowFixture {
public:
    MainWindowFixture();
    ~MainWindowFixture();

    QString programFolder() const { return m_root.path() + "/program/"; }
    QString iniPath() const { return m_root.path() + "/config/Vimora.ini"; }
    QString makeFolder(const QString &relative) const; // absolute path, created
    // Small real pictures: ".bmp", ".jpg", ".gif" are decoded; others are
    // written as a few bytes, which is all a list needs.
    void makeFiles(const QString &folder, const QStringList &names) const;
    // One plain picture of the given size; returns its path.
    QString makePicture(const QString &folder, const QString &name, QSize size) const;

    frmMain &start(const QString &commandLine = {});
    std::function<void(frmMain &)> beforeLoad; // called by start() before Form_Load
    void close();
    frmMain &window() { return *m_window; }

    LoggingIniStore &settings() { return *m_settings; }
    ScriptedPrompts prompts;
    RecordingLauncher launcher;
    MessageCatalogue messages;
    std::unique_ptr<AppState> state;
    std::unique_ptr<ViewerContext> context;

private:
    QTemporaryDir m_root;
    std::unique_ptr<LoggingIniStore> m_settings;
    std::unique_ptr<frmMain> m_window;
};

// A main window showing b.bmp of a folder with a.bmp, b.bmp and c.bmp; the
// rename box answers with the names in `typed`.
struct ThreePicturesWindow : ::testing::Test {
    MainWindowFixture fixture;
    QString folder = fixture.makeFolder("pics");
    QStringList typed;

    frmMain &start()
    {
        fixture.makeFiles(folder, {"a.bmp", "b.bmp", "c.bmp"});
        fixture.settings().write("UserDef", "Language", "EN");
        frmMain &window = fixture.start(folder + "/b.bmp");
        window.setRenameBox([this](const QRect &, const QString &) { return typed.takeFirst(); });
        return window;
    }
};
