#include "platform/MoviePlayer.h"
#include "platform/MoviePlaylist.h"
#include "support/TestClips.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using Kind = MovieSource::Kind;

QString corpusFile(const QString &relative)
{
    return QStringLiteral(VIMORA_CORPUS_DIR "/") + relative;
}

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(content);
}

const char *kindName(Kind kind)
{
    switch (kind) {
    case Kind::Media:
        return "Media";
    case Kind::AsxPlaylist:
        return "AsxPlaylist";
    case Kind::ReferenceRedirector:
        return "ReferenceRedirector";
    case Kind::TextList:
        return "TextList";
    case Kind::DvdTitle:
        return "DvdTitle";
    }
    return "?";
}

struct CorpusCase {
    const char *file;
    Kind kind;
    QStringList urls; // "$self" stands for the file itself
};

} // namespace

// The playlists of the corpus, as their READMEs describe them. The remote
// entries are dead; only what is handed to the engine is checked here.
TEST(PlaylistCorpus, ResolvesEveryFileAsDescribed)
{
    const CorpusCase cases[] = {
        {"lizzy-playlists/asx/test01.asx", Kind::AsxPlaylist, {"http://www.johnsmith.com/media/Raging_Tango.mp3"}},
        {"lizzy-playlists/asx/test01.wax",
         Kind::AsxPlaylist,
         {"mms://windowsmediaserver/path/yourfile.asf", "mms://windowsmediaserver/path/yourfile.wma"}},
        {"lizzy-playlists/asx/test01.wvx",
         Kind::AsxPlaylist,
         {"mms://windowsmediaserver/path/yourfile.asf", "mms://windowsmediaserver/path/yourfile.wma",
          "mms://windowsmediaserver/path/yourfile.wmv"}},
        // The comment's own ASF path is not an entry.
        {"lizzy-playlists/asx/test02.asx", Kind::AsxPlaylist, {"mms://windowsmediaserver/path/yourfile.asf"}},
        {"lizzy-playlists/asx/test03.asx",
         Kind::AsxPlaylist,
         {"http://example.com/announcement.wma", "http://example.com:8080"}},
        // Relative REF to a file that is not there: nothing to play.
        {"lizzy-playlists/asx/test04.asx", Kind::AsxPlaylist, {}},
        {"lizzy-playlists/asx/test05.asx", Kind::AsxPlaylist, {"http://sample.microsoft.com/metafile.asx"}},
        {"lizzy-playlists/asx/test06.asx", Kind::AsxPlaylist, {"mms://ucast.proseware.com/Media1.asf"}},
        {"lizzy-playlists/asx/test07.asx", Kind::AsxPlaylist, {"mms://example.microsoft.com/media.asf"}},
        // REPEAT is read once, and its relative REF is missing.
        {"lizzy-playlists/asx/repeat.asx", Kind::AsxPlaylist, {}},
        {"lizzy-playlists/ram/test01.ram",
         Kind::TextList,
         {"rtsp://ra2.panix.com/tutorial/sample.ra", "http://www.panix.com/web/faq/multimedia/sample.ra",
          "rtsp://realserver.example.com/media/sample1.smil?screensize=\"full\""}},
        // Its one entry is a pnm:// address, a scheme no playlist may hand the player.
        {"lizzy-playlists/ram/test02.ram", Kind::TextList, {}},
        {"exiftool/Real.ram", Kind::TextList, {"rtsp://media.real.com/showcase/service/samples/rob_h_realvideo9_28.rm"}},
        {"totem-pl-parser/empty-asx.asx", Kind::AsxPlaylist, {}},
        // Two REF alternatives of one entry: the second is tried when the first fails.
        {"totem-pl-parser/pukas.wax", Kind::AsxPlaylist, {"mms://82.135.234.195/Pukas", "http://82.135.234.199/Pukas"}},
        {"totem-pl-parser/WMA9.1_98_quality_48khz_vbr_s.wma",
         Kind::ReferenceRedirector,
         {"http://195.134.224.231/wma/WMA9.1_98_quality_48khz_vbr_s.wma?MSWMExt=.asf",
          "http://195.134.224.231:80/wma/WMA9.1_98_quality_48khz_vbr_s.wma?MSWMExt=.asf"}},
        // An ASF movie under a playlist's name plays as itself.
        {"totem-pl-parser/asf-with-asx-suffix.asx", Kind::Media, {"$self"}},
        {"file-format-fixtures/playlist/sample1.asx", Kind::AsxPlaylist, {}},
        {"file-format-fixtures/playlist/sample2.asx", Kind::AsxPlaylist, {}},
        {"file-format-fixtures/other/sample.asf", Kind::Media, {"$self"}},
        {"exiftool/Real.rm", Kind::Media, {"$self"}},
    };
    for (const CorpusCase &test : cases) {
        SCOPED_TRACE(test.file);
        const QString path = corpusFile(QString::fromLatin1(test.file));
        ASSERT_TRUE(QFileInfo::exists(path));
        const MovieSource source = MoviePlaylist::resolve(path);
        EXPECT_STREQ(kindName(source.kind), kindName(test.kind));
        QStringList expected = test.urls;
        expected.replaceInStrings(QStringLiteral("$self"), QDir::cleanPath(path));
        EXPECT_EQ(source.urls, expected);
        EXPECT_EQ(source.isEmpty(), expected.isEmpty());
        EXPECT_TRUE(source.dvdDevice.isEmpty());
    }
}

