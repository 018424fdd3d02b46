#include "system/MimePackage.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>

namespace MimePackage {

QString text(const QList<Declaration> &declarations)
{
    QString xml = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n");
    for (const Declaration &d : declarations) {
        xml += QStringLiteral("  <mime-type type=\"%1\">\n").arg(d.mimeType.toHtmlEscaped());
        if (!d.comment.isEmpty())
            xml += QStringLiteral("    <comment>%1</comment>\n").arg(d.comment.toHtmlEscaped());
        if (!d.icon.isEmpty())
            xml += QStringLiteral("    <icon name=\"%1\"/>\n").arg(d.icon.toHtmlEscaped());
        for (const QString &glob : d.globs)
            xml += QStringLiteral("    <glob pattern=\"%1\"/>\n").arg(glob.toHtmlEscaped());
        xml += QStringLiteral("  </mime-type>\n");
    }
    return xml + QStringLiteral("</mime-info>\n");
}

QString iconOf(const QString &definitionText)
{
    static const QRegularExpression icon(QStringLiteral("<icon\\s+name\\s*=\\s*\"([^\"]*)\""));
    return icon.match(definitionText).captured(1);
}

bool globsName(const QString &globs2Text, const QString &pattern)
{
    // Lines are "weight:type:pattern[:flags]"; patterns match case-blind
    // unless flagged, so compare them that way.
    for (const QString &line : globs2Text.split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1Char('#')))
            continue;
        if (line.section(QLatin1Char(':'), 2, 2).compare(pattern, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

bool install(const QString &mimeFolder, const QList<Declaration> &declarations)
{
    const QString packages = mimeFolder + QStringLiteral("/packages");
    const QString path = packages + QLatin1Char('/') + FileName;
    if (declarations.isEmpty()) {
        if (!QFile::exists(path))
            return true;
        QFile::remove(path);
    } else {
        QDir().mkpath(packages);
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return false;
        file.write(text(declarations).toUtf8());
        if (!file.commit())
            return false;
    }
    const QString updater = QStandardPaths::findExecutable(QStringLiteral("update-mime-database"));
    if (updater.isEmpty())
        return false;
    QProcess update;
    update.start(updater, {mimeFolder});
    return update.waitForFinished(60000) && update.exitStatus() == QProcess::NormalExit && update.exitCode() == 0;
}

} // namespace MimePackage
