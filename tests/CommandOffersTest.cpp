#include "commands/CommandOffers.h"
#include "commands/Commands.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

using namespace CommandOffers;
using C = Command;

namespace {

// The popup as a user reads it: the names of the entries shown, "-" for a
// separator, "(x)" around a disabled one, "*" after the default.
QString shown(const QList<Command> &popup, const Offers &offers)
{
    QStringList names;
    for (const Command command : popup) {
        const Offer &offer = offers[command];
        if (!offer.visible)
            continue;
        QString name = Commands::isSeparator(command) ? QStringLiteral("-") : QLatin1String(Commands::name(command));
        if (!offer.enabled)
            name = '(' + name + ')';
        if (offers.defaultEntry == command)
            name += '*';
        names.append(name);
    }
    return names.join(' ');
}

MainFacts mainFacts(ViewState state)
{
    MainFacts facts;
    facts.state = state;
    return facts;
}

} // namespace

TEST(CommandOffers, MainPopupForEachWindowState)
{
    const QString everyFileCommand = "mnuFullScreen mnuSave mnuPrint mnuClipboard - mnuWall mnuRemoveWall mnuMove - "
                                     "mnuAdd mnuRemove mnuGlobal - SFRename SFDelete (mnuUndo) SFInfo mnuShellOpen "
                                     "mnuShellEdit - mnufit mnuFull mnuZoom";
    const struct {
        ViewState state;
        QString entries;
    } table[] = {
        {ViewState::Picture, everyFileCommand},
        {ViewState::Slides, everyFileCommand},
        {ViewState::AnimatedGif, "mnuAnim - " + everyFileCommand},
        {ViewState::MovieWindowed,
         "mnuPlay (mnuStop) - mnuFullScreen* mnuSave mnuPrint mnuClipboard mnuGrab - mnuWall mnuRemoveWall mnuMove - "
         "mnuAdd mnuRemove mnuGlobal - SFRename SFDelete (mnuUndo) SFInfo mnuShellOpen mnuShellEdit - mnufit mnuFull mnuZoom"},
        {ViewState::MovieFullScreen, "mnuPlay (mnuStop) - mnuFullScreen* mnuAdd mnuRemove mnuShellOpen mnuShellEdit"},
        {ViewState::EmptyList,
         "(mnuFullScreen) (mnuSave) (mnuPrint) (mnuClipboard) - (mnuWall) mnuRemoveWall (mnuMove) - (mnuAdd) "
         "(mnuRemove) mnuGlobal - (SFRename) (SFDelete) (mnuUndo) (SFInfo) (mnuShellOpen) (mnuShellEdit) - mnufit mnuFull "
         "mnuZoom"},
    };
    for (const auto &row : table) {
        const Offers offers = mainWindow(mainFacts(row.state));
        EXPECT_EQ(shown(Commands::mainPopup(), offers), row.entries) << int(row.state);
        EXPECT_EQ(offers[C::FullScreen].caption,
                  row.state == ViewState::MovieFullScreen ? Caption::Restore : Caption::Usual);
    }
    // The last file deleted leaves an empty list, and its deletion can still be put back.
    MainFacts emptied = mainFacts(ViewState::EmptyList);
    emptied.undoAvailable = true;
    EXPECT_TRUE(mainWindow(emptied)[C::Undo].enabled);
}

TEST(CommandOffers, MainPopupFollowsThePlayerTheGifBoxAndTheLinkedTypes)
{
    MainFacts facts = mainFacts(ViewState::MovieWindowed);
    facts.movieStoppable = true;
    EXPECT_TRUE(mainWindow(facts)[C::Stop].enabled);
    EXPECT_FALSE(mainWindow(mainFacts(ViewState::Picture))[C::Grab].enabled) << "F8 grabs only a movie's frame";

    facts = mainFacts(ViewState::AnimatedGif);
    EXPECT_FALSE(mainWindow(facts)[C::Anim].checked);
    facts.animating = true;
    EXPECT_TRUE(mainWindow(facts)[C::Anim].checked);

    facts = mainFacts(ViewState::Picture);
    facts.shellOpenAvailable = false;
    EXPECT_FALSE(mainWindow(facts)[C::ShellOpen].visible);
    EXPECT_TRUE(mainWindow(facts)[C::ShellEdit].visible);

    // Alt+T, Alt+L and Alt+F are not for a movie on the whole screen.
    const Offers full = mainWindow(mainFacts(ViewState::MovieFullScreen));
    for (const Command command : {C::Index, C::Fit, C::Full})
        EXPECT_FALSE(full[command].enabled) << Commands::name(command);
    facts = mainFacts(ViewState::Picture);
    facts.fullScreenUp = true; // the full-screen view over a picture
    for (const Command command : {C::Index, C::Fit, C::Full})
        EXPECT_FALSE(mainWindow(facts)[command].enabled) << Commands::name(command);
}

