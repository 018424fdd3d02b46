#pragma once

#include <QString>
#include <QStringList>

// Starts other programs, always with an argument list and never through a
// shell, so that no file name can run anything.
struct LaunchResult {
    bool started = false;
    qint64 processId = 0;
};

class Launcher {
public:
    virtual ~Launcher() = default;
    virtual LaunchResult start(const QString &program, const QStringList &arguments) = 0;
    virtual bool isRunning(qint64 processId) const = 0;

    // Opens a file or folder with the desktop's default program.
    LaunchResult openWithDefault(const QString &path);
};

class ProcessLauncher : public Launcher {
public:
    LaunchResult start(const QString &program, const QStringList &arguments) override;
    bool isRunning(qint64 processId) const override;
};
