#include "core/MessageCatalogue.h"
#include "support/FakeSeams.h"
#include "system/FileAssociations.h"
#include "system/MimeAppsList.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void writeText(const QString &path, const QString &text)
{
    QDir().mkpath(path.section('/', 0, -2));
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(text.toUtf8());
}

// The per-user folders of the desktop point into a folder of this test.
class FileAssociationsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_savedConfig = qgetenv("XDG_CONFIG_HOME");
        m_savedData = qgetenv("XDG_DATA_HOME");
        qputenv("XDG_CONFIG_HOME", (root.path() + "/config").toUtf8());
        qputenv("XDG_DATA_HOME", (root.path() + "/data").toUtf8());
        places = FileAssociations::Places::standard();
        places.systemMimeApps.clear();
        places.programPath = "/opt/my programs/vimora";
        places.systemMimeFolders = {root.path() + "/share/mime"};
        places.iconSource = VIMORA_SOURCE_DIR "/resources/hicolor/scalable/mimetypes";
    }
    void TearDown() override
    {
        qputenv("XDG_CONFIG_HOME", m_savedConfig);
        qputenv("XDG_DATA_HOME", m_savedData);
    }

    QSet<QString> apply(const QSet<QString> &checked)
    {
        linked = FileAssociations::applyChoices(checked, linked, places, settings, messages);
        return linked;
    }
    QString userDefault(const QString &mime) const
    {
        return MimeAppsList::load(places.userMimeApps).value("Default Applications", mime);
    }
    int backupWrites() const { return int(settings.writeLog.filter("RegBak/").size()); }
    QString package() const { return readText(places.userMimeFolder + "/packages/vimora.xml"); }

    QTemporaryDir root;
    FileAssociations::Places places;
    MemorySettingsStore settings;
    MessageCatalogue messages;
    QSet<QString> linked;

private:
    QByteArray m_savedConfig, m_savedData;
};

TEST_F(FileAssociationsTest, PlacesFollowTheDesktopFolders)
{
    EXPECT_EQ(places.userMimeApps, root.path() + "/config/mimeapps.list");
    EXPECT_EQ(places.desktopEntryFolder, root.path() + "/data/applications");
}

TEST_F(FileAssociationsTest, LinkingJpgWithoutDefaultWritesEntryDefaultsAndEmptyBackup)
{
    EXPECT_EQ(apply({"JPG"}), QSet<QString>({"JPG"}));

    EXPECT_EQ(userDefault("image/jpeg"), "vimora.desktop;");
    // Nothing to keep, yet every key is there; JPEG's type is already ours
    // when its turn comes, and its keys are there too.
    for (const char *key : {"JPGIcon", "JPGComm", "JPGCmd", "JPEGIcon", "JPEGComm", "JPEGCmd"})
        EXPECT_EQ(settings.read("RegBak", key, "none"), "") << key;
    EXPECT_EQ(settings.read("RegBak", "BMPCmd", "none"), "none");
    EXPECT_EQ(settings.read("Linked", "JPG"), "Y");
    for (const char *other : {"BMP", "GIF", "WMF", "EMF", "CUR", "RLE", "MPEG", "AVI", "IVF", "QT", "ASF", "RAM"})
        EXPECT_EQ(settings.read("Linked", other), "N") << other;
    EXPECT_TRUE(userDefault("image/bmp").isEmpty());

    const QString entry = readText(places.desktopEntryFolder + "/vimora.desktop");
    EXPECT_TRUE(entry.contains("\nExec=\"/opt/my programs/vimora\" %f\n")) << entry.toStdString();
    EXPECT_TRUE(entry.contains("image/jpeg;"));
    EXPECT_TRUE(entry.contains("Comment=View with Vimora\n"));
}

// What a double-click asks: the desktop's own tools must find Vimora.
TEST_F(FileAssociationsTest, DesktopToolsFindVimoraForALinkedType)
{
    const QString xdgMime = QStandardPaths::findExecutable("xdg-mime");
    if (xdgMime.isEmpty())
        GTEST_SKIP() << "xdg-mime is not installed";
    places.programPath = QCoreApplication::applicationFilePath(); // the tools check that it exists
    apply({"JPG"});

    QProcess query;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("XDG_CURRENT_DESKTOP"); // the desktop-neutral lookup
    query.setProcessEnvironment(environment);
    query.start(xdgMime, {"query", "default", "image/jpeg"});
    ASSERT_TRUE(query.waitForFinished(10000));
    EXPECT_EQ(QString::fromUtf8(query.readAllStandardOutput()).trimmed(), "vimora.desktop");
}

