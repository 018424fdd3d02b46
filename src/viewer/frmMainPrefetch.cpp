#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "display/PictureView.h"
#include "platform/PictureLoader.h"
#include "platform/PictureLoaderWait.h"
#include "context/PartRules.h"
#include "context/PicturePrefetch.h"
#include "context/PrefetchRules.h"

#include <QRadioButton>

PicturePrefetch &frmMain::prefetch() { return m_context.prefetch(); }

namespace {

PicturePrefetch::Target displayTarget(bool fitted, QSize fitInto, QSize viewport)
{
    return fitted ? PicturePrefetch::Target::fitted(fitInto) : PicturePrefetch::Target::actualSize(viewport);
}

} // namespace

QSize frmMain::fitTarget() const { return QSize(width(), height()) * devicePixelRatio(); }

QSize frmMain::actualSizeViewport() const
{
    return QSize(width(), height() - m_twips.toPixelsY(ViewGeometry::DisplayTop)) * devicePixelRatio();
}

PictureLoader::Picture frmMain::loadForDisplay(const QString &path, bool fitted)
{
    return prefetch().obtain(path, displayTarget(fitted, fitTarget(), actualSizeViewport()), m_state.PictureDecodeLimitMs);
}

bool frmMain::shownAtOnce(const QString &path) const
{
    const PicturePrefetch *ahead = m_context.prefetchIfMade();
    return ahead && ahead->isReady(path, displayTarget(fitsWindow(), fitTarget(), actualSizeViewport()));
}

void frmMain::prefetchNeighbours()
{
    if (m_state.ProgramClosing) {
        if (PicturePrefetch *ahead = m_context.prefetchIfMade())
            ahead->hold({}, {});
        return;
    }
    const bool fitted = fitsWindow();
    // Spelled as currentPath() spells them, so that the shown one is found.
    const QString folder = m_context.CurrentFolder().endsWith(QLatin1Char('/')) ? m_context.CurrentFolder()
                                                                            : m_context.CurrentFolder() + QLatin1Char('/');
    QStringList paths;
    for (const QString &name : PrefetchRules::namesToHold(m_context.FileNames(), m_context.CurrentIndex(), m_state.SlideshowOn,
                                                          fitted ? PrefetchRules::Fitted : PrefetchRules::ActualSize))
        paths.append(folder + name);
    prefetch().hold(paths, displayTarget(fitted, fitTarget(), actualSizeViewport()));
}

void frmMain::fillPictureView()
{
    if (!ImgEgg->lacksPixels())
        return;
    const QSize natural = ImgEgg->naturalSize();
    PictureLoader::Options options;
    options.enlargeDrawings = ImgEgg->isDrawing();
    if (!ImgEgg->isDrawing()) // drawn whole, at the size it shows
        options.part = PartRules::partToDecode(ImgEgg->visiblePart(), natural);
    if (!options.part.isValid())
        options.fitInto = ImgEgg->size() * devicePixelRatio(); // never more than the picture has
    const PictureLoader::Picture loaded =
        PictureLoader::loadWithinLimit(m_context.currentPath(), options, m_state.PictureDecodeLimitMs);
    if (!loaded.isNull())
        setShownPicture(loaded);
}
