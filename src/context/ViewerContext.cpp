#include "context/ViewerContext.h"

#include "context/DisplayPresenter.h"
#include "context/PicturePrefetch.h"
#include "context/StepRules.h"
#include "core/FileSizeText.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <utility>

ViewerContext::ViewerContext(const MessageCatalogue &messages, QObject *parent) : QObject(parent), m_messages(messages) {}

ViewerContext::~ViewerContext() = default;

namespace {

// A drive root keeps its one slash: "/" and "a.jpg" give "/a.jpg".
QString pathIn(const QString &folder, const QString &name)
{
    return folder.endsWith(QLatin1Char('/')) ? folder + name : folder + QLatin1Char('/') + name;
}

} // namespace

QString ViewerContext::currentPath() const { return pathIn(m_folder, m_fileName); }

void ViewerContext::setTypeFilter(const QString &code, int index)
{
    m_filterCode = code;
    m_filterIndex = index;
}

void ViewerContext::setFolder(const QString &folder)
{
    if (folder == m_folder)
        return;
    m_folder = folder;
    emit folderChanged(folder);
}

void ViewerContext::setList(const QStringList &names, const QString &summary)
{
    m_names = names.isEmpty() ? QStringList{QString()} : names;
    m_summary = summary;
}

void ViewerContext::clearList() { m_names = QStringList{QString()}; }

int ViewerContext::beginListing()
{
    m_listingUnderWay = true;
    m_listedSinceShowBegan = m_showing;
    return ++m_listing;
}

void ViewerContext::endListing(int listing)
{
    if (listing == m_listing)
        m_listingUnderWay = false;
}

PicturePrefetch &ViewerContext::prefetch()
{
    if (!m_prefetch)
        m_prefetch = std::make_unique<PicturePrefetch>();
    return *m_prefetch;
}

void ViewerContext::setDisplayMode(DisplayMode mode)
{
    if (mode == m_mode)
        return;
    m_mode = mode;
    emit modeChanged();
}

void ViewerContext::show(const ShowRequest &request)
{
    if (!m_presenter)
        return; // the main window is gone: nothing shows files any more
    if (m_showing) {
        // Steps waiting add up; any other request replaces what waits.
        if (m_waiting && m_waiting->steps != 0 && request.steps != 0) {
            m_waiting->steps += request.steps;
            m_waiting->wraps = request.wraps;
        } else {
            m_waiting = request;
        }
        return;
    }
    m_showing = true;
    std::optional<ShowRequest> next = request;
    while (next) {
        const ShowRequest running = *std::exchange(next, std::nullopt);
        runShow(running);
        next = std::exchange(m_waiting, std::nullopt);
    }
    m_showing = false;
}

bool ViewerContext::moveThroughList(int steps, bool wraps)
{
    // Several steps land where single ones would: the index is put one step
    // short, and the last step is taken as one.
    if (steps > 1 || steps < -1)
        m_index = StepRules::startOfOneStep(m_index, steps, fileUpperBound(), wraps);
    // Backward stops at the first file; forward wraps only in a slideshow.
    int index = m_index + (steps < 0 ? -1 : 1);
    if (index < 0) {
        m_index = 0;
        return false;
    }
    if (index > fileUpperBound()) {
        if (!wraps) {
            m_index = fileUpperBound();
            return false;
        }
        index = 0;
    }
    m_index = index;
    return true;
}

bool ViewerContext::chooseFile(const ShowRequest &request)
{
    if (request.nameIsFullPath) {
        const qsizetype cut = request.name.lastIndexOf(QLatin1Char('/'));
        setFolder(cut > 0 ? request.name.left(cut) : QStringLiteral("/"));
        m_fileName = request.name.mid(cut + 1);
        return true;
    }
    if (!request.name.isEmpty()) {
        m_fileName = request.name;
        const qsizetype exact = m_names.indexOf(request.name); // exact spelling first
        for (qsizetype i = exact >= 0 ? exact : 0; i < m_names.size(); ++i) {
            if (m_names[i].compare(request.name, Qt::CaseInsensitive) == 0) {
                m_fileName = m_names[i];
                m_index = int(i);
                break;
            }
        }
        return true;
    }
    m_fileName = m_names.value(m_index);
    return !m_fileName.isEmpty();
}

void ViewerContext::runShow(const ShowRequest &request)
{
    m_listedSinceShowBegan = false;
    m_presenter->clearSelection();
    if (request.steps != 0 && !moveThroughList(request.steps, request.wraps))
        return; // a move that stops keeps what shows

    m_presenter->releaseShown();
    m_picture = {};
    const QString upcoming = request.nameIsFullPath
                                 ? request.name
                                 : pathIn(m_folder, request.name.isEmpty() ? m_names.value(m_index) : request.name);
    if (!m_presenter->showsAtOnce(upcoming)) {
        QCoreApplication::processEvents();
        if (superseded())
            return;
    }

    if (!chooseFile(request)) {
        m_presenter->showNothing();
        return;
    }
    const QString path = currentPath();
    m_sizeText = FileSizeText(path, m_messages);
    m_typeCode = FileTypeCatalogue::normalisedTypeCode(FileTypeCatalogue::extensionOf(m_fileName));
    m_shownClass = FileTypeCatalogue::mediaClassOf(m_typeCode);
    m_presenter->announceFile(path, m_shownClass);

    bool reachedButtons = true;
    switch (m_shownClass) {
    case MediaClass::Slides:
        m_movieLoaded = false;
        m_presenter->openSlides(path);
        break;
    case MediaClass::Movie:
        m_movieLoaded = true;
        if (QFileInfo::exists(path))
            m_presenter->presentMovie(path, request.startPosition);
        else
            reachedButtons = false; // a vanished movie: the slideshow stops here
        break;
    case MediaClass::Picture:
        m_movieLoaded = false;
        m_presenter->presentPicture(path);
        break;
    }
    if (superseded())
        return;

    if (reachedButtons) {
        m_presenter->enableFileCommands();
        QCoreApplication::processEvents();
        if (superseded())
            return;
        m_presenter->updateNavigation();
    }
    if (m_fullScreen)
        m_presenter->followInFullScreen(m_shownClass);
    m_presenter->showStatusRow(m_shownClass);
    emit fileShown(path);
}
