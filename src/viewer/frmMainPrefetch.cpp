#include "viewer/frmMain.h"

#include "core/AppState.h"
#include "platform/PictureLoader.h"
#include "platform/PictureLoaderWait.h"
#include "viewer/PicturePrefetch.h"
#include "viewer/PrefetchRules.h"

#include <QRadioButton>

PicturePrefetch &frmMain::prefetch()
{
    if (!m_prefetch)
        m_prefetch = std::make_shared<PicturePrefetch>();
    return *m_prefetch;
}

QSize frmMain::fitTarget() const { return QSize(width(), height()) * devicePixelRatio(); }

PictureLoader::Picture frmMain::loadForDisplay(const QString &path, QSize fitInto)
{
    // Full-size pictures are not held: two of them ahead would cost more
    // memory than the wait they save.
    if (!fitInto.isValid())
        return PictureLoader::loadWithinLimit(path, {}, m_state.PictureDecodeLimitMs);
    return prefetch().obtain(path, fitInto, m_state.PictureDecodeLimitMs);
}

void frmMain::prefetchNeighbours()
{
    if (!Option1[0]->isChecked() || m_state.ProgramClosing) {
        if (m_prefetch)
            m_prefetch->hold({}, {});
        return;
    }
    // Spelled as currentPath() spells them, so that the shown one is found.
    const QString folder = m_state.CurrentFolder.endsWith(QLatin1Char('/')) ? m_state.CurrentFolder
                                                                            : m_state.CurrentFolder + QLatin1Char('/');
    QStringList paths;
    for (const QString &name : PrefetchRules::namesToHold(m_state.FileNames, m_state.CurrentIndex, m_state.SlideshowOn))
        paths.append(folder + name);
    prefetch().hold(paths, fitTarget());
}
