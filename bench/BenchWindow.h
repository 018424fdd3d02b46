#pragma once

#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
#include "platform/Launcher.h"
#include "platform/Prompts.h"
#include "viewer/frmMain.h"

#include <QTemporaryDir>

class SilentPrompts : public Prompts {
public:
    PromptAnswer ask(const PromptMessage &) override { return PromptAnswer::Cancel; }
    QString chooseLanguage(const QString &) override { return QStringLiteral("EN"); }
    QString chooseFolder(const QString &, const QString &) override { return {}; }
};

class NoLauncher : public Launcher {
public:
    LaunchResult start(const QString &, const QStringList &) override { return {}; }
    bool isRunning(qint64) const override { return false; }
};

// A 6000 x 4000 JPEG (24 megapixels) with some detail to decode.
QString makeLargeJpeg(const QString &folder, const QString &name);

// The main window of a fresh user, 1280 x 1024, started on a file.
struct OpenWindow {
    explicit OpenWindow(const QString &path);
    QTemporaryDir config;
    IniSettingsStore settings;
    MessageCatalogue messages;
    AppState state;
    SilentPrompts prompts;
    NoLauncher launcher;
    frmMain window;
};
