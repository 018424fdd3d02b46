#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Vimora's own package in a shared MIME database: the descriptions and
// icons it gives the types it opens, and the types the system lacks.
namespace MimePackage {

struct Declaration {
    QString mimeType;
    QString comment;   // empty: the database's own description stays
    QString icon;      // a theme icon name; empty: the database's own icon stays
    QStringList globs; // only for a type the system does not know
};

inline const QString FileName = QStringLiteral("vimora.xml");

QString text(const QList<Declaration> &declarations);

// The icon a type's definition file (<database>/image/jpeg.xml) names.
QString iconOf(const QString &definitionText);

// Whether a database's globs2 file maps the pattern ("*.ivf") to any type.
bool globsName(const QString &globs2Text, const QString &pattern);

// Writes the package into <mimeFolder>/packages (removes it when there is
// nothing to declare) and rebuilds that database. Failures are ignored by
// the caller: the defaults in mimeapps.list work without it.
bool install(const QString &mimeFolder, const QList<Declaration> &declarations);

} // namespace MimePackage