TEST(Playlist, RelativeRefsAreTakenFromThePlaylistsFolder)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("clips/first.avi"), "media");
    writeFile(dir.filePath("clips/My Movie.avi"), "media");
    writeFile(dir.filePath("clips/Shouting.AVI"), "media");
    writeFile(dir.filePath("list.asx"), "<asx version=\"3.0\">\n"
                                        "<entry><ref href=\"clips/first.avi\"/></entry>\n"
                                        "<entry><ref href=\"clips\\My Movie.avi\"/></entry>\n"
                                        "<entry><ref href=\"clips/My%20Movie.avi\"/></entry>\n"
                                        "<entry><ref href=\"./clips/../clips/shouting.avi\"/></entry>\n"
                                        "<entry><ref href=\"clips/missing.avi\"/></entry>\n"
                                        "<entry><ref href=\"" + QUrl::fromLocalFile(dir.filePath("clips/first.avi")).toEncoded()
                                        + "\"/></entry>\n"
                                          "</asx>\n");
    const MovieSource source = MoviePlaylist::resolve(dir.filePath("list.asx"));
    EXPECT_EQ(source.kind, Kind::AsxPlaylist);
    const QStringList expected = {dir.filePath("clips/first.avi"), dir.filePath("clips/My Movie.avi"),
                                  dir.filePath("clips/My Movie.avi"), dir.filePath("clips/Shouting.AVI"),
                                  dir.filePath("clips/first.avi")};
    EXPECT_EQ(source.urls, expected);
}

TEST(Playlist, TagsAndAttributesAreCaseBlind)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("a.wmv"), "media");
    const QByteArray asx = "<AsX VeRsIoN=\"3.0\"><EnTrY><TiTlE>x</TiTlE><ReF HrEf = 'a.wmv' /></eNtRy></aSx>";
    EXPECT_EQ(MoviePlaylist::asxEntries(asx, dir.path()), QStringList{dir.filePath("a.wmv")});
}

TEST(Playlist, EntriesWithoutRefAreSkipped)
{
    const QByteArray asx = "<asx version=\"3.0\">\n"
                           "  <entry><title>no ref</title></entry>\n"
                           "  <entry><ref/><ref href=\"\"/></entry>\n"
                           "  <entry><ref href=\"http://example.com/two.asf\"/></entry>\n"
                           "</asx>";
    EXPECT_EQ(MoviePlaylist::asxEntries(asx, QStringLiteral("/nowhere")), QStringList{"http://example.com/two.asf"});
}

