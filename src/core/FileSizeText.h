#pragma once

#include <QString>

class MessageCatalogue;

// "512 bytes" below one kilobyte, else whole kilobytes rounded up and
// grouped with dots: 1,536,000 bytes give "1.500 K".
QString sizeText(qint64 bytes, const QString &bytesWord = QStringLiteral("bytes"));

// The same for a sum of sizes, in double precision (selections of files
// that add up to gigabytes).
QString sizeTextPrecise(double bytes, const QString &bytesWord = QStringLiteral("bytes"));

// The size text of a file ("" for an empty path or a file that is gone).
QString FileSizeText(const QString &path, const MessageCatalogue &messages);

// "1234567" -> "1.234.567".
QString GroupThousands(const QString &digits);
