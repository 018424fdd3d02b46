#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "display/AnimationView.h"
#include "display/PictureView.h"
#include "display/ZoomRules.h"
#include "files/frmList.h"
#include "index/frmIndex.h"
#include "platform/MoviePlayer.h"
#include "viewer/ViewRules.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QResizeEvent>
#include <QScreen>
#include <QScrollBar>
#include <QToolButton>
#include <QTreeView>

#include <cmath>

using namespace ViewGeometry;

// Frame1 holds the browser in two columns: drives and folder tree on the
// left; path box, filter, switches and the command buttons on the right.
void frmMain::layoutFrame1()
{
    const int frameWidth = m_twips.toPixelsX(frame1Width(m_twips.fromPixelsX(width())));
    const int frameHeight = m_twips.toPixelsY(Frame1Height);
    Frame1->resize(frameWidth, frameHeight);

    constexpr int gap = 2, button = 26, row = 26;
    const int leftWidth = frameWidth * 2 / 5 - gap;
    Drive1->setGeometry(gap, gap, leftWidth, 24);
    Dir1->setGeometry(gap, 28, leftWidth, frameHeight - 30);

    const int x = leftWidth + 2 * gap;
    const int width = frameWidth - x - gap;
    const int boxWidth = width - 2 * button;
    CboURL->setGeometry(x, gap, boxWidth, 24);
    cmdClear->setGeometry(x + boxWidth, gap, button, 24);
    cmdUp->setGeometry(x + boxWidth + button, gap, button, 24);
    CboType->setGeometry(x, gap + row, boxWidth, 24);
    cmdRefr->setGeometry(x + boxWidth, gap + row, button, 24);
    cmdIndex->setGeometry(x + boxWidth + button, gap + row, button, 24);

    Option1[0]->setGeometry(x, gap + 2 * row, width / 2, 22);
    Option1[1]->setGeometry(x + width / 2, gap + 2 * row, width / 2, 22);
    const int cycleWidth = width * 2 / 5;
    ChkCicle->setGeometry(x, gap + 3 * row - 2, cycleWidth, 22);
    HScroll1->setGeometry(x + cycleWidth, gap + 3 * row + 1, width - cycleWidth - 34, 16);
    txtTime->setGeometry(x + width - 32, gap + 3 * row - 2, 32, 22);
    ChkAuto->setGeometry(x, gap + 4 * row - 4, width * 2 / 3, 22);
    chkAnim->setGeometry(x + width * 2 / 3, gap + 4 * row - 4, width / 3, 22);

    const std::array<QToolButton *, 7> firstRow{cmdBack, cmdNext, cmdExpand, cmdReduce, cmdRitaglia, cmdSave, cmdClip};
    const std::array<QToolButton *, 6> secondRow{cmdPrint, cmdGrab, cmdAdd, cmdList, cmdLink, cmdHelp};
    const int buttonsTop = frameHeight - 2 * button - gap;
    for (size_t i = 0; i < firstRow.size(); ++i)
        firstRow[i]->setGeometry(x + int(i) * button, buttonsTop, button, button);
    for (size_t i = 0; i < secondRow.size(); ++i)
        secondRow[i]->setGeometry(x + int(i) * button, buttonsTop + button, button, button);
    const int aboutLeft = x + int(secondRow.size()) * button;
    cmdAbout->setGeometry(aboutLeft, buttonsTop + button, x + width - aboutLeft, button);
}

void frmMain::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    Form_Resize();
}

// The index, favourites and association windows go away with the
// minimised main window and come back with it. The association dialog is
// minimised, not hidden: hiding would end it.
void frmMain::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange)
        return;
    frmIndex *index = indexWindow();
    if (isMinimized()) {
        if (index && index->isVisible()) {
            index->hide();
            index->setHiddenWithMain(true);
        }
        if (m_favourites && m_favourites->isVisible()) {
            m_favourites->hide();
            m_favouritesHiddenWithMain = true;
        }
        if (m_linkDialog && m_linkDialog->isVisible())
            m_linkDialog->showMinimized();
        return;
    }
    if (index && index->hiddenWithMain()) {
        index->setHiddenWithMain(false);
        if (index->isOpen() && !m_context.FullScreenActive())
            index->show();
    }
    if (m_favouritesHiddenWithMain) {
        m_favouritesHiddenWithMain = false;
        if (m_favourites)
            m_favourites->show();
    }
    if (m_linkDialog && m_linkDialog->isMinimized()) {
        m_linkDialog->showNormal();
        m_linkDialog->raise();
    }
}