TEST(CommandOffers, FullScreenPopupForEachFileClass)
{
    FullScreenFacts facts;
    facts.wired = {C::Add, C::Remove, C::ShellOpen, C::ShellEdit, C::Print, C::Save, C::Wall, C::RemoveWall};
    const QString rest = "mnuNormal* mnuZoom mnufit mnuFull - mnuAdd mnuRemove - mnuShellOpen mnuShellEdit mnuPrint "
                         "mnuSave - mnuWall mnuRemoveWall";
    facts.state = ViewState::Picture;
    EXPECT_EQ(shown(Commands::fullScreenPopup(), fullScreen(facts)), rest);
    facts.state = ViewState::AnimatedGif;
    EXPECT_EQ(shown(Commands::fullScreenPopup(), fullScreen(facts)), "mnuAnim - " + rest);
    facts.state = ViewState::MovieFullScreen;
    facts.movieStoppable = true;
    EXPECT_EQ(shown(Commands::fullScreenPopup(), fullScreen(facts)), "mnuPlay mnuStop - " + rest);

    // Hooks the main window did not wire are offered disabled.
    facts.state = ViewState::Picture;
    facts.wired = {C::Add};
    facts.shellOpenEnabled = false;
    EXPECT_EQ(shown(Commands::fullScreenPopup(), fullScreen(facts)),
              "mnuNormal* mnuZoom mnufit mnuFull - mnuAdd (mnuRemove) - (mnuShellOpen) (mnuShellEdit) (mnuPrint) "
              "(mnuSave) - (mnuWall) (mnuRemoveWall)");
}

TEST(CommandOffers, IndexPopupForPicturesIconsAndMovies)
{
    IndexFacts facts;
    for (const Command command : Commands::indexPopup())
        if (!Commands::isSeparator(command) && command != C::Open)
            facts.wired.append(command);
    const QString files = "mnuSave mnuPrint mnuClipboard - mnuWall mnuRemoveWall mnuMove - mnuAdd mnuRemove "
                          "mnuGlobal - SFRename SFDelete (mnuUndo) SFInfo mnuShellOpen mnuShellEdit";
    EXPECT_EQ(shown(Commands::indexPopup(), index(facts)), "mnuOpen* " + files);

    facts.icon = true;
    EXPECT_FALSE(index(facts)[C::Clipboard].enabled);
    facts.icon = false;

    facts.state = ViewState::MovieWindowed;
    EXPECT_EQ(shown(Commands::indexPopup(), index(facts)),
              "mnuOpen* mnuPlay (mnuStop) - mnuSave mnuPrint mnuClipboard - (mnuWall) mnuRemoveWall mnuMove - "
              "mnuAdd mnuRemove mnuGlobal - SFRename SFDelete (mnuUndo) SFInfo mnuShellOpen mnuShellEdit");

    facts.typeLinkedToVimora = true;
    EXPECT_FALSE(index(facts)[C::ShellOpen].visible) << "opening with Vimora would only come back here";
    facts.wired.clear();
    EXPECT_FALSE(index(facts)[C::Delete].enabled);
}

TEST(CommandOffers, FavouritesPopupOffersUndoOnlyWithAChore)
{
    FavouritesFacts facts;
    const QString entries = "mnuOpen* mnuSave mnuMove mnuDelete mnuRename %1 SFInfo - mnuRemove mnuClear";
    EXPECT_EQ(shown(Commands::favouritesPopup(), favourites(facts)), entries.arg("(mnuUndo)"));
    facts.undoAvailable = true;
    EXPECT_EQ(shown(Commands::favouritesPopup(), favourites(facts)), entries.arg("mnuUndo"));
}

TEST(CommandOffers, StateOfTheFileInHand)
{
    EXPECT_EQ(stateOfFile(false, false, false, false, true), ViewState::EmptyList);
    EXPECT_EQ(stateOfFile(true, false, false, false, false), ViewState::MovieWindowed);
    EXPECT_EQ(stateOfFile(true, true, false, false, false), ViewState::MovieFullScreen);
    // A picture paged to from a full-screen movie is a picture.
    EXPECT_EQ(stateOfFile(false, true, false, false, false), ViewState::Picture);
    EXPECT_EQ(stateOfFile(false, false, true, false, false), ViewState::AnimatedGif);
    EXPECT_EQ(stateOfFile(false, false, false, true, false), ViewState::Slides);
}

TEST(CommandOffers, EveryCommandHasAName)
{
    QStringList names;
    for (int i = 0; i < int(Command::Count); ++i) {
        const QString name = QLatin1String(Commands::name(Command(i)));
        EXPECT_FALSE(name.isEmpty());
        EXPECT_FALSE(names.contains(name)) << name.toStdString();
        names.append(name);
    }
}

// Popups come from the command set alone: a window that made a menu or a
// menu entry of its own would have entries no offer reaches.
TEST(CommandOffers, NoWindowBuildsAPopupOfItsOwn)
{
    // A button wired straight to a handler would run past the offers too.
    const QRegularExpression ownMenu(QStringLiteral(R"(new\s+QMenu\b|QMenu\s+\w+\s*[({;]|->addAction\(|)"
                                                    R"(->addMenu\(|->addSeparator\(|\.addAction\(|)"
                                                    R"(Q(Tool|Push|Abstract)Button::clicked,\s*this,\s*&frm)"));
    int windowFiles = 0;
    for (const char *folder : {"viewer", "index", "fullscreen", "files"}) {
        QDirIterator files(QStringLiteral(VIMORA_SOURCE_DIR "/src/") + folder, {"*.cpp", "*.h"});
        while (files.hasNext()) {
            QFile file(files.next());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            ++windowFiles;
            const QString text = QString::fromUtf8(file.readAll());
            EXPECT_FALSE(ownMenu.match(text).hasMatch())
                << file.fileName().toStdString() << " builds a menu or wires a button past the commands: " << ownMenu.match(text).captured().toStdString();
        }
    }
    EXPECT_GT(windowFiles, 40);
}