TEST_F(FileAssociationsTest, LinkingKeepsTheOldProgramIconAndNameOnceEach)
{
    writeText(places.userMimeApps, "[Default Applications]\nimage/jpeg=org.gnome.eog.desktop;\n");
    writeText(places.desktopEntryFolder + "/org.gnome.eog.desktop", "[Desktop Entry]\nName=Image Viewer\n");
    writeText(places.userMimeFolder + "/image/jpeg.xml", "<mime-type type=\"image/jpeg\"><icon name=\"my-jpeg\"/></mime-type>");
    apply({"JPG"});
    const int firstWrites = backupWrites();
    apply({"JPG"});

    EXPECT_EQ(settings.read("RegBak", "JPGCmd"), "image/jpeg=org.gnome.eog.desktop;");
    EXPECT_EQ(settings.read("RegBak", "JPGComm"), "image/jpeg=Image Viewer");
    EXPECT_EQ(settings.read("RegBak", "JPGIcon"), "image/jpeg=my-jpeg");
    EXPECT_EQ(backupWrites(), firstWrites);
    EXPECT_EQ(userDefault("image/jpeg"), "vimora.desktop;");
}

// What file managers show for a type comes from the user's MIME database.
TEST_F(FileAssociationsTest, LinkedTypesShowVimorasDescriptionAndIconUnlinkedTheOldIcon)
{
    writeText(places.userMimeFolder + "/image/gif.xml", "<mime-type type=\"image/gif\"><icon name=\"my-gif\"/></mime-type>");
    apply({"GIF", "QT", "JPG"});
    QString text = package();
    EXPECT_TRUE(text.contains("<mime-type type=\"image/gif\">\n    <comment>GIF File</comment>\n"
                              "    <icon name=\"vimora-picture\"/>")) << text.toStdString();
    // QT and MOV share a type: the later one in the table speaks for it.
    EXPECT_TRUE(text.contains("<comment>MOV QuickTime File</comment>\n    <icon name=\"vimora-quicktime\"/>"));
    EXPECT_FALSE(text.contains("image/bmp"));
    EXPECT_TRUE(QFile::exists(places.userIconFolder + "/vimora-quicktime.svg"));

    apply({"QT"});
    text = package();
    EXPECT_TRUE(text.contains("<mime-type type=\"image/gif\">\n    <comment>GIF File</comment>\n"
                              "    <icon name=\"my-gif\"/>")) << text.toStdString();
    EXPECT_TRUE(text.contains("<mime-type type=\"image/jpeg\">\n    <comment>JPG/JPEG File</comment>\n"
                              "  </mime-type>")) << text.toStdString();
}

TEST_F(FileAssociationsTest, IvfGetsATypeOfItsOwnOnlyWhereTheSystemHasNone)
{
    if (QStandardPaths::findExecutable("update-mime-database").isEmpty())
        GTEST_SKIP() << "update-mime-database is not installed";
    apply({"IVF"});
    EXPECT_TRUE(package().contains("<glob pattern=\"*.ivf\"/>")) << package().toStdString();
    // The database was built again: the desktop finds the type by its name.
    EXPECT_TRUE(readText(places.userMimeFolder + "/globs2").contains("video/x-ivf:*.ivf"));
    EXPECT_EQ(userDefault("video/x-ivf"), "vimora.desktop;");

    writeText(root.path() + "/share/mime/globs2", "# a system that knows\n50:video/x-indeo:*.IVF\n");
    apply({"IVF"});
    EXPECT_FALSE(package().contains("*.ivf"));
}

TEST_F(FileAssociationsTest, UnlinkingWhereThereWasNoDefaultRemovesOurs)
{
    apply({"JPG", "BMP"});
    EXPECT_EQ(apply({"BMP"}), QSet<QString>({"BMP"}));

    const MimeAppsList list = MimeAppsList::load(places.userMimeApps);
    EXPECT_FALSE(list.toText().contains("image/jpeg"));
    EXPECT_EQ(list.value("Default Applications", "image/bmp"), "vimora.desktop;");
    EXPECT_EQ(list.value("Default Applications", "image/x-bmp"), "vimora.desktop;");
    EXPECT_EQ(settings.read("Linked", "JPG"), "N");
    EXPECT_EQ(settings.read("Linked", "BMP"), "Y");
}

