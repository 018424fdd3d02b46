#include "commands/CommandOffers.h"

namespace CommandOffers {
namespace {

bool isMovie(ViewState state) { return state == ViewState::MovieWindowed || state == ViewState::MovieFullScreen; }

void show(Offers &offers, std::initializer_list<Command> commands, bool visible)
{
    for (const Command command : commands)
        offers[command].visible = visible;
}

void enable(Offers &offers, std::initializer_list<Command> commands, bool enabled)
{
    for (const Command command : commands)
        offers[command].enabled = enabled;
}

} // namespace

ViewState stateOfFile(bool movie, bool movieFullScreen, bool gif, bool slides, bool listEmpty)
{
    if (listEmpty)
        return ViewState::EmptyList;
    if (movie)
        return movieFullScreen ? ViewState::MovieFullScreen : ViewState::MovieWindowed;
    if (gif)
        return ViewState::AnimatedGif;
    return slides ? ViewState::Slides : ViewState::Picture;
}

Offers mainWindow(const MainFacts &facts)
{
    using C = Command;
    Offers offers;
    const bool movie = isMovie(facts.state);
    const bool gif = facts.state == ViewState::AnimatedGif;
    show(offers, {C::Play, C::Stop, C::SepPlay, C::Grab}, movie);
    offers[C::Stop].enabled = facts.movieStoppable;
    show(offers, {C::Anim, C::SepGif}, gif);
    offers[C::Anim].checked = gif && facts.animating;
    offers[C::ShellOpen].visible = facts.shellOpenAvailable;
    if (movie)
        offers.defaultEntry = C::FullScreen;
    if (facts.state == ViewState::MovieFullScreen) {
        // Only what makes sense over a movie on the whole screen.
        offers[C::FullScreen].caption = Caption::Restore;
        show(offers, {C::Save, C::Print, C::Clipboard, C::SepX, C::Grab, C::Wall, C::RemoveWall, C::Move, C::Sep,
                      C::Global, C::Sep99, C::Rename, C::Delete, C::Info, C::SepW, C::Fit, C::Full, C::Zoom, C::Index},
             false);
        enable(offers, {C::Fit, C::Full, C::Zoom, C::Index}, false);
    }
    if (facts.state == ViewState::EmptyList)
        enable(offers, {C::Play, C::Stop, C::Anim, C::FullScreen, C::Save, C::Print, C::Clipboard, C::Grab, C::Wall,
                        C::Move, C::Add, C::Remove, C::Rename, C::Delete, C::Info, C::ShellOpen, C::ShellEdit},
               false);
    if (facts.fullScreenUp) // the index and the zoom modes wait for the main window
        enable(offers, {C::Index, C::Fit, C::Full}, false);
    offers[C::Grab].enabled = movie; // the key too: only a movie has a frame
    offers[C::Undo].enabled = facts.undoAvailable;
    if (facts.state == ViewState::MovieFullScreen)
        offers[C::Undo].visible = false;
    return offers;
}

Offers fullScreen(const FullScreenFacts &facts)
{
    using C = Command;
    Offers offers;
    const bool movie = isMovie(facts.state);
    const bool gif = facts.state == ViewState::AnimatedGif;
    show(offers, {C::Play, C::Stop, C::SepPlay}, movie);
    offers[C::Play].enabled = movie;
    offers[C::Stop].enabled = movie && facts.movieStoppable;
    show(offers, {C::Anim, C::SepGif}, gif);
    offers[C::Anim].checked = gif && facts.animating;
    for (const C hooked : {C::Add, C::Remove, C::ShellOpen, C::ShellEdit, C::Print, C::Save, C::Wall, C::RemoveWall})
        offers[hooked].enabled = facts.wired.contains(hooked);
    offers[C::ShellOpen].enabled = offers[C::ShellOpen].enabled && facts.shellOpenEnabled;
    offers.defaultEntry = C::Normal;
    return offers;
}

Offers index(const IndexFacts &facts)
{
    using C = Command;
    Offers offers;
    const bool movie = isMovie(facts.state);
    show(offers, {C::Play, C::Stop, C::SepPlay}, movie);
    offers[C::Stop].enabled = movie && facts.movieStoppable;
    offers[C::ShellOpen].visible = !facts.typeLinkedToVimora;
    for (const C hooked : {C::Save, C::Print, C::Clipboard, C::Wall, C::RemoveWall, C::Move, C::Add, C::Remove,
                           C::Global, C::Rename, C::Delete, C::Info, C::ShellOpen, C::ShellEdit})
        offers[hooked].enabled = facts.wired.contains(hooked);
    offers[C::Clipboard].enabled = offers[C::Clipboard].enabled && !facts.icon;
    offers[C::Wall].enabled = offers[C::Wall].enabled && !movie;
    offers[C::Undo].enabled = facts.wired.contains(C::Undo) && facts.undoAvailable;
    offers.defaultEntry = C::Open;
    return offers;
}

Offers favourites(const FavouritesFacts &facts)
{
    Offers offers;
    offers[Command::Undo].enabled = facts.undoAvailable;
    offers.defaultEntry = Command::Open;
    return offers;
}

} // namespace CommandOffers
