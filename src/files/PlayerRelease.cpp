#include "files/PlayerRelease.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "platform/MoviePlayer.h"

#include <QCoreApplication>

bool ReleaseMoviePlayer(MoviePlayer *player, const QString &path)
{
    if (!player || path.isEmpty() || player->FileName() != path)
        return false;
    player->Stop();
    player->setCurrentPosition(0);
    player->setFileName(QString());
    return true;
}

bool ReleasePlayerFile(const QString &path, AppState &state, ViewerContext &context, MoviePlayer *mainPlayer)
{
    bool released = false;
    if (context.MainMovieLoaded()) {
        released = ReleaseMoviePlayer(mainPlayer, path);
        if (released)
            context.setMainMovieLoaded(false);
        QCoreApplication::processEvents(); // libmpv closes the file in its own thread
    }
    if (state.ReleaseIndexPlayers)
        state.ReleaseIndexPlayers(path);
    return released;
}
