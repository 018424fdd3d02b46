#include "core/FormTexts.h"
#include "core/ProfileReader.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace {

QString shippedMessageFile() { return QStringLiteral(VIMORA_SOURCE_DIR "/resources/PRMSG"); }

// Every message number the code asks for: GetMsg(n, ...) calls and the
// entries of the window text tables.
QSet<int> numbersUsedInCode()
{
    QSet<int> numbers;
    const QRegularExpression call(QStringLiteral(R"((?:GetMsg|msg)\(\s*(\d+)\s*,)"));
    const QRegularExpression entry(QStringLiteral(R"(\{\s*"\w*"\s*,\s*(\d+)\s*,\s*")"));
    QDirIterator files(QStringLiteral(VIMORA_SOURCE_DIR "/src"), {"*.cpp", "*.h"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        file.open(QIODevice::ReadOnly);
        const QString text = QString::fromUtf8(file.readAll());
        for (const QRegularExpression &pattern : {call, entry}) {
            auto matches = pattern.globalMatch(text);
            while (matches.hasNext())
                numbers.insert(matches.next().captured(1).toInt());
        }
    }
    return numbers;
}

} // namespace

TEST(MessageFile, ItalianTextForEveryNumberTheCodeUses)
{
    QFile file(shippedMessageFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = ProfileReader::decode(file.readAll());
    const QSet<int> used = numbersUsedInCode();
    ASSERT_GT(used.size(), 80);
    for (int number : used) {
        const QString italian = ProfileReader::findValue(text, "msgIT", QString::number(number), "<missing>");
        EXPECT_NE(italian, "<missing>") << number;
        EXPECT_LE(italian.size(), ProfileReader::MaxValueLength) << number;
    }
}

TEST(MessageFile, IsValidUtf8AndHasNoEnglishSection)
{
    QFile file(shippedMessageFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    EXPECT_EQ(ProfileReader::decode(bytes), QString::fromUtf8(bytes));
    // The English texts are built in; a msgEN section would silently override them.
    EXPECT_FALSE(bytes.contains("[msgEN]"));
}