TEST(Playlist, ForgivesBrokenXml)
{
    // A bare "&", an ANSI byte, an unclosed entry and no closing tag.
    const QByteArray asx = "<ASX version=\"3.0\"><Title>Rock & Roll \xA9</Title>"
                           "<ENTRY><REF HREF=\"http://a.example/one.asf?x=1&amp;y=2\">"
                           "<ENTRY><REF HREF=http://a.example/two.asf>";
    const QStringList expected = {"http://a.example/one.asf?x=1&y=2", "http://a.example/two.asf"};
    EXPECT_EQ(MoviePlaylist::asxEntries(asx, QStringLiteral("/nowhere")), expected);
}

TEST(Playlist, ReadsUtf16Playlists)
{
    QTemporaryDir dir;
    QStringEncoder encoder(QStringEncoder::Utf16LE);
    const QByteArray asx = QByteArray("\xFF\xFE")
        + encoder(QStringLiteral("<asx version=\"3.0\"><entry><ref href=\"mms://h/\u00e9t\u00e9.asf\"/></entry></asx>"));
    writeFile(dir.filePath("wide.asx"), asx);
    const MovieSource source = MoviePlaylist::resolve(dir.filePath("wide.asx"));
    EXPECT_EQ(source.kind, Kind::AsxPlaylist);
    EXPECT_EQ(source.urls, QStringList{QStringLiteral("mms://h/\u00e9t\u00e9.asf")});
}

TEST(Playlist, EntryRefIsFollowedOneLevel)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("clip.avi"), "media");
    writeFile(dir.filePath("deep.avi"), "media");
    writeFile(dir.filePath("top.asx"), "<asx><entryref href=\"middle.asx\"/>"
                                       "<entry><ref href=\"http://example.com/after.asf\"/></entry></asx>");
    writeFile(dir.filePath("middle.asx"), "<asx><entry><ref href=\"clip.avi\"/></entry>"
                                          "<entryref href=\"bottom.asx\"/><entryref href=\"middle.asx\"/></asx>");
    writeFile(dir.filePath("bottom.asx"), "<asx><entry><ref href=\"deep.avi\"/></entry></asx>");
    const MovieSource source = MoviePlaylist::resolve(dir.filePath("top.asx"));
    const QStringList expected = {dir.filePath("clip.avi"), QStringLiteral("http://example.com/after.asf")};
    EXPECT_EQ(source.urls, expected);

    // A playlist that names itself ends.
    writeFile(dir.filePath("self.asx"), "<asx><entryref href=\"self.asx\"/><entry><ref href=\"clip.avi\"/></entry></asx>");
    EXPECT_EQ(MoviePlaylist::resolve(dir.filePath("self.asx")).urls, QStringList{dir.filePath("clip.avi")});
}

TEST(Playlist, ReferenceRedirectorTakesRefsInOrder)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("local.asf"), "media");
    writeFile(dir.filePath("redirect.asx"), "[Reference]\r\nref1=local.asf\r\nRef2=http://example.com/b.asf\r\n"
                                            "Title=not an entry\r\nREF3 = mms://example.com/c\r\n");
    const MovieSource source = MoviePlaylist::resolve(dir.filePath("redirect.asx"));
    EXPECT_EQ(source.kind, Kind::ReferenceRedirector);
    const QStringList expected = {dir.filePath("local.asf"), "http://example.com/b.asf", "mms://example.com/c"};
    EXPECT_EQ(source.urls, expected);
}

TEST(Playlist, RamListsTakeOneEntryPerLine)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("song.rm"), "media");
    writeFile(dir.filePath("sub/other.ra"), "media");
    writeFile(dir.filePath("list.ram"), "# comment\r\n\r\n  song.rm  \r\nsub/other.ra\r\nmissing.rm\r\n"
                                        "rtsp://example.com/live.rm\r\n--stop--\r\nhttp://example.com/never.rm\r\n");
    const MovieSource source = MoviePlaylist::resolve(dir.filePath("list.ram"));
    EXPECT_EQ(source.kind, Kind::TextList);
    const QStringList expected = {dir.filePath("song.rm"), dir.filePath("sub/other.ra"), "rtsp://example.com/live.rm"};
    EXPECT_EQ(source.urls, expected);
}