TEST_F(FileAssociationsTest, UnlinkingRestoresTheOtherProgramsDefault)
{
    writeText(places.userMimeApps,
              "[Default Applications]\nvideo/quicktime=vlc.desktop;mpv.desktop;\n");
    apply({"QT"});
    EXPECT_EQ(userDefault("video/quicktime"), "vimora.desktop;");
    EXPECT_EQ(settings.read("RegBak", "QTCmd"), "video/quicktime=vlc.desktop;mpv.desktop;");

    apply({});
    EXPECT_EQ(readText(places.userMimeApps), "[Default Applications]\nvideo/quicktime=vlc.desktop;mpv.desktop;\n");
}

TEST_F(FileAssociationsTest, UnlinkingLeavesADefaultChosenAfterLinking)
{
    apply({"GIF"});
    MimeAppsList list = MimeAppsList::load(places.userMimeApps);
    list.setValue("Default Applications", "image/gif", "gimp.desktop;");
    list.save(places.userMimeApps);

    apply({});
    EXPECT_EQ(userDefault("image/gif"), "gimp.desktop;");
}

TEST_F(FileAssociationsTest, ClearedBoxOfUnlinkedGroupOnlyStoresN)
{
    apply({});
    EXPECT_FALSE(QFile::exists(places.userMimeApps));
    EXPECT_FALSE(QFile::exists(places.desktopEntryFolder + "/vimora.desktop"));
    EXPECT_EQ(settings.read("Linked", "JPG"), "N");
    EXPECT_EQ(backupWrites(), 0);
}

TEST_F(FileAssociationsTest, SystemListIsChangedOnlyWhenItExists)
{
    places.systemMimeApps = root.path() + "/etc/mimeapps.list";
    apply({"AVI"});
    EXPECT_FALSE(QFile::exists(places.systemMimeApps));

    writeText(places.systemMimeApps, "[Default Applications]\nvideo/x-msvideo=totem.desktop;\n");
    apply({"AVI"});
    EXPECT_EQ(MimeAppsList::load(places.systemMimeApps).value("Default Applications", "video/x-msvideo"),
              "vimora.desktop;");
    // Restored from the user's backup: the system list keeps none of its own.
    apply({});
    EXPECT_FALSE(readText(places.systemMimeApps).contains("video/x-msvideo="));
}

TEST(MimeAppsList, EditsKeepEveryOtherLine)
{
    const QString original = "# written by hand\n"
                             "[Added Associations]\n"
                             "image/jpeg=gimp.desktop;\n"
                             "\n"
                             "[Default Applications]\n"
                             "; an old comment\n"
                             "text/plain = org.gnome.TextEditor.desktop\n"
                             "image/jpeg=org.gnome.eog.desktop;\n"
                             "\n"
                             "[Removed Associations]\n"
                             "image/png=firefox.desktop;\n";
    struct Case {
        const char *what;
        std::function<void(MimeAppsList &)> edit;
        QString expected;
    };
    const QList<Case> cases{
        {"nothing", [](MimeAppsList &) {}, original},
        {"replace a key",
         [](MimeAppsList &l) { l.setValue("Default Applications", "image/jpeg", "vimora.desktop;"); },
         QString(original).replace("image/jpeg=org.gnome.eog.desktop;", "image/jpeg=vimora.desktop;")},
        {"add a key after the group's last entry",
         [](MimeAppsList &l) { l.setValue("Default Applications", "image/gif", "vimora.desktop;"); },
         QString(original).replace("org.gnome.eog.desktop;\n", "org.gnome.eog.desktop;\nimage/gif=vimora.desktop;\n")},
        {"remove a key",
         [](MimeAppsList &l) { l.remove("Default Applications", "image/jpeg"); },
         QString(original).remove("image/jpeg=org.gnome.eog.desktop;\n")},
        {"remove a missing key", [](MimeAppsList &l) { l.remove("Default Applications", "video/mpeg"); }, original},
        {"add a missing group",
         [](MimeAppsList &l) { l.setValue("Vimora Test", "a/b", "c"); },
         original + "\n[Vimora Test]\na/b=c\n"},
    };
    for (const Case &c : cases) {
        MimeAppsList list = MimeAppsList::fromText(original);
        c.edit(list);
        EXPECT_EQ(list.toText(), c.expected) << c.what;
    }

    const MimeAppsList list = MimeAppsList::fromText(original);
    EXPECT_EQ(list.value("Default Applications", "text/plain"), "org.gnome.TextEditor.desktop");
    EXPECT_EQ(list.value("Added Associations", "image/jpeg"), "gimp.desktop;");
    EXPECT_EQ(list.value("Default Applications", "image/png"), "");
    EXPECT_EQ(list.value("Nowhere", "image/jpeg"), "");
}

