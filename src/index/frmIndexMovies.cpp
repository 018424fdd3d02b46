// The movies of a page played, paused and stopped together or one by one.
#include "index/frmIndex.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "platform/MoviePlayer.h"

#include <QPushButton>
#include <QScrollBar>

void frmIndex::cmdPlay_Click()
{
    for (int cell = 0; cell < IndexRules::CellCount; ++cell) {
        MoviePlayer *player = cells[cell].MediaPlayer1;
        if (!player->FileName().isEmpty() && player->PlayState() != MoviePlayer::Playing)
            cmdPlaySmall_Click(cell);
    }
}

void frmIndex::cmdPause_Click()
{
    for (Cell &cell : cells)
        if (!cell.MediaPlayer1->FileName().isEmpty() && cell.MediaPlayer1->PlayState() == MoviePlayer::Playing)
            cell.MediaPlayer1->Pause();
}

void frmIndex::cmdStop_Click()
{
    for (Cell &cell : cells) {
        if (cell.MediaPlayer1->FileName().isEmpty())
            continue;
        // A paused movie stays paused, only rewound.
        if (cell.MediaPlayer1->PlayState() == MoviePlayer::Playing)
            cell.MediaPlayer1->Stop();
        cell.MediaPlayer1->setCurrentPosition(0);
        cell.HScroll1->setValue(0);
    }
}

void frmIndex::cmdVol_Click()
{
    cmdTrucco->setFocus();
    if (onVolume)
        onVolume();
}

void frmIndex::cmdPlaySmall_Click(int cell)
{
    MoviePlayer *player = cells[cell].MediaPlayer1;
    const QString file = player->FileName();
    const bool playingInMain = !file.isEmpty() && playsInMain && playsInMain(file);
    // The same movie never plays twice at once.
    if (!playingInMain && !file.isEmpty())
        player->Play();
    cmdTrucco->setFocus();
}

void frmIndex::cmdPauseSmall_Click(int cell)
{
    cells[cell].MediaPlayer1->Pause();
    cmdTrucco->setFocus();
}

void frmIndex::cmdStopSmall_Click(int cell)
{
    cells[cell].MediaPlayer1->Stop();
    cells[cell].MediaPlayer1->setCurrentPosition(0);
    cells[cell].HScroll1->setValue(0);
    cmdTrucco->setFocus();
}

void frmIndex::HScroll1_Change(int cell)
{
    const int value = cells[cell].HScroll1->value();
    const double fraction = value > 0 ? value / 100.0 : 0;
    cells[cell].MediaPlayer1->setCurrentPosition(fraction * cells[cell].MediaPlayer1->Duration());
}

void frmIndex::MediaPlayer1_PlayStateChange(int cell, int, int newState)
{
    if (newState == MoviePlayer::Stopped)
        cells[cell].HScroll1->setValue(0);
    showDuration(cell);
}

void frmIndex::pauseCellsPlaying(const QString &path)
{
    for (Cell &cell : cells)
        if (!path.isEmpty() && cell.MediaPlayer1->FileName() == path
            && cell.MediaPlayer1->PlayState() == MoviePlayer::Playing)
            cell.MediaPlayer1->Pause();
}