TEST(Playlist, MediaUnderAPlaylistNameIsSniffed)
{
    QTemporaryDir dir;
    const struct {
        const char *name;
        QByteArray head;
    } cases[] = {
        {"asf.lsf", QByteArray::fromHex("3026B2758E66CF11A6D900AA0062CE6C") + QByteArray(64, '\0')},
        {"riff.asx", QByteArray("RIFF\x10\0\0\0AVI LIST", 16)},
        {"real.ram", QByteArray(".RMF\0\0\0\x12\0\x01", 10)},
        {"mpeg.lsx", QByteArray("\0\0\x01\xBA\x44\0\x04\0", 8)},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.name);
        writeFile(dir.filePath(test.name), test.head);
        const MovieSource source = MoviePlaylist::resolve(dir.filePath(test.name));
        EXPECT_EQ(source.kind, Kind::Media);
        EXPECT_EQ(source.urls, QStringList{dir.filePath(test.name)});
    }
}

TEST(Playlist, PlainMoviesAndUrlsPassThrough)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("movie.avi"), QByteArray("RIFF\0\0\0\0AVI ", 12));
    EXPECT_EQ(MoviePlaylist::resolve(dir.filePath("movie.avi")).urls, QStringList{dir.filePath("movie.avi")});
    EXPECT_TRUE(MoviePlaylist::resolve(dir.filePath("absent.avi")).isEmpty());
    EXPECT_EQ(MoviePlaylist::resolve("mms://example.com/live").urls, QStringList{"mms://example.com/live"});
}

TEST(Playlist, PlaysAnAsxThatNamesALocalClip)
{
    if (!TestClips::ffmpegAvailable())
        GTEST_SKIP() << "ffmpeg is not installed: no test clips";
    const QString clip = TestClips::clip(QStringLiteral("asf"));
    ASSERT_FALSE(clip.isEmpty());
    QTemporaryDir dir;
    ASSERT_TRUE(QFile::copy(clip, dir.filePath("Clip.wmv")));
    // Missing entries are dropped; one that exists but does not play is
    // left for the next.
    writeFile(dir.filePath("broken.wmv"), QByteArray::fromHex("3026B2758E66CF11A6D900AA0062CE6C") + QByteArray(200, 'x'));
    writeFile(dir.filePath("show.asx"), "<ASX version=\"3.0\"><ENTRY><REF HREF=\"missing.wmv\"/>"
                                        "<REF HREF=\"broken.wmv\"/><REF HREF=\"clip.wmv\"/></ENTRY></ASX>");
    EXPECT_EQ(MoviePlaylist::resolve(dir.filePath("show.asx")).urls,
              (QStringList{dir.filePath("broken.wmv"), dir.filePath("Clip.wmv")}));
    MoviePlayer player;
    int failures = 0;
    QObject::connect(&player, &MoviePlayer::mediaFailed, &player, [&] { ++failures; });
    player.setAutoStart(true);
    player.setFileName(dir.filePath("show.asx"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return player.PlayState() == MoviePlayer::Playing; }, 8000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return player.naturalSize().isValid(); }, 3000));
    EXPECT_EQ(player.naturalSize(), QSize(TestClips::Width, TestClips::Height));
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(player.FileName(), dir.filePath("show.asx"));
}

TEST(Playlist, EmptyPlaylistLeavesThePlayerEmpty)
{
    MoviePlayer player;
    int failures = 0;
    QObject::connect(&player, &MoviePlayer::mediaFailed, &player, [&] { ++failures; });
    player.setAutoStart(true);
    player.setFileName(corpusFile(QStringLiteral("totem-pl-parser/empty-asx.asx")));
    EXPECT_FALSE(player.hasEngine());
    EXPECT_EQ(player.PlayState(), MoviePlayer::Closed);
    EXPECT_EQ(failures, 1);
}

// ---------------------------------------------------------------- DVD

