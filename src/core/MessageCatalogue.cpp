#include "core/MessageCatalogue.h"

#include "core/ProfileReader.h"

QString MessageCatalogue::GetMsg(int number, const QString &defaultText) const
{
    return ProfileReader::readText(m_messageFilePath, m_messageSection, QString::number(number), defaultText);
}

void MessageCatalogue::setLanguageCode(const QString &code)
{
    m_languageCode = code;
    m_messageSection = sectionFor(code);
}

QString MessageCatalogue::sectionFor(const QString &languageCode)
{
    return (QStringLiteral("msg") + languageCode).leftJustified(5, QLatin1Char(' '), true);
}
