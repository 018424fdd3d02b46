#include "core/SettingsStore.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
struct IniFile {
    QTemporaryDir dir;
    QString path() const { return dir.path() + "/Vimora/Vimora.ini"; }
};
} // namespace

TEST(SettingsStore, LivesInTheUserConfigFolder)
{
    EXPECT_EQ(IniSettingsStore::defaultFilePath(), qEnvironmentVariable("XDG_CONFIG_HOME") + "/Vimora/Vimora.ini");
}

TEST(SettingsStore, TextComesBackExactlyAsWritten)
{
    IniFile ini;
    const QStringList values{
        "a, b, c", "one;two", "key=value", "\"quoted\"", "'single'", "   leading blanks", "trailing  ",
        "Perché così è più già", "Ωμέγα/日本語", "back\\slash", "#hash", "[section]", "", "multi\nline",
    };
    {
        IniSettingsStore store(ini.path());
        for (int i = 0; i < values.size(); ++i)
            store.write("Favor", QString::number(i), values[i]);
    }
    IniSettingsStore reopened(ini.path());
    for (int i = 0; i < values.size(); ++i)
        EXPECT_EQ(reopened.read("Favor", QString::number(i), "missing"), values[i]) << values[i].toStdString();
}

TEST(SettingsStore, DefaultsDeleteKeyAndDeleteSection)
{
    IniFile ini;
    IniSettingsStore store(ini.path());
    EXPECT_EQ(store.read("UserDef", "Path", "fallback"), "fallback");
    store.write("UserDef", "Path", "/home/x");
    store.write("UserDef", "xTime", "7");
    store.write("URL", "0", "/a");
    store.write("URL", "1", "/b");

    store.deleteKey("UserDef", "Path");
    store.deleteKey("UserDef", "NoSuchKey"); // absent: ignored
    EXPECT_EQ(store.read("UserDef", "Path", "gone"), "gone");
    EXPECT_EQ(store.read("UserDef", "xTime"), "7");

    store.deleteSection("URL");
    store.flush();
    EXPECT_EQ(store.read("URL", "0", "none"), "none");
    EXPECT_EQ(store.read("URL", "1", "none"), "none");
    EXPECT_EQ(store.read("UserDef", "xTime"), "7");
}

TEST(SettingsStore, ValuesThatDoNotConvertGiveTheDefault)
{
    IniFile ini;
    IniSettingsStore store(ini.path());
    store.write("UserDef", "xTime", "abc");
    store.write("UserDef", "iTyp", "12");
    store.write("UserDef", "SWTIPS", "False");
    store.write("UserDef", "swAnim", "maybe");
    store.write("UserDef", "cicle", "-1");
    EXPECT_EQ(store.readInt("UserDef", "xTime", 5), 5);
    EXPECT_EQ(store.readInt("UserDef", "iTyp", 0), 12);
    EXPECT_EQ(store.readInt("UserDef", "absent", 5), 5);
    EXPECT_FALSE(store.readBool("UserDef", "SWTIPS", true));
    EXPECT_TRUE(store.readBool("UserDef", "swAnim", true));
    EXPECT_TRUE(store.readBool("UserDef", "cicle", false));
}

TEST(SettingsStore, HandEditedFileIsReadAsText)
{
    IniFile ini;
    QDir().mkpath(ini.dir.path() + "/Vimora");
    QFile file(ini.path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[UserDef]\nPath=/srv/photos, 2024\nxTime = 9\n\x01\x02junk line\n[URL]\n0=/tmp\n");
    file.close();
    IniSettingsStore store(ini.path());
    EXPECT_EQ(store.read("UserDef", "Path"), "/srv/photos, 2024");
    EXPECT_EQ(store.readInt("UserDef", "xTime", 5), 9);
    EXPECT_EQ(store.read("URL", "0"), "/tmp");
}

TEST(SettingsStore, TextFormsOfStoredValues)
{
    EXPECT_EQ(SettingsText::fromBool(true), "True");
    EXPECT_EQ(SettingsText::fromBool(false), "False");
    EXPECT_EQ(SettingsText::fromCheckState(true), "1");
    EXPECT_EQ(SettingsText::fromOption(true), "-1");
    EXPECT_EQ(SettingsText::fromOption(false), "0");
}
