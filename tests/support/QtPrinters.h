#pragma once

#include <QString>
#include <QStringList>

#include <ostream>

// Readable Qt strings in test failure messages.
inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }
inline void PrintTo(const QStringList &list, std::ostream *out)
{
    *out << "{\"" << list.join("\", \"").toStdString() << "\"}";
}
