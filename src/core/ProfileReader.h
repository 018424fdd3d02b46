#pragma once

#include <QString>

// Reads one value of an INI-style file the way the Windows profile-string
// reader does: "[section]" lines, "key=value" lines, section and key
// compared without case, the first match wins, the value trimmed of blanks
// and of one pair of enclosing quotes, cut at 299 characters; the default
// when the file, the section or the key is missing. The file is read at
// every call, so an edited file takes effect at once.
namespace ProfileReader {

constexpr int MaxValueLength = 299;

QString readText(const QString &filePath, const QString &section, const QString &key, const QString &defaultValue);

// The same rules on text already in memory (used by readText and tests).
QString findValue(const QString &text, const QString &section, const QString &key, const QString &defaultValue);

// File bytes as text: UTF-8 when valid, else Latin-1.
QString decode(const QByteArray &bytes);

} // namespace ProfileReader
