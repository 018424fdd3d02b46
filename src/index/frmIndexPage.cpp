// Building a page: cells reset, pictures decoded off the GUI thread, then
// the movie cells opened.
#include "index/frmIndex.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "display/FilterItemDelegate.h"
#include "core/FileSizeText.h"
#include "index/ThumbnailDecoder.h"
#include "platform/DataFolder.h"
#include "platform/MoviePlayer.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFrame>
#include <QLabel>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>

void frmIndex::resetCell(Cell &cell)
{
    cell.MediaPlayer1->hide();
    if (!cell.MediaPlayer1->FileName().isEmpty()) {
        cell.MediaPlayer1->Stop();
        cell.MediaPlayer1->setFileName(QString());
    }
    cell.MediaPlayer1->setToolTip(QString());
    cell.HScroll1->hide();
    cell.HScroll1->setEnabled(false);
    cell.HScroll1->setValue(0);
    for (QToolButton *button : {cell.cmdPlaySmall, cell.cmdPauseSmall, cell.cmdStopSmall}) {
        button->hide();
        button->setEnabled(false);
    }
    cell.Image1->hide();
    cell.Image1->clear();
    cell.ImgList->hide();
    cell.Frame2->hide();
    cell.Frame2->setToolTip(QString());
    cell.path.clear();
    cell.tag.clear();
    cell.movie = false;
    cell.durationShown = false;
}

void frmIndex::setGroupButtons(bool visible, bool enabled)
{
    for (QToolButton *button : {cmdPlay, cmdPause, cmdStop, cmdVol}) {
        button->setVisible(visible);
        button->setEnabled(enabled);
    }
    cmdVol->setEnabled(enabled && bool(onVolume));
}

void frmIndex::followMainList()
{
    if (!m_open)
        return;
    const QString filter = m_context.listedFilterText();
    if (m_context.CurrentFolder() != m_pageFolder || filter != m_pageFilter)
        IndexPage = 0;
    m_pageFolder = m_context.CurrentFolder();
    m_pageFilter = filter;
    Carica_Preview();
}

void frmIndex::Carica_Preview()
{
    m_decoder->cancel();
    m_durationPoll->stop();
    // A new page supersedes the one under way: its thumbnails are cancelled.
    m_pageBuilding = true;
    m_pageFolder = m_context.CurrentFolder();
    m_pageFilter = m_context.listedFilterText();
    setWindowTitle(QLatin1Char(' ') + m_context.CurrentFolder());

    FraFondo->hide();
    const IndexRules::Page page = IndexRules::pageOf(m_context.FileNames(), IndexPage);
    cmdBack->setEnabled(page.hasPrevious);
    cmdNext->setEnabled(page.hasNext);
    LabLoad->setText(QStringLiteral("0 Files ..."));
    LabLoad->show();
    LabType->setText(IndexRules::labTypeCaption(FilterItemDelegate::visibleLabel(m_pageFilter)));
    setGroupButtons(cmdPlay->isVisible(), false);
    for (Cell &cell : cells)
        resetCell(cell);
    FraFondo->show();
    setCursor(Qt::WaitCursor);

    m_thumbnailsShown = 0;
    m_pageStartNumber = page.begin + 1 - page.firstListIndex;
    const QSize box = thumbnailBoxPixels();
    for (int i = page.begin; i < page.end; ++i) {
        const int cell = IndexRules::cellOfListIndex(page, i);
        const QString name = m_context.FileNames().value(i);
        const QString path = QFileInfo(QDir(m_context.CurrentFolder()), name).filePath();
        if (name.isEmpty() || !QFileInfo::exists(path))
            continue; // gone since the list was read: the cell stays hidden
        prepareCell(cell, path, name);
        if (!cells[cell].movie && IndexRules::typeCodeOf(name) != u"PPT")
            m_decoder->request(cell, path, box);
    }
    if (m_decoder->pending() == 0)
        picturesDone();
}

