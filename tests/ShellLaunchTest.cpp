#include "core/MessageCatalogue.h"
#include "files/ShellLaunch.h"
#include "files/VolumeControl.h"
#include "support/FakeSeams.h"
#include "system/AssociationGroups.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

TEST(ShellLaunch, ResultCodesGiveTheirTexts)
{
    const MessageCatalogue messages;
    const QList<QPair<int, QString>> cases{
        {2, "File not found"},
        {3, "Path not found"},
        {5, "Access denied"},
        {8, "Out of memory"},
        {11, "Invalid EXE file or error in EXE image"},
        {26, "A sharing violation occurred"},
        {27, "Incomplete or invalid file association"},
        {28, "DDE Time out"},
        {29, "DDE transaction failed"},
        {30, "DDE busy"},
        {31, "No association for file extension"},
        {1, "Unknown error"},
        {4, "Unknown error"},
        {6, "Unknown error"},
        {0, ""},
        {32, ""},
        {33, ""},
        {-1, ""},
    };
    for (const auto &[code, text] : cases)
        EXPECT_EQ(ShellLaunch::errorText(code, messages), text) << code;
}

TEST(ShellLaunch, XdgOpenEndingsMapToResultCodes)
{
    const QList<QPair<LaunchExit, int>> cases{
        {{true, false, 0}, ShellLaunch::Launched},
        {{false, false, 0}, 27}, // xdg-open missing
        {{true, true, 0}, 1},    // crashed
        {{true, false, 1}, 1},
        {{true, false, 2}, 2},
        {{true, false, 3}, 27},
        {{true, false, 4}, 31},
        {{true, false, 9}, 1},
    };
    for (const auto &[exit, code] : cases)
        EXPECT_EQ(ShellLaunch::resultOf(exit), code) << exit.started << exit.crashed << exit.exitCode;
}

TEST(ShellLaunch, OpenWithShellReportsWhenXdgOpenHasEnded)
{
    const MessageCatalogue messages;
    ScriptedPrompts prompts;
    RecordingLauncher launcher;

    ShellLaunch::OpenWithShell({}, launcher, prompts, messages);
    ASSERT_EQ(launcher.started.size(), 1);
    EXPECT_EQ(launcher.started[0].first, "xdg-open");
    EXPECT_EQ(launcher.started[0].second, QStringList{ShellLaunch::HomePage});
    EXPECT_TRUE(prompts.asked.isEmpty());

    launcher.watchers[0]({true, false, 4});
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(prompts.asked[0].text, "No association for file extension");
    EXPECT_EQ(prompts.asked[0].buttons, PromptButtons::Ok);
    EXPECT_EQ(prompts.asked[0].icon, PromptIcon::None);
    EXPECT_EQ(prompts.asked[0].title, "Vimora");

    ShellLaunch::OpenWithShell({}, launcher, prompts, messages);
    launcher.watchers[1]({true, false, 0});
    EXPECT_EQ(prompts.asked.size(), 1);
}

TEST(ShellLaunch, OpenWithShellChecksALocalFileFirst)
{
    QTemporaryDir root;
    const MessageCatalogue messages;
    ScriptedPrompts prompts;
    RecordingLauncher launcher;
    QFile existing(root.path() + "/here.txt");
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.close();

    ShellLaunch::OpenWithShell(root.path() + "/missing.txt", launcher, prompts, messages);
    ShellLaunch::OpenWithShell(root.path() + "/no folder/missing.txt", launcher, prompts, messages);
    ASSERT_EQ(prompts.asked.size(), 2);
    EXPECT_EQ(prompts.asked[0].text, "File not found");
    EXPECT_EQ(prompts.asked[1].text, "Path not found");
    EXPECT_TRUE(launcher.started.isEmpty());

    ShellLaunch::OpenWithShell(existing.fileName(), launcher, prompts, messages);
    EXPECT_EQ(launcher.started.size(), 1);
}

TEST(ShellLaunch, IndexShellOpenSkipsTypesLinkedToVimora)
{
    struct Case {
        const char *path;
        QSet<QString> linked;
        bool launches;
    };
    const QList<Case> cases{
        {"/p/photo.JPG", {"JPG"}, false},
        {"/p/photo.jpg", {"JPG"}, false},
        {"/p/photo.png", {"JPG"}, true},  // no code of its own
        {"/p/photo.jpg", {"BMP"}, true},  // JPG not linked
        {"/p/clip.mpeg", {"MPEG"}, false},
        {"/p/clip.mpg", {"MPEG"}, true},  // "MPG" is not one of the codes
        {"/p/X.QT", {"QT"}, false},
        {"/p/picture.rle", {"RLE"}, true}, // RLE is marked but never guarded
        {"/p/a.jpeg", {"JPG"}, true},     // "JPEG" is not one of the codes
    };
    for (const Case &c : cases) {
        RecordingLauncher launcher;
        EXPECT_EQ(ShellLaunch::indexShellOpen(c.path, c.linked, launcher), c.launches) << c.path;
        EXPECT_EQ(launcher.started.size(), c.launches ? 1 : 0) << c.path;
        if (c.launches) {
            EXPECT_EQ(launcher.started[0].second, QStringList{c.path});
        }
    }
}

