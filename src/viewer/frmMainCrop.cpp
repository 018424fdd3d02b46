#include "viewer/frmMain.h"

#include "commands/CommandSet.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "display/AnimationView.h"
#include "display/PictureView.h"
#include "display/ZoomRules.h"
#include "platform/MoviePlayer.h"

#include <QAction>
#include <QCheckBox>
#include <QCoreApplication>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QTimer>

#include <cmath>

namespace {
constexpr double TwipsPerMillimetre = 1440.0 / 25.4;
enum Line { AnchorH, MovingH, AnchorV, MovingV };
} // namespace

void frmMain::cmdRitaglia_Click()
{
    if (FileTypeCatalogue::mayAnimate(m_context.FileTypeCode()) && m_state.AnimateGifs && WebBrowser1->isVisible())
        return; // an animation cannot be cropped
    if (m_cropSelectionActive)
        ClearCropSelection();
    m_cropSelectionActive = true;
    setCursor(Qt::CrossCursor);
    cmdTrucco->setFocus();
}

void frmMain::ClearCropSelection()
{
    if (!m_cropSelectionActive)
        return;
    m_cropSelectionActive = false;
    m_selectionDragging = false;
    for (QFrame *line : SelLines)
        line->hide();
    LabMis->hide();
    ImgEgg->setToolTip(m_savedToolTip.isEmpty() ? ImgEgg->toolTip() : m_savedToolTip);
    MediaPlayer1->setContextMenuEnabled(true);
    MediaPlayer1->setVideoCursor(Qt::ArrowCursor);
    unsetCursor();
}

// The picture's or the player's top-left corner, in twips of the form.
QPointF frmMain::targetOrigin(QWidget *target) const
{
    return {m_twips.fromPixelsX(target->x()), m_twips.fromPixelsY(target->y())};
}

QSizeF frmMain::targetSize(QWidget *target) const
{
    return {m_twips.fromPixelsX(target->width()), m_twips.fromPixelsY(target->height())};
}

QWidget *frmMain::cropTarget() const
{
    return m_context.MainMovieLoaded() ? static_cast<QWidget *>(MediaPlayer1) : static_cast<QWidget *>(ImgEgg);
}

bool frmMain::windowInNormalState() const { return !isMaximized() && !isMinimized() && !isFullScreen(); }

void frmMain::Clip_Punto_Inizio(QWidget *target, QPointF at)
{
    if (!target->toolTip().isEmpty())
        m_savedToolTip = target->toolTip();
    if (!windowInNormalState())
        return;
    m_selAnchor = at;
    const QPointF corner = targetOrigin(target) + at;
    for (QLineF &line : m_selLines)
        line = QLineF(corner, corner);
    placeSelectionLines();
    QCoreApplication::processEvents();
    m_selectionDragging = true;
    LabMis->show();
}

void frmMain::moveSelectionCorner(QWidget *target, QPointF at)
{
    const QPointF c = targetOrigin(target) + at;
    m_selLines[AnchorH].setP2({c.x(), m_selLines[AnchorH].y2()});
    m_selLines[MovingH] = QLineF(m_selLines[MovingH].x1(), c.y(), c.x(), c.y());
    m_selLines[AnchorV].setP2({m_selLines[AnchorV].x2(), c.y()});
    m_selLines[MovingV] = QLineF(c.x(), m_selLines[MovingV].y1(), c.x(), c.y());
    placeSelectionLines();
    UpdateSelectionLabel(target);
}

void frmMain::UpdateSelectionLabel(QWidget *target)
{
    const double width = (m_selLines[AnchorH].x2() - m_selLines[AnchorH].x1()) / TwipsPerMillimetre;
    const double height = (m_selLines[MovingH].y1() - m_selLines[AnchorH].y1()) / TwipsPerMillimetre;
    target->setToolTip(QString());
    LabMis->setText(QLatin1Char(' ') + QString::number(ZoomRules::roundHalfEven(std::abs(width))) + QStringLiteral(" x ")
                    + QString::number(ZoomRules::roundHalfEven(std::abs(height))) + QStringLiteral(" mm "));
    LabMis->adjustSize();
    LabMis->move(m_twips.toPixelsX(m_selLines[MovingH].x2()), m_twips.toPixelsY(m_selLines[MovingH].y2()));
    LabMis->raise();
}

void frmMain::Clip_Punto_Fine(QWidget *target, QPointF at)
{
    unsetCursor();
    if (!windowInNormalState())
        return;
    m_selectionDragging = false;
    m_selEnd = at;
    if (!ZoomRules::selectionBigEnough(m_selAnchor, m_selEnd)) {
        ClearCropSelection();
        return;
    }
    QCoreApplication::processEvents();
    moveSelectionCorner(target, m_selEnd);
    setCursor(Qt::CrossCursor); // still in crop mode: a new press starts a new rectangle
}

// Each line of the rubber band is a thin frame between its two ends.
void frmMain::placeSelectionLines()
{
    for (int i = 0; i < 4; ++i) {
        const QLineF &line = m_selLines[i];
        const QRect ends = QRect(QPoint(m_twips.toPixelsX(line.x1()), m_twips.toPixelsY(line.y1())),
                                 QPoint(m_twips.toPixelsX(line.x2()), m_twips.toPixelsY(line.y2())))
                               .normalized();
        SelLines[i]->setGeometry(ends.x(), ends.y(), qMax(2, ends.width()), qMax(2, ends.height()));
        SelLines[i]->show();
        SelLines[i]->raise();
    }
}