TEST(MimeAppsList, ReadsWindowsLineEndsAndEmptyText)
{
    const MimeAppsList crlf = MimeAppsList::fromText("[Default Applications]\r\nimage/gif=a.desktop;\r\n");
    EXPECT_EQ(crlf.value("Default Applications", "image/gif"), "a.desktop;");
    MimeAppsList empty = MimeAppsList::fromText("");
    empty.setValue("Default Applications", "image/gif", "vimora.desktop;");
    EXPECT_EQ(empty.toText(), "[Default Applications]\nimage/gif=vimora.desktop;\n");
    EXPECT_EQ(MimeAppsList::load("/nonexistent/mimeapps.list").toText(), "");
}

TEST(DesktopEntry, ExecQuotesTheProgramPathOnlyWhenItMust)
{
    const QList<QPair<QString, QString>> cases{
        {"/usr/bin/vimora", R"(/usr/bin/vimora %f)"},
        {"/home/me/my build/vimora", R"("/home/me/my build/vimora" %f)"},
        {"/tmp/$HOME/a\"b`c", R"("/tmp/\\$HOME/a\\"b\\`c" %f)"},
        {"/tmp/back\\slash", R"("/tmp/back\\\\slash" %f)"},
        {"/opt/100%/vimora", R"(/opt/100%%/vimora %f)"},
        {"/opt/100% sure/vimora", R"("/opt/100%% sure/vimora" %f)"},
    };
    for (const auto &[path, expected] : cases)
        EXPECT_EQ(FileAssociations::execLine(path), expected) << path.toStdString();
}

TEST(DesktopEntry, ShippedEntryPassesOnePathAndNamesEveryLinkableType)
{
    const MimeAppsList shipped = MimeAppsList::load(VIMORA_SOURCE_DIR "/resources/vimora.desktop");
    // %f: one local path per start, which Vimora takes whole.
    EXPECT_EQ(shipped.value("Desktop Entry", "Exec"), "vimora %f");
    const QStringList types = shipped.value("Desktop Entry", "MimeType").split(';', Qt::SkipEmptyParts);
    for (const QString &mime : AssociationGroups::allMimeTypes())
        EXPECT_TRUE(types.contains(mime)) << mime.toStdString();
}

} // namespace

// Run as root from a build, linking must not point every user's defaults at
// a desktop entry in root's home: the shared list is only for an install
// whose entry every user can see.
TEST(FileAssociationPlaces, TheSharedListIsForASystemWideInstallOnly)
{
    QTemporaryDir root;
    const QByteArray savedData = qgetenv("XDG_DATA_DIRS");
    const QByteArray savedConfig = qgetenv("XDG_CONFIG_DIRS");
    qputenv("XDG_DATA_DIRS", (root.path() + "/share").toUtf8());
    qputenv("XDG_CONFIG_DIRS", (root.path() + "/etc/xdg").toUtf8());
    const QString withoutInstall = FileAssociations::Places::standard().systemMimeApps;
    QDir().mkpath(root.path() + "/share/applications");
    QFile entry(root.path() + "/share/applications/vimora.desktop");
    const bool written = entry.open(QIODevice::WriteOnly) && entry.write("[Desktop Entry]\n") > 0;
    entry.close();
    const QString withInstall = FileAssociations::Places::standard().systemMimeApps;
    qputenv("XDG_DATA_DIRS", savedData);
    qputenv("XDG_CONFIG_DIRS", savedConfig);
    ASSERT_TRUE(written);
    EXPECT_TRUE(withoutInstall.isEmpty());
    EXPECT_EQ(withInstall, root.path() + "/etc/xdg/mimeapps.list");
}
