#pragma once

#include <QString>

struct AppState;
class MoviePlayer;
class ViewerContext;

// Before a file is moved, renamed or deleted, every player that holds it
// lets go: the main window's player (exact path) and, through the index's
// hook, its cell players. True when the main player let go.
bool ReleasePlayerFile(const QString &path, AppState &state, ViewerContext &context, MoviePlayer *mainPlayer);

// One player let go of the path when it holds it: stopped, at 0, no file.
// The index calls this for each cell from its ReleaseIndexPlayers hook.
bool ReleaseMoviePlayer(MoviePlayer *player, const QString &path);