TEST(PlaylistDvd, IfoNotInAVideoTsFolderIsNothing)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("loose/VIDEO_TS.IFO"), "DVDVIDEO-VMG");
    EXPECT_TRUE(MoviePlaylist::resolve(dir.filePath("loose/VIDEO_TS.IFO")).isEmpty());
    writeFile(dir.filePath("disc/video_ts/vts_01_0.ifo"), "DVDVIDEO-VTS");
    const MovieSource source = MoviePlaylist::resolve(dir.filePath("disc/video_ts/vts_01_0.ifo"));
    EXPECT_EQ(source.kind, Kind::DvdTitle);
    EXPECT_EQ(source.dvdDevice, dir.filePath("disc"));
}

TEST(PlaylistDvd, EveryIfoOfTheFolderPlaysTheDisc)
{
    QString whyNot;
    const QString root = TestClips::dvdFolder(&whyNot);
    if (root.isEmpty())
        GTEST_SKIP() << "no DVD folder: " << whyNot.toStdString();
    for (const QString &name : {QStringLiteral("VIDEO_TS.IFO"), QStringLiteral("VTS_01_0.IFO")}) {
        SCOPED_TRACE(name.toStdString());
        const QString ifo = root + QStringLiteral("/VIDEO_TS/") + name;
        ASSERT_TRUE(QFileInfo::exists(ifo));
        const MovieSource source = MoviePlaylist::resolve(ifo);
        EXPECT_EQ(source.kind, Kind::DvdTitle);
        EXPECT_EQ(source.urls, QStringList{QStringLiteral("dvd://")});
        EXPECT_EQ(source.dvdDevice, root);

        MoviePlayer player;
        int failures = 0;
        QObject::connect(&player, &MoviePlayer::mediaFailed, &player, [&] { ++failures; });
        player.setAutoStart(true);
        player.setFileName(ifo);
        EXPECT_TRUE(QTest::qWaitFor([&] { return player.PlayState() == MoviePlayer::Playing || failures; }, 8000));
        EXPECT_EQ(player.PlayState(), MoviePlayer::Playing);
        EXPECT_EQ(failures, 0);
        EXPECT_TRUE(QTest::qWaitFor([&] { return player.naturalSize().isValid(); }, 3000));
        EXPECT_EQ(player.naturalSize().height(), 576);
    }
}

// A downloaded playlist names what the player may open: streams of the kinds
// playlists were made for pass, the player's own schemes are broken entries,
// in every kind of list.
TEST(Playlist, OnlyFilesAndStreamSchemesPass)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("clip.avi"), "media");
    const QStringList refused = {"lavf://file:/etc/passwd", "fd://0", "edl://clip.avi,0,1", "av://v4l2:/dev/video0",
                                 "memory://data", "ytdl://x", "dvd://", "smb://server/share/a.avi",
                                 "ftp://example.com/a.avi", "javascript://alert"};
    const QStringList passing = {"http://example.com/a.asf", "HTTPS://example.com/a", "mms://example.com/live",
                                 "mmsh://example.com/live", "rtsp://example.com/s", "rtmp://example.com/s"};
    for (const QString &scheme : refused)
        EXPECT_TRUE(MoviePlaylist::playableTarget(scheme, dir.path()).isEmpty()) << qPrintable(scheme);
    for (const QString &scheme : passing)
        EXPECT_EQ(MoviePlaylist::playableTarget(scheme, dir.path()), scheme);

    QByteArray asx = "<asx version=\"3.0\">\n";
    QByteArray ram;
    QByteArray reference = "[Reference]\n";
    int n = 1;
    for (const QString &entry : refused + QStringList{"clip.avi"}) {
        asx += "<entry><ref href=\"" + entry.toUtf8() + "\"/></entry>\n";
        ram += entry.toUtf8() + "\n";
        reference += "Ref" + QByteArray::number(n++) + "=" + entry.toUtf8() + "\n";
    }
    writeFile(dir.filePath("list.asx"), asx + "</asx>\n");
    writeFile(dir.filePath("list.ram"), ram);
    writeFile(dir.filePath("list.wax"), reference);
    for (const char *list : {"list.asx", "list.ram", "list.wax"})
        EXPECT_EQ(MoviePlaylist::resolve(dir.filePath(list)).urls, QStringList{dir.filePath("clip.avi")}) << list;
}
