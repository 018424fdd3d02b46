// The order in which a file is chosen, shown and announced, and what
// happens to requests that arrive while one is under way: on the context
// alone, with a presenter that writes down what it is asked.
#include "context/DisplayPresenter.h"
#include "context/ViewerContext.h"
#include "core/MessageCatalogue.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace {

using MediaClass = FileTypeCatalogue::MediaClass;

struct RecordingPresenter : DisplayPresenter {
    QStringList calls;
    // Runs inside the picture's decode, as events handled meanwhile would.
    std::function<void(const QString &path)> duringDecode;

    static QString name(const QString &path) { return path.section('/', -1); }
    void clearSelection() override { calls << "clear selection"; }
    void releaseShown() override { calls << "release"; }
    bool showsAtOnce(const QString &) const override { return false; }
    void showNothing() override { calls << "nothing"; }
    void announceFile(const QString &path, MediaClass) override { calls << "announce " + name(path); }
    void openSlides(const QString &path) override { calls << "slides " + name(path); }
    void presentMovie(const QString &path, double start) override
    {
        calls << QString("movie %1 at %2").arg(name(path)).arg(start);
    }
    void presentPicture(const QString &path) override
    {
        calls << "picture " + name(path);
        if (duringDecode)
            std::exchange(duringDecode, nullptr)(path);
    }
    void enableFileCommands() override { calls << "commands"; }
    void updateNavigation() override { calls << "navigation"; }
    void followInFullScreen(MediaClass) override { calls << "full screen"; }
    void showStatusRow(MediaClass) override { calls << "status row"; }
};

struct ViewerContextTest : ::testing::Test {
    QTemporaryDir folder;
    MessageCatalogue messages;
    ViewerContext context{messages};
    RecordingPresenter presenter;
    QSignalSpy shown{&context, &ViewerContext::fileShown};

    void SetUp() override
    {
        context.setPresenter(&presenter);
        context.setFolder(folder.path());
    }
    void list(const QStringList &names, const QStringList &vanished = {})
    {
        for (const QString &name : names) {
            if (vanished.contains(name))
                continue;
            QFile file(folder.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(2048, 'x'));
        }
        context.setList(names, QString());
        context.setCurrentIndex(-1);
    }
    static ViewerContext::ShowRequest byName(const QString &name)
    {
        ViewerContext::ShowRequest request;
        request.name = name;
        return request;
    }
    static ViewerContext::ShowRequest step(int steps, bool wraps = false)
    {
        ViewerContext::ShowRequest request;
        request.steps = steps;
        request.wraps = wraps;
        return request;
    }
    QStringList shownNames() const
    {
        QStringList names;
        for (const QList<QVariant> &signal : shown)
            names << RecordingPresenter::name(signal.at(0).toString());
        return names;
    }
};

} // namespace

TEST_F(ViewerContextTest, APictureIsChosenShownAndAnnouncedInOrder)
{
    list({"a.jpg", "B.jpg", "c.jpg"});
    context.show(byName("b.JPG")); // the list's spelling wins

    EXPECT_EQ(presenter.calls, QStringList({"clear selection", "release", "announce B.jpg", "picture B.jpg",
                                            "commands", "navigation", "status row"}));
    EXPECT_EQ(context.CurrentIndex(), 1);
    EXPECT_EQ(context.CurrentFileName(), "B.jpg");
    EXPECT_EQ(context.FileTypeCode(), "JPG");
    EXPECT_EQ(context.FileSizeDisplay(), "2 K");
    EXPECT_FALSE(context.MainMovieLoaded());
    EXPECT_EQ(shownNames(), QStringList({"B.jpg"}));

    // The full-screen view follows, before the status row comes back.
    context.setFullScreenActive(true);
    presenter.calls.clear();
    context.show(step(1));
    EXPECT_EQ(presenter.calls.mid(presenter.calls.size() - 2), QStringList({"full screen", "status row"}));
    EXPECT_EQ(context.CurrentFileName(), "c.jpg");
}

TEST_F(ViewerContextTest, EachClassGoesToItsPresenter)
{
    list({"clip.mpg", "talk.pps", "gone.avi"}, {"gone.avi"});
    ViewerContext::ShowRequest movie = byName("clip.mpg");
    movie.startPosition = 12.5;
    context.show(movie);
    EXPECT_TRUE(presenter.calls.contains("movie clip.mpg at 12.5"));
    EXPECT_TRUE(context.MainMovieLoaded());
    EXPECT_EQ(context.FileTypeCode(), "MPEG");

    presenter.calls.clear();
    context.show(step(1));
    EXPECT_TRUE(presenter.calls.contains("slides talk.pps"));
    EXPECT_FALSE(context.MainMovieLoaded());

    // A movie gone since the list was read is not handed on, and the
    // slideshow's next tick is not armed; the row still tells where it is.
    presenter.calls.clear();
    context.show(step(1));
    EXPECT_EQ(presenter.calls, QStringList({"clear selection", "release", "announce gone.avi", "status row"}));
    EXPECT_TRUE(context.MainMovieLoaded());
    EXPECT_EQ(shownNames(), QStringList({"clip.mpg", "talk.pps", "gone.avi"}));
}

TEST_F(ViewerContextTest, StepsStopAtTheEndsUnlessTheSlideshowWraps)
{
    list({"a.jpg", "b.jpg"});
    context.show(byName("a.jpg"));
    presenter.calls.clear();

    context.show(step(-1));
    context.setCurrentIndex(1);
    context.show(step(1));
    // A move that stops leaves what shows as it is.
    EXPECT_EQ(presenter.calls, QStringList({"clear selection", "clear selection"}));
    EXPECT_EQ(context.CurrentIndex(), 1);

    context.show(step(1, true));
    EXPECT_EQ(context.CurrentFileName(), "a.jpg");

    // Three steps at once land where three single ones would.
    list({"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"});
    context.show(byName("a.jpg"));
    context.show(step(3));
    EXPECT_EQ(context.CurrentFileName(), "d.jpg");
    context.show(step(-9));
    EXPECT_EQ(context.CurrentFileName(), "a.jpg");
}

