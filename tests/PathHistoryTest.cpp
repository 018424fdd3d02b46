#include "support/FakeSeams.h"
#include "viewer/PathHistory.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace {

void store(MemorySettingsStore &settings, const QStringList &values)
{
    for (int i = 0; i < values.size(); ++i)
        settings.write("URL", QString::number(i), values[i]);
    settings.writeLog.clear();
}

} // namespace

TEST(PathHistoryTest, InsertPutsTheFolderFirstAndDropsItsOlderDuplicateCaseBlind)
{
    MemorySettingsStore settings;
    QStringList history = PathHistory::insert(settings, {}, "/a");
    EXPECT_EQ(history, QStringList({"/a"}));
    history = PathHistory::insert(settings, history, "/b");
    history = PathHistory::insert(settings, history, "/c");
    EXPECT_EQ(history, QStringList({"/c", "/b", "/a"}));

    history = PathHistory::insert(settings, history, "/B");
    EXPECT_EQ(history, QStringList({"/B", "/c", "/a"}));
    // Entries are written under 1..k in list order, the folder last under 0.
    EXPECT_EQ(settings.writeLog.mid(settings.writeLog.size() - 3), QStringList({"URL/1=/c", "URL/2=/a", "URL/0=/B"}));

    // The head again: same list, nothing duplicated.
    EXPECT_EQ(PathHistory::insert(settings, history, "/b"), QStringList({"/b", "/c", "/a"}));
}

TEST(PathHistoryTest, DuplicatesAreFoundByUpperCasing)
{
    MemorySettingsStore settings;
    store(settings, {QString::fromUtf8("/Straße"), "/x"});
    const QStringList history = PathHistory::insert(settings, PathHistory::load(settings), "/STRASSE");
    EXPECT_EQ(history, QStringList({"/STRASSE", "/x"}));
}

TEST(PathHistoryTest, KeysAboveTheNewCountAreLeftInPlace)
{
    MemorySettingsStore settings;
    store(settings, {"/a", "/b", "/c", "", "/e"});
    const QStringList loaded = PathHistory::load(settings);
    ASSERT_EQ(loaded, QStringList({"/a", "/b", "/c"}));
    PathHistory::insert(settings, loaded, "/d");
    EXPECT_EQ(settings.writeLog, QStringList({"URL/1=/a", "URL/2=/b", "URL/3=/c", "URL/0=/d"}));
    EXPECT_EQ(settings.read("URL", "4"), "/e"); // never deleted
}

TEST(PathHistoryTest, AFullHistoryStaysAt41Entries)
{
    MemorySettingsStore settings;
    QStringList values;
    for (int i = 0; i < 45; ++i)
        values.append(QStringLiteral("/f%1").arg(i));
    store(settings, values);
    const QStringList history = PathHistory::insert(settings, PathHistory::load(settings), "/new");
    EXPECT_EQ(history.size(), 41);
    EXPECT_EQ(history.first(), "/new");
    EXPECT_EQ(history.last(), "/f39");
    EXPECT_EQ(settings.read("URL", "41"), "/f40"); // written, but past what is read
    EXPECT_EQ(settings.read("URL", "44"), "/f44");
}

TEST(PathHistoryTest, LoadStopsAtTheFirstEmptyOrMissingKey)
{
    MemorySettingsStore settings;
    store(settings, {"/f0", "/f1", "/f2", "", "/f4", "/f5"});
    EXPECT_EQ(PathHistory::load(settings), QStringList({"/f0", "/f1", "/f2"}));

    settings.deleteKey("URL", "3");
    EXPECT_EQ(PathHistory::load(settings), QStringList({"/f0", "/f1", "/f2"}));

    MemorySettingsStore none;
    EXPECT_TRUE(PathHistory::load(none).isEmpty());
}

TEST(PathHistoryTest, ClearDeletesOnlyTheHistory)
{
    MemorySettingsStore settings;
    store(settings, {"/a", "/b"});
    settings.write("UserDef", "Path", "/a");
    settings.write("Favor", "0", "/a/x.jpg");
    PathHistory::clear(settings);
    EXPECT_TRUE(PathHistory::load(settings).isEmpty());
    EXPECT_EQ(settings.read("URL", "1"), "");
    EXPECT_EQ(settings.read("UserDef", "Path"), "/a");
    EXPECT_EQ(settings.read("Favor", "0"), "/a/x.jpg");
}

TEST(PathHistoryTest, SurvivesTheIniFile)
{
    // Keys are numbers and values are paths with spaces and commas, both
    // of which an INI store could mangle.
    QTemporaryDir dir;
    const QString file = dir.path() + "/Vimora.ini";
    const QString odd = QStringLiteral("/home/anna/Holiday, 2024/day 1");
    {
        IniSettingsStore settings(file);
        QStringList history = PathHistory::insert(settings, {}, "/home/anna");
        PathHistory::insert(settings, history, odd);
        settings.flush();
    }
    IniSettingsStore again(file);
    EXPECT_EQ(PathHistory::load(again), QStringList({odd, "/home/anna"}));
}

struct CompletionCase {
    const char *typed;
    std::optional<PathHistory::Completion> expected;
};

TEST(PathHistoryTest, CompletionFromTheTypedStart)
{
    const QStringList history{"/home/anna/Pictures", "/home/anna/Movies", "/media/cdrom", "/"};
    const CompletionCase cases[]{
        {"/home/an", PathHistory::Completion{"/home/anna/Pictures/", 8}},
        {"/HOME/AN", PathHistory::Completion{"/home/anna/Pictures/", 8}},        // case-blind
        {"  /home/anna/M  ", PathHistory::Completion{"/home/anna/Movies/", 12}}, // trimmed
        {"/home/anna/Pictures", PathHistory::Completion{"/home/anna/Pictures/", 19}},
        {"/home/anna/Pictures/", PathHistory::Completion{"/home/anna/Pictures/", 20}},
        {"/media/cdrom/", PathHistory::Completion{"/media/cdrom/", 13}},
        {"/", PathHistory::Completion{"/home/anna/Pictures/", 1}}, // the first entry wins
        {"/home/anna/Pictures/2024", std::nullopt},
        {"/home/anna/Pic/", std::nullopt},
        {"/srv", std::nullopt},
        {"", std::nullopt},
        {"   ", std::nullopt},
    };
    for (const CompletionCase &c : cases) {
        const auto completion = PathHistory::completion(history, QString::fromUtf8(c.typed));
        ASSERT_EQ(completion.has_value(), c.expected.has_value()) << c.typed;
        if (completion) {
            EXPECT_EQ(completion->text, c.expected->text) << c.typed;
            EXPECT_EQ(completion->selectionStart, c.expected->selectionStart) << c.typed;
        }
    }
}

TEST(PathHistoryTest, TheRootCompletesToItselfNotToADoubleSlash)
{
    const auto root = PathHistory::completion({"/"}, "/");
    ASSERT_TRUE(root.has_value());
    EXPECT_EQ(root->text, "/");
    EXPECT_EQ(root->selectionStart, 1);
}
