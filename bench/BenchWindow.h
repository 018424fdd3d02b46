#pragma once

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
#include "platform/Launcher.h"
#include "platform/Prompts.h"
#include "viewer/frmMain.h"

#include <QTemporaryDir>

#include <functional>

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

constexpr int LargeFolderSize = 100000;
// LargeFolderSize small files named with these suffixes in turn.
void makeLargeFolder(const QString &folder, const QList<QByteArray> &suffixes);
const QList<QByteArray> &mixedSuffixes();

// djpeg decoding path to nowhere, process included; the best of a few, in ms.
double djpegMs(const QString &path, const QStringList &scale);

// count names for one file, in the order a listing sorts them, without the
// disk space of copies; the file's own name goes.
QStringList linkCopies(const QString &file, int count);

// The main window of a fresh user, 1280 x 1024, started on a file, or with
// no file on storedFolder as the folder the last session left.
struct OpenWindow {
    // prepare runs before the start, to watch what the start does.
    explicit OpenWindow(const QString &path, const QString &storedFolder = {},
                        const std::function<void(frmMain &)> &prepare = {});
    QTemporaryDir config;
    IniSettingsStore settings;
    MessageCatalogue messages;
    AppState state;
    ViewerContext context{messages};
    SilentPrompts prompts;
    NoLauncher launcher;
    frmMain window;
};
