#include "support/FakeSeams.h"
#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "core/ProfileReader.h"
#include "core/SettingsStore.h"
#include "display/AnimationView.h"
#include "output/Wallpaper.h"
#include "platform/PictureLoader.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <QtEndian>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr quint16 Huge = 60000;

template <typename T>
void put(QByteArray &bytes, qsizetype at, T value)
{
    qToLittleEndian<T>(value, bytes.data() + at);
}

QByteArray hugeBmp(quint32 compression)
{
    QByteArray bytes(54 + 64, '\0');
    bytes[0] = 'B';
    bytes[1] = 'M';
    put<quint32>(bytes, 2, quint32(bytes.size()));
    put<quint32>(bytes, 10, 54);
    put<quint32>(bytes, 14, 40);
    put<qint32>(bytes, 18, Huge);
    put<qint32>(bytes, 22, Huge);
    put<quint16>(bytes, 26, 1);
    put<quint16>(bytes, 28, compression == 1 ? 8 : 24);
    put<quint32>(bytes, 30, compression);
    return bytes;
}

// A real JPEG whose start-of-frame claims 60000 x 60000.
QByteArray hugeJpeg()
{
    QImage small(16, 16, QImage::Format_RGB32);
    small.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    small.save(&buffer, "JPG");
    const qsizetype sof = bytes.indexOf(QByteArray("\xff\xc0", 2));
    if (sof >= 0) {
        qToBigEndian<quint16>(Huge, bytes.data() + sof + 5);
        qToBigEndian<quint16>(Huge, bytes.data() + sof + 7);
    }
    return bytes;
}

// A placeable WMF whose box spans the whole 16-bit range at one unit per inch.
QByteArray hugeWmf()
{
    QByteArray bytes(22 + 18 + 14 + 6, '\0');
    put<quint32>(bytes, 0, 0x9AC6CDD7);
    put<qint16>(bytes, 6, -32768);
    put<qint16>(bytes, 8, -32768);
    put<qint16>(bytes, 10, 32767);
    put<qint16>(bytes, 12, 32767);
    put<quint16>(bytes, 14, 1);
    quint16 checksum = 0;
    for (int word = 0; word < 10; ++word)
        checksum ^= qFromLittleEndian<quint16>(bytes.constData() + 2 * word);
    put<quint16>(bytes, 20, checksum);
    put<quint16>(bytes, 22, 1);
    put<quint16>(bytes, 24, 9);
    put<quint16>(bytes, 26, 0x0300);
    put<quint32>(bytes, 28, quint32((bytes.size() - 22) / 2));
    put<quint32>(bytes, 34, 7);
    // A rectangle over the whole box, then the end record.
    put<quint32>(bytes, 40, 7);
    put<quint16>(bytes, 44, 0x041B);
    put<qint16>(bytes, 46, 32767);
    put<qint16>(bytes, 48, 32767);
    put<qint16>(bytes, 50, -32768);
    put<qint16>(bytes, 52, -32768);
    put<quint32>(bytes, 54, 3);
    return bytes;
}

