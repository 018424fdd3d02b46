#include "platform/Launcher.h"

#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <sys/types.h>

LaunchResult Launcher::openWithDefault(const QString &path)
{
    // xdg-open has no "--": a relative name starting with "-" would be read
    // as an option, its absolute path cannot be. Without a working folder
    // (the browsed one was deleted) Qt leaves the name as it is.
    QString target = path;
    if (target.startsWith(QLatin1Char('-')))
        target = QFileInfo(path).absoluteFilePath();
    if (target.startsWith(QLatin1Char('-')))
        target = QStringLiteral("./") + path;
    return start(QStringLiteral("xdg-open"), {target});
}

void Launcher::startWatched(const QString &program, const QStringList &arguments, LaunchWatcher done)
{
    done({start(program, arguments).started, false, 0});
}

LaunchResult ProcessLauncher::start(const QString &program, const QStringList &arguments)
{
    LaunchResult result;
    result.started = QProcess::startDetached(program, arguments, QString(), &result.processId);
    return result;
}

bool ProcessLauncher::isRunning(qint64 processId) const
{
    return processId > 0 && ::kill(pid_t(processId), 0) == 0;
}

void ProcessLauncher::startWatched(const QString &program, const QStringList &arguments, LaunchWatcher done)
{
    auto *process = new QProcess;
    QObject::connect(process, &QProcess::errorOccurred, process, [process, done](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return; // a crash also ends in finished()
        done({false, false, 0});
        process->deleteLater();
    });
    QObject::connect(process, &QProcess::finished, process, [process, done](int exitCode, QProcess::ExitStatus status) {
        done({true, status == QProcess::CrashExit, exitCode});
        process->deleteLater();
    });
    process->start(program, arguments);
}
