#include "core/ProfileReader.h"

#include <QFile>
#include <QStringDecoder>
#include <QStringView>

namespace ProfileReader {

namespace {

// A message file is a few kilobytes; anything far larger is not one.
constexpr qint64 MaxFileBytes = 16 * 1024 * 1024;

QStringView trimmed(QStringView text) { return text.trimmed(); }

QString finishValue(QStringView raw)
{
    QStringView value = trimmed(raw);
    if (value.size() >= 2) {
        const QChar first = value.front();
        if ((first == u'"' || first == u'\'') && value.back() == first)
            value = value.mid(1, value.size() - 2);
    }
    return value.left(MaxValueLength).toString();
}

} // namespace

QString decode(const QByteArray &bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(bytes);
    if (utf8.hasError())
        return QString::fromLatin1(bytes);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text;
}

QString findValue(const QString &text, const QString &section, const QString &key, const QString &defaultValue)
{
    bool inSection = false;
    const QStringView wantedSection = trimmed(section);
    const QStringView wantedKey = trimmed(key);
    qsizetype start = 0;
    while (start <= text.size()) {
        qsizetype end = text.indexOf(QLatin1Char('\n'), start);
        if (end < 0)
            end = text.size();
        const QStringView line = trimmed(QStringView(text).mid(start, end - start));
        start = end + 1;
        if (line.startsWith(u'[')) {
            qsizetype close = line.indexOf(u']');
            const QStringView name = trimmed(line.mid(1, close < 0 ? -1 : close - 1));
            if (inSection)
                return defaultValue; // the first section of that name wins
            inSection = name.compare(wantedSection, Qt::CaseInsensitive) == 0;
            continue;
        }
        if (!inSection || line.startsWith(u';'))
            continue;
        const qsizetype equals = line.indexOf(u'=');
        if (equals < 0)
            continue;
        if (trimmed(line.left(equals)).compare(wantedKey, Qt::CaseInsensitive) == 0)
            return finishValue(line.mid(equals + 1));
    }
    return defaultValue;
}

QString readText(const QString &filePath, const QString &section, const QString &key, const QString &defaultValue)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly) || file.size() > MaxFileBytes)
        return defaultValue;
    return findValue(decode(file.readAll()), section, key, defaultValue);
}

} // namespace ProfileReader
