#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "core/FormTexts.h"

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSettings>
#include <QTest>

TEST(MainWindowLifecycle, FirstStartAsksLanguageAndOpensTheProgramFolder)
{
    MainWindowFixture fixture;
    fixture.makeFiles(fixture.programFolder(), {"b.bmp", "a.jpg", "c.gif"});
    fixture.prompts.languages = {"EN"};
    frmMain &window = fixture.start();

    EXPECT_EQ(fixture.prompts.languageQuestions, 1);
    EXPECT_EQ(fixture.settings().read("UserDef", "Language"), "EN");
    EXPECT_EQ(fixture.context->CurrentFolder() + '/', fixture.programFolder());
    EXPECT_EQ(fixture.state->SlideSeconds, 5);
    EXPECT_TRUE(fixture.state->ShowTooltips);
    EXPECT_TRUE(ui(window).chkAnim->isChecked());
    EXPECT_FALSE(ui(window).ChkCicle->isChecked());
    EXPECT_TRUE(ui(window).Option1[1]->isChecked());
    EXPECT_EQ(ui(window).txtTime->text(), "5");
    EXPECT_EQ(ui(window).cmdNext->toolTip(), " Next picture ");

    // The first file of the list, in name order, is on show.
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"a.jpg", "b.bmp", "c.gif"}));
    EXPECT_EQ(window.windowTitle(), " a.jpg  - Vimora ");
    EXPECT_EQ(ui(window).LabNum->text(), " 1/3 ");
    EXPECT_TRUE(ui(window).cmdNext->isEnabled());
    EXPECT_FALSE(ui(window).cmdBack->isEnabled());
}

TEST(MainWindowLifecycle, StoredSettingsAreReadAndPathIsDeletedAtOnce)
{
    MainWindowFixture fixture;
    const QString photos = fixture.makeFolder("photos");
    fixture.makeFiles(photos, {"one.bmp", "two.bmp"});
    LoggingIniStore &store = fixture.settings();
    store.write("UserDef", "Language", "EN");
    store.write("UserDef", "Path", photos);
    store.write("UserDef", "xTime", "0");
    store.write("UserDef", "SWTIPS", "False");
    store.write("UserDef", "swAnim", "False");
    store.write("UserDef", "iTyp", "5");
    store.write("UserDef", "savDir", "/somewhere/else");
    frmMain &window = fixture.start();

    EXPECT_EQ(fixture.prompts.languageQuestions, 0);
    EXPECT_EQ(fixture.context->CurrentFolder(), photos);
    EXPECT_EQ(store.read("UserDef", "Path", "deleted"), "deleted");
    EXPECT_EQ(fixture.state->SlideSeconds, 1);
    EXPECT_EQ(ui(window).txtTime->text(), "1");
    EXPECT_EQ(ui(window).cmdNext->toolTip(), "");
    EXPECT_EQ(ui(window).cmdNext->accessibleName(), "Next picture"); // still named for screen readers
    EXPECT_FALSE(ui(window).chkAnim->isChecked());
    EXPECT_EQ(fixture.state->SaveFolder, "/somewhere/else");
    EXPECT_EQ(ui(window).CboType->currentIndex(), 0); // the filter always starts at All Supported
    EXPECT_EQ(window.windowTitle(), " one.bmp  - Vimora ");
}

