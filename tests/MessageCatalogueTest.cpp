#include "core/MessageCatalogue.h"
#include "core/ProfileReader.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct MessageFile {
    QTemporaryDir dir;
    QString path() const { return dir.path() + "/PRMSG"; }
    void write(const QByteArray &bytes) const
    {
        QFile file(path());
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
    }
};

MessageCatalogue catalogue(const MessageFile &file, const QString &language)
{
    MessageCatalogue messages;
    messages.setMessageFilePath(file.path());
    messages.setLanguageCode(language);
    return messages;
}

} // namespace

TEST(MessageCatalogue, LanguageSectionOrEnglishDefault)
{
    MessageFile file;
    file.write("[msgIT]\n1022=File non trovato !\n");
    EXPECT_EQ(catalogue(file, "IT").GetMsg(1022, "File Not Found !"), "File non trovato !");
    EXPECT_EQ(catalogue(file, "EN").GetMsg(1022, "File Not Found !"), "File Not Found !");
    EXPECT_EQ(catalogue(file, "IT").GetMsg(1023, "Other"), "Other");

    MessageFile missing; // no file at all
    EXPECT_EQ(catalogue(missing, "IT").GetMsg(1022, "File Not Found !"), "File Not Found !");
}

TEST(MessageCatalogue, SectionIsAFixedFiveCharacterField)
{
    EXPECT_EQ(MessageCatalogue::sectionFor("IT"), "msgIT");
    EXPECT_EQ(MessageCatalogue::sectionFor(""), "msg  ");
    EXPECT_EQ(MessageCatalogue::sectionFor("ITALIAN"), "msgIT");
}

TEST(MessageCatalogue, FileIsReadAfreshAtEveryLookup)
{
    MessageFile file;
    file.write("[msgIT]\n306=Ciclo\n");
    const MessageCatalogue messages = catalogue(file, "IT");
    EXPECT_EQ(messages.GetMsg(306, "Cycle"), "Ciclo");
    file.write("[msgIT]\n306=Ripeti\n");
    EXPECT_EQ(messages.GetMsg(306, "Cycle"), "Ripeti");
}

TEST(ProfileReader, FollowsTheWindowsProfileRules)
{
    const QString text = QString::fromUtf8(
        "; comment line\n"
        "[other]\n10108=wrong section\n"
        "[MSGit]\r\n"
        "  10108  =   spaced value   \r\n"
        "10109=\n"
        "10110=\"quoted text\"\n"
        "10110=second occurrence ignored\n"
        ";10111=commented out\n"
        "no equals sign line\n"
        "10112=a=b=c\n"
        "[msgIT]\n10113=duplicate section ignored\n");
    auto value = [&](const char *key) { return ProfileReader::findValue(text, "msgIT", key, "DEFAULT"); };
    EXPECT_EQ(value("10108"), "spaced value");
    EXPECT_EQ(value("10109"), ""); // present but empty: not the default
    EXPECT_EQ(value("10110"), "quoted text");
    EXPECT_EQ(value("10111"), "DEFAULT");
    EXPECT_EQ(value("10112"), "a=b=c");
    EXPECT_EQ(value("10113"), "DEFAULT");
    EXPECT_EQ(ProfileReader::findValue(text, "missing", "10108", "D"), "D");
}

TEST(ProfileReader, LongValuesAreCutAt299Characters)
{
    const QString text = "[s]\nk=" + QString(400, 'x') + "\n";
    EXPECT_EQ(ProfileReader::findValue(text, "s", "k", "").size(), 299);
}

TEST(ProfileReader, Utf8WithLatin1Fallback)
{
    EXPECT_EQ(ProfileReader::decode("Perch\xc3\xa9"), QString::fromUtf8("Perché"));
    EXPECT_EQ(ProfileReader::decode("Perch\xe9"), QString::fromUtf8("Perché"));
    EXPECT_EQ(ProfileReader::decode("\xef\xbb\xbf[s]"), "[s]");
}

TEST(ProfileReader, BinaryJunkGivesTheDefault)
{
    MessageFile file;
    QByteArray junk(4096, '\0');
    for (int i = 0; i < junk.size(); ++i)
        junk[i] = char((i * 7919) % 256);
    file.write(junk);
    EXPECT_EQ(ProfileReader::readText(file.path(), "msgIT", "1022", "File Not Found !"), "File Not Found !");
}
