#pragma once

#include <QString>
#include <QStringList>

#include <functional>

// Starts other programs, always with an argument list and never through a
// shell, so that no file name can run anything.
struct LaunchResult {
    bool started = false;
    qint64 processId = 0;
};

// How a watched program ended: not started at all, crashed, or its exit code.
struct LaunchExit {
    bool started = true;
    bool crashed = false;
    int exitCode = 0;
};
using LaunchWatcher = std::function<void(const LaunchExit &)>;

class Launcher {
public:
    virtual ~Launcher() = default;
    virtual LaunchResult start(const QString &program, const QStringList &arguments) = 0;
    virtual bool isRunning(qint64 processId) const = 0;
    // Starts a short-lived helper (xdg-open) and reports how it ended, on the
    // event loop, so that its failure can be told to the user. By default it
    // can only tell whether the program started.
    virtual void startWatched(const QString &program, const QStringList &arguments, LaunchWatcher done);

    // Opens a file or folder with the desktop's default program.
    LaunchResult openWithDefault(const QString &path);
};

class ProcessLauncher : public Launcher {
public:
    LaunchResult start(const QString &program, const QStringList &arguments) override;
    bool isRunning(qint64 processId) const override;
    void startWatched(const QString &program, const QStringList &arguments, LaunchWatcher done) override;
};