TEST(ShellLaunch, TypeTextComesFromTheLastFourCharacters)
{
    const QList<QPair<QString, QString>> cases{
        {"a.JPG", "JPG"}, {"X.QT", "QT"}, {"clip.MPEG", "MPEG"}, {"b.jpeg", "JPEG"}, {"c.rm", "RM"}, {"README", "ADME"}};
    for (const auto &[path, text] : cases)
        EXPECT_EQ(AssociationGroups::typeTextOfPath(path), text) << path.toStdString();
}

TEST(ShellLaunch, EditUsesTheFirstEditorFoundForTheKind)
{
    const auto only = [](QStringList installed) {
        return [installed](const QString &name) { return installed.contains(name) ? "/usr/bin/" + name : QString(); };
    };
    EXPECT_EQ(ShellLaunch::editorFor("/p/a.jpg", only({"krita", "gimp"})), "/usr/bin/gimp");
    EXPECT_EQ(ShellLaunch::editorFor("/p/a.bmp", only({"kolourpaint"})), "/usr/bin/kolourpaint");
    EXPECT_EQ(ShellLaunch::editorFor("/p/a.avi", only({"gimp", "kdenlive"})), "/usr/bin/kdenlive");
    EXPECT_EQ(ShellLaunch::editorFor("/p/a.ppt", only({"gimp"})), "");

    RecordingLauncher launcher;
    ShellLaunch::shellEdit("/p/a.avi", launcher, only({"gimp"}));
    ShellLaunch::shellEdit("/p/a.gif", launcher, only({"gimp"}));
    ASSERT_EQ(launcher.started.size(), 2);
    EXPECT_EQ(launcher.started[0], qMakePair(QString("xdg-open"), QStringList{"/p/a.avi"}));
    EXPECT_EQ(launcher.started[1], qMakePair(QString("/usr/bin/gimp"), QStringList{"/p/a.gif"}));
}

TEST(VolumeControl, StartsTheMixerOnceThenBringsItForward)
{
    const MessageCatalogue messages;
    ScriptedPrompts prompts;
    RecordingLauncher launcher;
    launcher.nextProcessId = 100;
    const QStringList installed{"kmix", "gnome-control-center", "xdotool"};
    VolumeControl volume(launcher, prompts, messages,
                         [&](const QString &name) { return installed.contains(name) ? "/bin/" + name : QString(); });

    volume.OpenVolumeControl();
    ASSERT_EQ(launcher.started.size(), 1);
    EXPECT_EQ(launcher.started[0], qMakePair(QString("/bin/kmix"), QStringList{}));
    EXPECT_EQ(volume.VolumeTaskId(), 100);

    launcher.running = {100};
    volume.OpenVolumeControl();
    ASSERT_EQ(launcher.started.size(), 2);
    EXPECT_EQ(launcher.started[1].first, "/bin/xdotool");
    EXPECT_TRUE(launcher.started[1].second.contains("100"));

    // Closed by the user since: started afresh.
    launcher.running.clear();
    volume.OpenVolumeControl();
    ASSERT_EQ(launcher.started.size(), 3);
    EXPECT_EQ(launcher.started[2].first, "/bin/kmix");
    EXPECT_EQ(volume.VolumeTaskId(), 102); // 101 went to xdotool
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST(VolumeControl, GnomeSettingsOpenOnTheSoundPageAndNoMixerIsSaid)
{
    const MessageCatalogue messages;
    ScriptedPrompts prompts;
    RecordingLauncher launcher;
    VolumeControl gnome(launcher, prompts, messages, [](const QString &name) {
        return name == "gnome-control-center" ? QString("/bin/gnome-control-center") : QString();
    });
    gnome.OpenVolumeControl();
    ASSERT_EQ(launcher.started.size(), 1);
    EXPECT_EQ(launcher.started[0].second, QStringList{"sound"});

    VolumeControl none(launcher, prompts, messages, [](const QString &) { return QString(); });
    none.OpenVolumeControl();
    EXPECT_EQ(launcher.started.size(), 1);
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked[0].text.startsWith("No sound mixer was found"));
}

} // namespace