TEST(MainWindowLifecycle, AStartThatEndedAbnormallyOpensTheProgramFolder)
{
    MainWindowFixture fixture;
    const QString photos = fixture.makeFolder("photos");
    fixture.makeFiles(photos, {"one.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    fixture.settings().write("UserDef", "Path", photos);
    fixture.start();
    EXPECT_EQ(fixture.context->CurrentFolder(), photos);
    // What a crash now would leave on disk: no folder to return to.
    const QSettings onDisk(fixture.iniPath(), QSettings::IniFormat);
    EXPECT_FALSE(onDisk.contains("UserDef/Path"));
    // And a start without a stored folder opens the program's.
    MainWindowFixture second;
    second.settings().write("UserDef", "Language", "EN");
    second.start();
    EXPECT_EQ(second.context->CurrentFolder() + '/', second.programFolder());
}

TEST(MainWindowLifecycle, ShutdownWritesTheSettingsInOrder)
{
    MainWindowFixture fixture;
    const QString photos = fixture.makeFolder("photos");
    fixture.makeFiles(photos, {"one.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    fixture.settings().write("UserDef", "Path", photos);
    frmMain &window = fixture.start();
    ui(window).HScroll1->setValue(12);
    ui(window).ChkCicle->setChecked(true);
    ui(window).Option1[0]->setChecked(true);
    fixture.settings().writeLog.clear();
    fixture.close();

    EXPECT_EQ(fixture.settings().writeLog,
              QStringList({"UserDef/xTime", "UserDef/Path", "UserDef/iTyp", "UserDef/cicle", "UserDef/savDir",
                           "UserDef/frmMainLeft", "UserDef/frmMainTop", "UserDef/opt1i0", "UserDef/swAnim"}));
    QSettings ini(fixture.iniPath(), QSettings::IniFormat);
    EXPECT_EQ(ini.value("UserDef/xTime").toString(), "12");
    EXPECT_EQ(ini.value("UserDef/Path").toString(), photos);
    EXPECT_EQ(ini.value("UserDef/iTyp").toString(), "0");
    EXPECT_EQ(ini.value("UserDef/cicle").toString(), "1");
    EXPECT_EQ(ini.value("UserDef/opt1i0").toString(), "-1");
    EXPECT_EQ(ini.value("UserDef/swAnim").toString(), "True");
    EXPECT_EQ(ini.value("UserDef/savDir").toString(), photos);
    bool numeric = false;
    ini.value("UserDef/frmMainLeft").toString().toInt(&numeric);
    EXPECT_TRUE(numeric);
    EXPECT_TRUE(fixture.state->ProgramClosing);
}

TEST(MainWindowLifecycle, CommandLineIsOneFilePathTakenWhole)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("my pictures, 2024");
    fixture.makeFiles(folder, {"a.bmp", "b c.bmp", "d.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/b c.bmp");

    EXPECT_EQ(fixture.context->CurrentFolder(), folder);
    EXPECT_EQ(window.windowTitle(), " b c.bmp  - Vimora ");
    EXPECT_EQ(ui(window).LabNum->text(), " 2/3 ");
    EXPECT_TRUE(ui(window).ChkAuto->isChecked()); // movies named on the command line play at once
    EXPECT_TRUE(ui(window).cmdBack->isEnabled());
    EXPECT_TRUE(ui(window).cmdNext->isEnabled());
}

TEST(MainWindowLifecycle, F2SwitchesTheLanguageLive)
{
    MainWindowFixture fixture;
    fixture.makeFiles(fixture.programFolder(), {"a.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start();
    EXPECT_EQ(ui(window).Option1[0]->text(), "Fit window");
    EXPECT_EQ(ui(window).cmdBack->toolTip(), " Previous picture ");

    fixture.prompts.languages = {"IT"};
    QTest::keyClick(&window, Qt::Key_F2);

    EXPECT_EQ(fixture.settings().read("UserDef", "Language"), "IT");
    EXPECT_EQ(fixture.messages.messageSection(), "msgIT");
    const MessageCatalogue &messages = fixture.messages;
    // Every caption and tooltip of the window is now the Italian text.
    for (const FormTexts::Entry &entry : FormTexts::captionsOf("frmMain")) {
        const QString italian = messages.GetMsg(entry.number, "");
        ASSERT_FALSE(italian.isEmpty()) << "no Italian text for " << entry.number;
        QObject *control = window.findChild<QObject *>(entry.control);
        ASSERT_NE(control, nullptr) << entry.control;
        const QString shown = control->property("text").toString();
        EXPECT_EQ(shown, italian) << entry.control;
    }
    for (const FormTexts::Entry &entry : FormTexts::tooltipsOf("frmMain")) {
        auto *control = window.findChild<QWidget *>(entry.control);
        ASSERT_NE(control, nullptr) << entry.control;
        EXPECT_EQ(control->toolTip(), ' ' + messages.GetMsg(entry.number, "") + ' ') << entry.control;
    }
    EXPECT_NE(ui(window).CboType->itemText(0).left(20).trimmed(), "All Supported");
}

TEST(MainWindowLifecycle, EveryControlHasAnAccessibleName)
{
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start();
    for (QWidget *control : window.findChildren<QWidget *>()) {
        const bool isInput = qobject_cast<QAbstractButton *>(control) || qobject_cast<QComboBox *>(control)
            || qobject_cast<QLineEdit *>(control) || control->objectName() == "Dir1"
            || control->objectName() == "HScroll1";
        if (!isInput || control->objectName().isEmpty() || control->parent() != ui(window).Frame1)
            continue;
        EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString() << " "
                                                          << control->metaObject()->className();
    }
}

TEST(MainWindowLifecycle, StoredFolderOnANetworkMountOrOpticalDriveIsNotReopened)
{
    for (const bool network : {true, false}) {
        MainWindowFixture fixture;
        const QString remote = fixture.makeFolder("remote");
        fixture.makeFiles(remote, {"far.bmp"});
        fixture.settings().write("UserDef", "Language", "EN");
        fixture.settings().write("UserDef", "Path", remote);
        const QList<Drive> drives{{"/", "", false, true, false}, {remote, "share", !network, true, network}};
        frmMain window(*fixture.state, *fixture.context, fixture.prompts, fixture.launcher);
        window.setDriveSource([&] { return drives; });
        window.Form_Load({});
        EXPECT_EQ(fixture.context->CurrentFolder() + '/', fixture.programFolder()) << (network ? "network" : "optical");
        window.close();
    }
}
