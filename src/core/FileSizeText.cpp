#include "core/FileSizeText.h"

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

namespace {
// Hundredths of a kilobyte, rounded down, then whole kilobytes rounded up:
// 1,034 bytes are exactly 1 K, 1,035 are 2 K.
template <typename Real>
QString kilobyteText(Real bytes, const QString &bytesWord)
{
    const Real hundredths = std::floor(bytes / Real(10.24));
    const Real k = hundredths / Real(100);
    if (k < 1)
        return QString::number(static_cast<qint64>(bytes)) + QLatin1Char(' ') + bytesWord;
    const auto whole = static_cast<qint64>(std::ceil(k));
    return GroupThousands(QString::number(whole)) + QStringLiteral(" K");
}
} // namespace

QString sizeText(qint64 bytes, const QString &bytesWord)
{
    return kilobyteText(float(bytes), bytesWord); // single precision, as a file's size always was
}

QString sizeTextPrecise(double bytes, const QString &bytesWord)
{
    return kilobyteText(bytes, bytesWord);
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
