#include "platform/Launcher.h"

#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <sys/types.h>

LaunchResult Launcher::openWithDefault(const QString &path)
{
    return start(QStringLiteral("xdg-open"), {path});
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
