#include "files/FileSizeText.h"

#include "core/MessageCatalogue.h"

#include <QFileInfo>

#include <cmath>

QString GroupThousands(const QString &digits)
{
    QString text = digits;
    for (int cut : {3, 7, 11})
        if (text.size() > cut)
            text.insert(text.size() - cut, QLatin1Char('.'));
    return text;
}

QString sizeText(qint64 bytes, const QString &bytesWord)
{
    // Hundredths of a kilobyte, rounded down, in single precision as the
    // original arithmetic was: 1,034 bytes are exactly 1 K, 1,035 are 2 K.
    const float hundredths = std::floor(float(bytes) / 10.24f);
    const float k = hundredths / 100.0f;
    if (k < 1)
        return QString::number(bytes) + QLatin1Char(' ') + bytesWord;
    const auto whole = static_cast<qint64>(std::ceil(k));
    return GroupThousands(QString::number(whole)) + QStringLiteral(" K");
}

QString FileSizeText(const QString &path, const MessageCatalogue &messages)
{
    if (path.isEmpty())
        return {};
    const QFileInfo info(path);
    if (!info.exists())
        return {};
    return sizeText(info.size(), messages.GetMsg(100, QStringLiteral("bytes")));
}