void frmMain::Form_Resize()
{
    if (isMinimized())
        return;
    keepInsideWorkArea();
    const double windowWidth = m_twips.fromPixelsX(width());
    const double windowHeight = m_twips.fromPixelsY(height());

    FraFondoTop->setGeometry(m_twips.toPixels(0, 0, windowWidth, DisplayTop));
    FraFondoBot->setGeometry(
        m_twips.toPixels(0, windowHeight - StatusBarOffset, windowWidth, StatusBarHeight));
    layoutFrame1();
    Frame1->move(m_twips.toPixelsX(frame1Left(windowWidth, m_twips.fromPixelsX(Frame1->width()))),
                 m_twips.toPixelsY(40));
    if (const QScreen *screen = this->screen())
        ImgWall->setGeometry(QRect(QPoint(0, 0), screen->size()));
    ImgWall->lower();

    const double areaWidth = windowWidth - SideReserve;
    const double areaHeight = windowHeight - DisplayTop - BottomReserve;
    WebBrowser1->setGeometry(m_twips.toPixels(0, DisplayTop, areaWidth, areaHeight));
    m_context.setZoomPercent(0); // a resize ends an explicit zoom
    if (m_context.MainMovieLoaded() && isVisible())
        fitOrActualSizeMovie();
    if (!ImgEgg->isEmpty() && fitsWindow()) {
        const QSizeF picture = pictureTwipsOf(ImgEgg->naturalSize());
        const double ratio = ZoomRules::resizeFitRatio(picture, windowTwips(), m_twips.fromPixelsY(ImgEgg->y()));
        if (ratio > 0) {
            resizePicture(QSize(m_twips.toPixelsX(picture.width() * ratio), m_twips.toPixelsY(picture.height() * ratio)));
            // The status row tells the size now on screen.
            m_fitPercent = int(std::lround(ratio * 100));
            updateSizeTexts();
            LabZoom->setText(ViewRules::zoomLabel(int(m_fitPercent)));
        }
    }
    Centra_Image(ImgEgg);
    fillPictureView();
    layoutStatusRow();
}

// A window reaching past the desktop's work area is shortened to fit it.
void frmMain::keepInsideWorkArea()
{
    const QScreen *screen = this->screen();
    if (m_resizeGuard || !screen || !isVisible() || isMaximized() || isFullScreen())
        return;
    const QRect work = screen->availableGeometry();
    const QRect frame = frameGeometry();
    const int tooTall = frame.bottom() - work.bottom();
    const int tooWide = frame.right() - work.right();
    if (tooTall <= 0 && tooWide <= 0)
        return;
    m_resizeGuard = true;
    resize(qMax(minimumWidth(), width() - qMax(0, tooWide)), qMax(minimumHeight(), height() - qMax(0, tooTall)));
    m_resizeGuard = false;
}

void frmMain::Centra_Image(QWidget *target)
{
    const QSizeF window(m_twips.fromPixelsX(width()), m_twips.fromPixelsY(height()));
    const QSizeF size(m_twips.fromPixelsX(target->width()), m_twips.fromPixelsY(target->height()));
    const QPointF at = ZoomRules::centredPosition(size, window);
    target->move(m_twips.toPixelsX(at.x()), m_twips.toPixelsY(at.y()));
}

// The status labels form one row centred in the bottom frame.
void frmMain::layoutStatusRow()
{
    const std::array<QLabel *, 5> labels{LabNum, LabFil, LabSiz, LabPix, LabZoom};
    int total = 0;
    for (QLabel *label : labels) {
        label->adjustSize();
        total += label->width();
    }
    const int rowHeight = FraFondoBot->height();
    int left = qMax(0, (FraFondoBot->width() - total) / 2 - m_twips.toPixelsX(60));
    for (QLabel *label : labels) {
        label->move(left, (rowHeight - label->height()) / 2);
        if (label == LabFil)
            ImgTyp->setGeometry(left + m_twips.toPixelsX(50), (rowHeight - 16) / 2, 16, 16);
        left += label->width();
    }
}
