#include "files/PlayerRelease.h"

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

void ReleasePlayerFile(const QString &path, AppState &state, MoviePlayer *mainPlayer)
{
    if (state.MainMovieLoaded) {
        if (ReleaseMoviePlayer(mainPlayer, path)) {
            state.MainMovieLoaded = false;
            state.KeepDisplay = false;
        }
        QCoreApplication::processEvents(); // libmpv closes the file in its own thread
    }
    if (state.ReleaseIndexPlayers)
        state.ReleaseIndexPlayers(path);
}