// An EMF whose frame is just inside what the reader takes (100 m square).
QByteArray hugeEmf()
{
    QByteArray bytes(108 + 20, '\0');
    put<quint32>(bytes, 0, 1);
    put<quint32>(bytes, 4, 108);
    put<qint32>(bytes, 16, 2'000'000'000);
    put<qint32>(bytes, 20, 2'000'000'000);
    put<qint32>(bytes, 32, 9'999'990);
    put<qint32>(bytes, 36, 9'999'990);
    put<quint32>(bytes, 40, 0x464D4520);
    put<quint32>(bytes, 44, 0x10000);
    put<quint32>(bytes, 48, quint32(bytes.size()));
    put<quint32>(bytes, 52, 2);
    put<quint16>(bytes, 56, 1);
    put<qint32>(bytes, 72, 1920);
    put<qint32>(bytes, 76, 1080);
    put<qint32>(bytes, 80, 508);
    put<qint32>(bytes, 84, 286);
    put<quint32>(bytes, 108, 14);
    put<quint32>(bytes, 112, 20);
    put<quint32>(bytes, 124, 20);
    return bytes;
}

// A one-pixel GIF on a 60000 x 60000 screen; animations are read apart.
QByteArray hugeGif()
{
    QByteArray bytes("GIF89a", 6);
    bytes += QByteArray(7, '\0');
    put<quint16>(bytes, 6, Huge);
    put<quint16>(bytes, 8, Huge);
    bytes[10] = char(0x80); // a global table of two colours
    bytes += QByteArray("\0\0\0\xff\xff\xff", 6);
    bytes += QByteArray("\x2c\0\0\0\0\x01\0\x01\0\0\x02\x02\x44\x01\0\x3b", 17);
    return bytes;
}

struct HugePicture {
    const char *name;
    QByteArray bytes;
};

QList<HugePicture> hugePictures()
{
    return {{"huge.bmp", hugeBmp(0)}, {"huge-rle.bmp", hugeBmp(1)}, {"huge.jpg", hugeJpeg()}, {"huge.gif", hugeGif()},
            {"huge.wmf", hugeWmf()},  {"huge.emf", hugeEmf()}};
}

QString writeFile(const QString &folder, const QString &name, const QByteArray &bytes)
{
    const QString path = folder + '/' + name;
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
    return path;
}

// Refused, or drawn no larger than the metafile limit, with or without a fit.
TEST(HostileInput, PicturesClaimingHugeSizesAreRefusedOrScaled)
{
    QTemporaryDir dir;
    for (const HugePicture &picture : hugePictures()) {
        SCOPED_TRACE(picture.name);
        const QString path = writeFile(dir.path(), picture.name, picture.bytes);
        PictureLoader::Options fitted;
        fitted.fitInto = QSize(800, 600);
        for (const PictureLoader::Options &options : {PictureLoader::Options{}, fitted}) {
            const PictureLoader::Picture loaded = PictureLoader::load(path, options);
            if (loaded.isNull())
                continue;
            const QSize bound = options.fitInto.isValid() ? options.fitInto
                                                          : QSize(PictureLoader::MaxMetafileSide, PictureLoader::MaxMetafileSide);
            EXPECT_LE(loaded.image.width(), bound.width());
            EXPECT_LE(loaded.image.height(), bound.height());
        }
        PictureLoader::readNaturalSize(path); // must merely return
    }
}

TEST(HostileInput, MainWindowStepsOverPicturesClaimingHugeSizes)
{
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    const QString folder = fixture.makeFolder("huge");
    for (const HugePicture &picture : hugePictures())
        writeFile(folder, picture.name, picture.bytes);
    frmMain &window = fixture.start();
    for (const bool fit : {false, true}) {
        for (const HugePicture &picture : hugePictures()) {
            SCOPED_TRACE(qPrintable(picture.name + QString(fit ? " fitted" : " actual size")));
            ui(window).Option1[fit ? 0 : 1]->setChecked(true);
            window.Mostra_Image(false, folder + '/' + picture.name, true);
            const QImage shown = ui(window).ImgEgg->picture();
            if (fit) { // drawn for the window, not at the largest size
                EXPECT_LE(shown.width(), qreal(window.width()) * window.devicePixelRatio());
            }
            EXPECT_LE(qint64(shown.width()) * shown.height(), PictureLoader::MaxPixels);
            EXPECT_LE(shown.width(), PictureLoader::MaxMetafileSide);
            EXPECT_LE(shown.height(), PictureLoader::MaxMetafileSide);
            EXPECT_TRUE(ui(window).WebBrowser1->isEmpty()); // no animation plays a refused picture
        }
    }
}

// --- File names that a shell would take for commands or options ----------

const QStringList HostileNames{"$(touch x).jpg", ";rm -rf ~.jpg", "-x.jpg", "`touch x`.jpg"};

// Whether `argument` names `path`, as itself or as a file URI.
bool namesFile(const QString &argument, const QString &path)
{
    return argument == path || QUrl(argument).toLocalFile() == path;
}

TEST(HostileInput, WallpaperSettersGetThePathAsOneAbsoluteArgument)
{
    const Wallpaper::Installed everything = [](const QString &) { return true; };
    for (const QString &name : HostileNames) {
        const QString path = QDir::tempPath() + '/' + name;
        for (Wallpaper::Desktop desktop : {Wallpaper::Desktop::Gnome, Wallpaper::Desktop::Cinnamon,
                                           Wallpaper::Desktop::Mate, Wallpaper::Desktop::Kde, Wallpaper::Desktop::Xfce,
                                           Wallpaper::Desktop::Lxqt, Wallpaper::Desktop::Lxde,
                                           Wallpaper::Desktop::Other}) {
            SCOPED_TRACE(qPrintable(name + " desktop " + QString::number(int(desktop))));
            const QList<Wallpaper::Command> commands = Wallpaper::setCommands(desktop, path, everything);
            ASSERT_FALSE(commands.isEmpty());
            const QStringList &arguments = commands.first().arguments;
            EXPECT_EQ(std::count_if(arguments.begin(), arguments.end(),
                                    [&](const QString &a) { return namesFile(a, path); }),
                      1);
        }
    }
}

TEST(HostileInput, DefaultProgramNeverTakesANameForAnOption)
{
    const QString previous = QDir::currentPath();
    QTemporaryDir here;
    ASSERT_TRUE(QDir::setCurrent(here.path()));
    RecordingLauncher launcher;
    launcher.openWithDefault("-x.jpg");
    launcher.openWithDefault("/tmp/-x.jpg");
    launcher.openWithDefault("https://example.org/-x");
    // The working folder deleted meanwhile, as the browsed folder can be.
    here.remove();
    launcher.openWithDefault("-x.jpg");
    QDir::setCurrent(previous);
    ASSERT_EQ(launcher.started.size(), 4);
    EXPECT_EQ(launcher.started[0].second, QStringList{here.path() + "/-x.jpg"});
    EXPECT_EQ(launcher.started[1].second, QStringList{"/tmp/-x.jpg"});
    EXPECT_EQ(launcher.started[2].second, QStringList{"https://example.org/-x"});
    EXPECT_EQ(launcher.started[3].second, QStringList{"./-x.jpg"});
}

TEST(HostileInput, HostileNamesOpenPrintBecomeWallpaperAndLaunchAsThemselves)
{
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    const QString folder = fixture.makeFolder("hostile");
    const QString out = fixture.makeFolder("pdf");
    QImage picture(48, 32, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    for (const QString &name : HostileNames)
        ASSERT_TRUE(picture.save(folder + '/' + name, "JPG"));
    frmMain &window = fixture.start();
    int printed = 0;
    for (const QString &name : HostileNames) {
        SCOPED_TRACE(qPrintable(name));
        const QString path = folder + '/' + name;
        window.Mostra_Image(false, path, true);
        EXPECT_EQ(ui(window).ImgEgg->picture().size(), QSize(48, 32));

        const QString pdf = out + QStringLiteral("/%1.pdf").arg(++printed);
        fixture.prompts.printers = {{true, pdf, 1}};
        ui(window).cmdPrint->click();
        EXPECT_GT(QFileInfo(pdf).size(), 0);

        fixture.launcher.started.clear();
        ui(window).mnuWall->trigger();
        ASSERT_EQ(fixture.launcher.started.size(), 1);
        const QStringList wallpaper = fixture.launcher.started[0].second;
        ASSERT_EQ(wallpaper.size(), 1);
        EXPECT_TRUE(QFileInfo(wallpaper[0]).isAbsolute());

        fixture.launcher.started.clear();
        window.mnuShellOpen_Click();
        window.mnuShellEdit_Click(); // an installed editor, or the default program
        ASSERT_EQ(fixture.launcher.started.size(), 2);
        EXPECT_EQ(fixture.launcher.started[0].second, QStringList{path});
        EXPECT_EQ(fixture.launcher.started[1].second, QStringList{path});
    }
    qputenv("XDG_CURRENT_DESKTOP", "");
    EXPECT_TRUE(fixture.prompts.asked.isEmpty());
}

// The real launcher, with an xdg-open of our own that writes down what it got:
// a shell between them would run the names' commands in the working folder.
TEST(HostileInput, TheRealLauncherHandsEachNameOnAsOneArgument)
{
    QTemporaryDir root;
    ASSERT_TRUE(root.isValid());
    const QString bin = root.path() + "/bin";
    const QString pictures = root.path() + "/pictures";
    const QString record = root.path() + "/arguments";
    QDir().mkpath(bin);
    QDir().mkpath(pictures);
    QFile program(bin + "/xdg-open");
    ASSERT_TRUE(program.open(QIODevice::WriteOnly));
    program.write("#!/bin/sh\nfor a in \"$@\"; do printf '%s|' \"$a\"; done >> '" + QFile::encodeName(record)
                  + "'\necho >> '" + QFile::encodeName(record) + "'\n");
    program.close();
    program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(bin) + ':' + path);
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(pictures));

    ProcessLauncher launcher;
    QStringList expected;
    for (const QString &name : HostileNames) {
        const QString picture = pictures + '/' + name;
        EXPECT_TRUE(launcher.openWithDefault(picture).started);
        expected << picture + '|';
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                QFile written(record);
                return written.open(QIODevice::ReadOnly) && written.readAll().count('\n') == expected.size();
            },
            10000));
    }
    QDir::setCurrent(previous);
    qputenv("PATH", path);
    QFile written(record);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(written.readAll()).split('\n', Qt::SkipEmptyParts), expected);
    EXPECT_EQ(QDir(pictures).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

// --- Damaged settings and message files -----------------------------------

struct DamagedFile {
    const char *what;
    QByteArray bytes;
};

QList<DamagedFile> damagedFiles()
{
    QByteArray junk(4096, '\0');
    for (int i = 0; i < junk.size(); ++i)
        junk[i] = char((i * 131 + 7) % 256);
    const QByteArray huge = "[UserDef]\nLanguage=" + QByteArray(1024 * 1024, 'A') + "\nSlide=" + QByteArray(1024 * 1024, '9') + "\n";
    QByteArray utf16("\xff\xfe", 2);
    for (const char c : QByteArray("[UserDef]\r\nLanguage=IT\r\nSlide=3\r\n"))
        utf16 += QByteArray(1, c) + '\0';
    return {{"broken lines", "[UserDef\nLanguage\n=IT\n[\n]]]\nSlide==\n\"unterminated=\n[UserDef]\nSlide\n"},
            {"huge values", huge},
            {"binary junk", junk},
            {"wrong encoding", utf16},
            {"half a line", "[UserDef]\nLangu"}};
}

TEST(HostileInput, DamagedSettingsFileGivesDefaults)
{
    QTemporaryDir dir;
    for (const DamagedFile &damaged : damagedFiles()) {
        SCOPED_TRACE(damaged.what);
        const QString path = writeFile(dir.path(), "Vimora.ini", damaged.bytes);
        IniSettingsStore store(path);
        EXPECT_EQ(store.readInt("UserDef", "Slide", 5), 5);
        EXPECT_TRUE(store.readBool("UserDef", "Missing", true));
        if (damaged.bytes.size() > 2 * 1024 * 1024) { // a huge value is read whole, not cut or lost
            EXPECT_EQ(store.read("UserDef", "Language", "EN"), QString(1024 * 1024, 'A'));
        }
        // The file stays usable for the next write.
        store.write("UserDef", "Written", "1");
        store.flush();
        EXPECT_EQ(IniSettingsStore(path).read("UserDef", "Written"), "1");
    }
}

TEST(HostileInput, DamagedMessageFileGivesDefaults)
{
    QTemporaryDir dir;
    for (const DamagedFile &damaged : damagedFiles()) {
        SCOPED_TRACE(damaged.what);
        const QString path = writeFile(dir.path(), "PRMSG", damaged.bytes);
        EXPECT_EQ(ProfileReader::readText(path, "Missing", "1", "default"), "default");
        EXPECT_LE(ProfileReader::readText(path, "UserDef", "Language", "EN").size(), ProfileReader::MaxValueLength);
        EXPECT_LE(ProfileReader::readText(path, "UserDef", "Slide", "5").size(), ProfileReader::MaxValueLength);
    }
}

TEST(HostileInput, MainWindowStartsOverDamagedSettingsAndMessageFiles)
{
    for (const DamagedFile &damaged : damagedFiles()) {
        SCOPED_TRACE(damaged.what);
        MainWindowFixture fixture;
        writeFile(fixture.programFolder(), "PRMSG", damaged.bytes);
        QDir().mkpath(QFileInfo(fixture.iniPath()).path());
        writeFile(QFileInfo(fixture.iniPath()).path(), "Vimora.ini", damaged.bytes);
        fixture.settings().flush(); // takes the damaged file in
        frmMain &window = fixture.start();
        EXPECT_EQ(fixture.state->SlideSeconds, 5);
        EXPECT_EQ(fixture.messages.GetMsg(1, "default"), "default");
        EXPECT_TRUE(window.isVisible());
        fixture.close();
        EXPECT_EQ(QSettings(fixture.iniPath(), QSettings::IniFormat).status(), QSettings::NoError);
    }
}

// Two programs closing at once, as two processes: in one process QSettings
// shares a single cache per file and would hide the race.
TEST(HostileInput, WritersClosingAtOnceLeaveAReadableFile)
{
    QTemporaryDir dir;
    const QString path = dir.path() + "/Vimora.ini";
    const auto writer = [&](const QString &value) {
        const pid_t child = ::fork();
        if (child != 0)
            return child;
        for (int round = 0; round < 40; ++round) {
            IniSettingsStore store(path);
            for (int key = 0; key < 20; ++key)
                store.write("UserDef", QStringLiteral("Key%1").arg(key), value);
            store.write("UserDef", "Owner", value);
        }
        ::_exit(0);
    };
    const pid_t first = writer(QStringLiteral("first"));
    const pid_t second = writer(QStringLiteral("second"));
    for (const pid_t child : {first, second}) {
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }

    QSettings parsed(path, QSettings::IniFormat);
    EXPECT_EQ(parsed.status(), QSettings::NoError);
    const QString owner = parsed.value("UserDef/Owner").toString();
    EXPECT_TRUE(owner == "first" || owner == "second") << qPrintable(owner);
    for (int key = 0; key < 20; ++key) {
        const QString value = parsed.value(QStringLiteral("UserDef/Key%1").arg(key)).toString();
        EXPECT_TRUE(value == "first" || value == "second") << key << qPrintable(value);
    }
}

} // namespace