TEST_F(ViewerContextTest, AnEmptyListShowsNothing)
{
    list({});
    context.show(step(1));
    EXPECT_EQ(presenter.calls, QStringList({"clear selection", "release", "nothing"}));
    EXPECT_TRUE(shown.isEmpty());
}

TEST_F(ViewerContextTest, ARequestDuringADecodeSupersedesTheShowUnderWay)
{
    list({"a.jpg", "b.jpg", "c.jpg"});
    presenter.duringDecode = [this](const QString &) { context.show(byName("c.jpg")); };
    context.show(byName("a.jpg"));

    // a.jpg never got its commands, its row or its announcement: c.jpg took
    // over once the decode returned, and ran whole.
    EXPECT_EQ(presenter.calls,
              QStringList({"clear selection", "release", "announce a.jpg", "picture a.jpg", "clear selection",
                           "release", "announce c.jpg", "picture c.jpg", "commands", "navigation", "status row"}));
    EXPECT_EQ(shownNames(), QStringList({"c.jpg"}));
    EXPECT_EQ(context.CurrentFileName(), "c.jpg");
    EXPECT_FALSE(context.showUnderWay());
}

TEST_F(ViewerContextTest, StepsPressedDuringADecodeAddUpAndTheNewestNameWins)
{
    list({"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"});
    context.show(byName("a.jpg"));
    presenter.duringDecode = [this](const QString &) {
        context.show(step(1));
        context.show(step(1));
    };
    context.show(step(1)); // a to b, then two more while b decodes
    EXPECT_EQ(shownNames(), QStringList({"a.jpg", "d.jpg"}));

    presenter.duringDecode = [this](const QString &) {
        context.show(step(1));
        context.show(byName("b.jpg"));
    };
    context.show(byName("a.jpg"));
    EXPECT_EQ(shownNames().last(), "b.jpg");
    EXPECT_EQ(context.CurrentIndex(), 1);
}

TEST_F(ViewerContextTest, AFolderReadDuringADecodeEndsTheShowOfTheFolderBefore)
{
    list({"a.jpg", "b.jpg"});
    presenter.duringDecode = [this](const QString &) {
        const int listing = context.beginListing(); // another folder, found empty
        context.setList({}, QString());
        context.endListing(listing);
    };
    context.show(byName("a.jpg"));
    EXPECT_FALSE(presenter.calls.contains("commands"));
    EXPECT_FALSE(presenter.calls.contains("status row"));
    EXPECT_TRUE(shown.isEmpty());

    // The next show is not held back by it.
    list({"c.jpg"});
    context.show(byName("c.jpg"));
    EXPECT_EQ(shownNames(), QStringList({"c.jpg"}));
}

TEST_F(ViewerContextTest, ATickHandledWhileTheWindowClearsTakesOverBeforeTheDecode)
{
    list({"a.jpg", "b.jpg"});
    // Queued before the show: it runs in the show's first turn of the
    // event loop, when the old file is released and the new one not chosen.
    QTimer::singleShot(0, &context, [this] { context.show(byName("b.jpg")); });
    context.show(byName("a.jpg"));
    EXPECT_FALSE(presenter.calls.contains("picture a.jpg"));
    EXPECT_EQ(shownNames(), QStringList({"b.jpg"}));
}

TEST_F(ViewerContextTest, ANewerListingSupersedesTheOneUnderWay)
{
    const int first = context.beginListing();
    EXPECT_TRUE(context.listingUnderWay());
    const int second = context.beginListing();
    EXPECT_TRUE(context.listingSuperseded(first));
    EXPECT_FALSE(context.listingSuperseded(second));

    context.endListing(first); // the older one giving up does not end the newer
    EXPECT_TRUE(context.listingUnderWay());
    context.endListing(second);
    EXPECT_FALSE(context.listingUnderWay());

    // A refresh counts as under way from its start, before it lists.
    context.beginReread();
    EXPECT_TRUE(context.listingUnderWay());
    context.endReread();

    const int closing = context.beginListing();
    context.cancelListing();
    EXPECT_TRUE(context.listingSuperseded(closing));
    EXPECT_FALSE(context.listingUnderWay());
}

TEST_F(ViewerContextTest, AnnouncesAFolderOrModeOnlyWhenItChanges)
{
    QSignalSpy folders(&context, &ViewerContext::folderChanged);
    QSignalSpy modes(&context, &ViewerContext::modeChanged);
    context.setFolder(folder.path()); // the same one
    context.setDisplayMode(ViewerContext::DisplayMode::Fit);
    EXPECT_TRUE(folders.isEmpty());
    EXPECT_TRUE(modes.isEmpty());

    // A file shown by its full path brings its folder along.
    const QString other = folder.filePath("other");
    QDir().mkpath(other);
    QFile(other + "/x.jpg").open(QIODevice::WriteOnly);
    ViewerContext::ShowRequest request = byName(other + "/x.jpg");
    request.nameIsFullPath = true;
    context.show(request);
    ASSERT_EQ(folders.size(), 1);
    EXPECT_EQ(folders[0][0].toString(), other);
    context.setDisplayMode(ViewerContext::DisplayMode::ActualSize);
    EXPECT_EQ(modes.size(), 1);
}
