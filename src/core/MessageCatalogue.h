#pragma once

#include <QString>

// Texts by message number in the current language, from the message file
// PRMSG beside the program, with the English default built in at the place
// of use. The file is read afresh at every lookup.
class MessageCatalogue {
public:
    QString GetMsg(int number, const QString &defaultText) const;

    QString languageCode() const { return m_languageCode; }
    // Also sets the section: "msg" + code in a field of five characters.
    void setLanguageCode(const QString &code);
    QString messageSection() const { return m_messageSection; }

    void setMessageFilePath(const QString &path) { m_messageFilePath = path; }
    QString messageFilePath() const { return m_messageFilePath; }

    static QString sectionFor(const QString &languageCode);

private:
    QString m_languageCode;
    QString m_messageSection = sectionFor({});
    QString m_messageFilePath;
};