void frmIndex::prepareCell(int index, const QString &path, const QString &name)
{
    Cell &cell = cells[index];
    cell.path = path;
    const IndexRules::NameLabel label = IndexRules::nameLabel(name);
    cell.LabImage->setAlignment((label.centred ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignVCenter);
    cell.LabImage->setText(name);
    // The thumbnail is read by the name of the file it shows.
    cell.Image1->setAccessibleName(name);
    cell.LabImage->setToolTip(label.toolTip);
    cell.Frame2->show();

    const QString type = IndexRules::typeCodeOf(name);
    cell.movie = IndexRules::isMovieType(type);
    if (cell.movie) {
        cell.tag = path;
        cell.MediaPlayer1->show();
        cell.HScroll1->show();
        for (QToolButton *button : {cell.cmdPlaySmall, cell.cmdPauseSmall, cell.cmdStopSmall})
            button->show();
    } else if (type == u"PPT") {
        const QSize icon = m_twips.toPixels(0, 0, 975, 975).size();
        cell.Image1->setPixmap(DataFolder::themedIcon(m_state.ProgramFolder, QStringLiteral("x-office-presentation")).pixmap(icon));
        cell.Image1->setGeometry(toPixels(IndexRules::cellRect(index, IndexRules::CellPart::Image)));
        cell.Image1->show();
        cell.tag = path;
    }
    cell.ImgList->setVisible(isFavourite && isFavourite(path));
}

void frmIndex::thumbnailArrived(int index, const QImage &image, QSize naturalSize)
{
    if (index < 0 || index >= IndexRules::CellCount || !m_pageBuilding)
        return;
    Cell &cell = cells[index];
    ++m_thumbnailsShown;
    LabLoad->setText(IndexRules::progressText(IndexPage, m_pageStartNumber + m_thumbnailsShown - 1,
                                              m_context.FolderSummaryText()));
    if (!QFileInfo::exists(cell.path)) {
        // Gone while it was read: the page ends here.
        abandonPage();
        return;
    }
    if (image.isNull())
        return;
    const QString detail = IndexRules::sizeDetail(naturalSize);
    cell.tag = IndexRules::pictureTag(cell.path, naturalSize);
    const QString tip = IndexRules::cellToolTip(QFileInfo(cell.path).fileName(), detail,
                                                FileSizeText(cell.path, m_state.messages));
    cell.Image1->setToolTip(tip);
    cell.Frame2->setToolTip(tip);

    const QSizeF shown = IndexRules::scaledThumbnail(
        QSizeF(m_twips.fromPixelsX(naturalSize.width()), m_twips.fromPixelsY(naturalSize.height())));
    const QSize pixels(qMax(1, m_twips.toPixelsX(shown.width())), qMax(1, m_twips.toPixelsY(shown.height())));
    const qreal ratio = devicePixelRatioF();
    QPixmap pixmap = QPixmap::fromImage(image.size() == pixels * ratio
                                            ? image
                                            : image.scaled(pixels * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    pixmap.setDevicePixelRatio(ratio);
    cell.Image1->setPixmap(pixmap);
    const QSize frame = cell.Frame2->size();
    cell.Image1->setGeometry((frame.width() - pixels.width()) / 2, (frame.height() - pixels.height()) / 2,
                             pixels.width(), pixels.height());
    cell.Image1->setFrameShape(QFrame::Box);
    cell.Image1->show();
}

void frmIndex::stopPageBuild()
{
    if (m_pageBuilding)
        abandonPage();
}

void frmIndex::abandonPage()
{
    m_decoder->cancel();
    m_pageBuilding = false;
    LabLoad->hide();
    unsetCursor();
}

void frmIndex::picturesDone()
{
    if (!m_pageBuilding)
        return;
    LabLoad->hide();
    if (!m_hiddenWithMain && m_open && !m_context.FullScreenActive())
        show();
    m_pageBuilding = false;
    openMovieCells();
    finishPage();
}

void frmIndex::openMovieCells()
{
    for (Cell &cell : cells) {
        if (!cell.movie || cell.path.isEmpty())
            continue;
        cell.MediaPlayer1->setFileName(cell.path);
        cell.MediaPlayer1->setCurrentPosition(0);
    }
    m_durationPolls = 0;
    m_durationPoll->start();
}

void frmIndex::showDuration(int index)
{
    Cell &cell = cells[index];
    if (!cell.movie || cell.durationShown)
        return;
    const double duration = cell.MediaPlayer1->Duration();
    if (duration <= 0)
        return;
    cell.durationShown = true;
    const QString text = IndexRules::durationText(duration);
    cell.tag = cell.path + QStringLiteral(" / ") + text;
    for (QWidget *control : {static_cast<QWidget *>(cell.cmdPlaySmall), static_cast<QWidget *>(cell.cmdPauseSmall),
                             static_cast<QWidget *>(cell.cmdStopSmall), static_cast<QWidget *>(cell.HScroll1)})
        control->setEnabled(true);
    const QString tip = IndexRules::cellToolTip(QFileInfo(cell.path).fileName(), text,
                                                FileSizeText(cell.path, m_state.messages));
    cell.MediaPlayer1->setToolTip(tip);
    cell.Frame2->setToolTip(tip);
}

void frmIndex::finishPage()
{
    setGroupButtons(true, true);
    unsetCursor();
    emit pageLoaded();
}

void frmIndex::cmdNext_Click()
{
    if (!IndexRules::pageOf(m_context.FileNames(), IndexPage).hasNext)
        return;
    ++IndexPage;
    Carica_Preview();
}

void frmIndex::cmdBack_Click()
{
    if (IndexPage < 1)
        return;
    --IndexPage;
    Carica_Preview();
}

void frmIndex::cmdRefr_Click()
{
    if (onRefreshList)
        onRefreshList();
}