void frmMain::Img_Punto_Inizio(QWidget *target, QPoint globalPosition)
{
    m_panActive = true;
    m_panStartGlobal = globalPosition;
    m_panStartOrigin = targetOrigin(target);
    setCursor(Qt::SizeAllCursor);
}

// The picture follows the pointer, kept partly inside the window.
void frmMain::panTo(QWidget *target, QPoint globalPosition)
{
    const QPoint moved = globalPosition - m_panStartGlobal;
    const QPointF proposed = m_panStartOrigin + QPointF(m_twips.fromPixelsX(moved.x()), m_twips.fromPixelsY(moved.y()));
    const QPointF at = ZoomRules::panPosition(proposed, targetSize(target), windowTwips());
    target->move(m_twips.toPixelsX(at.x()), m_twips.toPixelsY(at.y()));
}

void frmMain::Img_Punto_Fine(QWidget *target, QPoint globalPosition)
{
    if (m_panActive) {
        m_panActive = false;
        panTo(target, globalPosition);
        QCoreApplication::processEvents();
    }
    unsetCursor();
}

bool frmMain::pictureFitsArea() const
{
    return ZoomRules::fitsInArea(targetSize(ImgEgg), windowTwips());
}

void frmMain::ImgEgg_MouseDown(QMouseEvent *event)
{
    if (m_context.CurrentFileName().isEmpty())
        return;
    const QPointF at(m_twips.fromPixelsX(event->position().x()), m_twips.fromPixelsY(event->position().y()));
    if (event->button() == Qt::LeftButton) {
        if (m_cropSelectionActive)
            Clip_Punto_Inizio(ImgEgg, at);
        else if (!pictureFitsArea())
            Img_Punto_Inizio(ImgEgg, event->globalPosition().toPoint());
    } else if (event->button() == Qt::RightButton) {
        showContextMenu(event->globalPosition().toPoint());
    }
}

void frmMain::ImgEgg_MouseMove(QMouseEvent *event)
{
    if (!m_cropSelectionActive) {
        if (m_panActive)
            panTo(ImgEgg, event->globalPosition().toPoint());
        else if (!pictureFitsArea())
            setCursor(Qt::SizeAllCursor);
        else
            unsetCursor();
        return;
    }
    if (m_selectionDragging)
        moveSelectionCorner(ImgEgg, {m_twips.fromPixelsX(event->position().x()),
                                     m_twips.fromPixelsY(event->position().y())});
}

void frmMain::ImgEgg_MouseUp(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QPointF at(m_twips.fromPixelsX(event->position().x()), m_twips.fromPixelsY(event->position().y()));
    if (m_cropSelectionActive)
        Clip_Punto_Fine(ImgEgg, at);
    else
        Img_Punto_Fine(ImgEgg, event->globalPosition().toPoint());
}

// Presses beside the picture in crop mode snap to its nearest edge.
void frmMain::mousePressEvent(QMouseEvent *event)
{
    if (!m_cropSelectionActive || m_context.CurrentFileName().isEmpty()) {
        if (event->button() == Qt::RightButton && !m_context.CurrentFileName().isEmpty())
            showContextMenu(event->globalPosition().toPoint());
        return;
    }
    QWidget *target = cropTarget();
    const QPointF form(m_twips.fromPixelsX(event->position().x()), m_twips.fromPixelsY(event->position().y()));
    const QPointF at = ZoomRules::clampToTarget(form - targetOrigin(target), targetSize(target));
    if (event->button() == Qt::LeftButton)
        Clip_Punto_Inizio(target, at);
    else if (event->button() == Qt::RightButton)
        showContextMenu(event->globalPosition().toPoint());
}

void frmMain::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_cropSelectionActive) {
        unsetCursor();
        return;
    }
    if (m_selectionDragging) {
        QWidget *target = cropTarget();
        const QPointF form(m_twips.fromPixelsX(event->position().x()), m_twips.fromPixelsY(event->position().y()));
        moveSelectionCorner(target, ZoomRules::clampToTarget(form - targetOrigin(target), targetSize(target)));
    }
}

void frmMain::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_cropSelectionActive || event->button() != Qt::LeftButton || !m_selectionDragging)
        return;
    QWidget *target = cropTarget();
    const QPointF form(m_twips.fromPixelsX(event->position().x()), m_twips.fromPixelsY(event->position().y()));
    Clip_Punto_Fine(target, ZoomRules::clampToTarget(form - targetOrigin(target), targetSize(target)));
}

// A double-click on the window's background or its top frame (the frames
// pass it on) opens the full-screen view; the status row is not background.
void frmMain::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || FraFondoBot->geometry().contains(event->position().toPoint()))
        return;
    if (!indexPageLoading())
        mnuFullScreen_Click();
}

// The right-button menu: the crop menu over a selection, else the file menu.
void frmMain::showContextMenu(QPoint globalPosition)
{
    unsetCursor();
    stopSlideTimer();
    if (indexPageLoading())
        return;
    if (m_cropSelectionActive) {
        SFCrop->popup(globalPosition);
        return;
    }
    SFPOPUP->popup(globalPosition); // offered anew as it comes up
}
