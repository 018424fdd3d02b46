#pragma once

#include "core/FileTypeCatalogue.h"

#include <QImage>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class DisplayPresenter;
class PicturePrefetch;
class MessageCatalogue;

// What the windows look at together: the folder, its list, the file shown
// and how it shows. Every window reads it and asks it to show another file;
// none reads another window's controls. One request to show runs at a time:
// a request that arrives while one is under way (from a key, a thumbnail or
// a tick handled while a picture decodes) waits, and the newest waiting one
// wins, so a show never re-enters itself half done.
class ViewerContext : public QObject {
    Q_OBJECT
public:
    using MediaClass = FileTypeCatalogue::MediaClass;
    enum class DisplayMode { Fit, ActualSize };

    explicit ViewerContext(const MessageCatalogue &messages, QObject *parent = nullptr);
    ~ViewerContext() override;

    // The folder and its list; an empty list is one empty name.
    const QString &CurrentFolder() const { return m_folder; }
    const QStringList &FileNames() const { return m_names; }
    int CurrentIndex() const { return m_index; } // -1 right after a list is read
    const QString &CurrentFileName() const { return m_fileName; }
    const QString &FolderSummaryText() const { return m_summary; }
    bool listIsEmpty() const { return m_names.size() <= 1 && m_names.value(0).isEmpty(); }
    int fileUpperBound() const { return int(m_names.size()) - 1; }
    QString currentPath() const;

    // The type filter: its code ("ALLSUP", "JPG", ...) and its row in the
    // filter list; and the whole text of the row the list was read under
    // (label, code and patterns).
    const QString &TypeFilterCode() const { return m_filterCode; }
    int TypeFilterIndex() const { return m_filterIndex; }
    void setTypeFilter(const QString &code, int index);
    const QString &listedFilterText() const { return m_filterText; }
    void setListedFilterText(const QString &text) { m_filterText = text; }

    void setFolder(const QString &folder); // announces folderChanged when it differs
    void setList(const QStringList &names, const QString &summary);
    // Once the file to show is chosen from it.
    void announceListLoaded() { emit listLoaded(); }
    // The list emptied while a folder is read; nothing is announced yet.
    void clearList();
    void setCurrentIndex(int index) { m_index = index; }
    void setCurrentFileName(const QString &name) { m_fileName = name; }

    // The list is being read: a step has no file to land on until it ends.
    // Each listing has a number; a newer one makes the older give up, and
    // a show under way gives up too: its file belongs to the list before.
    int beginListing();
    void endListing(int listing);
    void cancelListing() { ++m_listing; m_listingUnderWay = false; }
    bool listingSuperseded(int listing) const { return listing != m_listing; }
    bool listingUnderWay() const { return m_listingUnderWay || m_rereads > 0; }
    // A refresh or folder change: its list is not settled until the file to
    // show is chosen again, even when no listing has begun yet.
    void beginReread() { ++m_rereads; }
    void endReread() { --m_rereads; }

    // The file shown.
    const QString &FileTypeCode() const { return m_typeCode; }
    MediaClass shownClass() const { return m_shownClass; }
    bool MainMovieLoaded() const { return m_movieLoaded; } // the main player holds the file
    void setMainMovieLoaded(bool loaded) { m_movieLoaded = loaded; }
    const QString &FileSizeDisplay() const { return m_sizeText; }
    // The picture the main window shows, at the size it was decoded, for
    // the views that show it again at another size.
    struct ShownPicture {
        QImage image;
        QSize naturalSize;
        bool part = false; // only the part of the picture on screen
    };
    const ShownPicture &shownPicture() const { return m_picture; }
    void setShownPicture(ShownPicture picture) { m_picture = std::move(picture); }

    // Pictures decoded ahead of the steps to come; made on first use.
    PicturePrefetch &prefetch();
    PicturePrefetch *prefetchIfMade() const { return m_prefetch.get(); }

    // How it shows: fitted or at actual size, and a chosen zoom (0: none).
    DisplayMode displayMode() const { return m_mode; }
    void setDisplayMode(DisplayMode mode);
    double zoomPercent() const { return m_zoom; }
    void setZoomPercent(double percent) { m_zoom = percent; }
    // The full-screen view follows each file shown.
    bool FullScreenActive() const { return m_fullScreen; }
    void setFullScreenActive(bool on) { m_fullScreen = on; }

    // Show requests: steps through the list, a name of the list, or a full
    // path; a movie starts at startPosition seconds. Runs at once unless a
    // show is under way; then it waits, and supersedes the one under way at
    // its next turn of the event loop. Steps that wait add up.
    struct ShowRequest {
        int steps = 0; // through the list, back negative; 0: by name
        QString name;
        bool nameIsFullPath = false;
        double startPosition = 0;
        bool wraps = false; // forward from the last file goes to the first: the slideshow
    };
    void show(const ShowRequest &request);
    bool showUnderWay() const { return m_showing; }
    // The one presenter that puts files on the screen: the main window.
    void setPresenter(DisplayPresenter *presenter) { m_presenter = presenter; }

signals:
    void folderChanged(const QString &folder);
    void listLoaded();
    void fileShown(const QString &path);
    void modeChanged();

private:
    // Gives up at its next turn of the event loop when a newer request waits.
    void runShow(const ShowRequest &request);
    bool moveThroughList(int steps, bool wraps);
    bool chooseFile(const ShowRequest &request);
    bool superseded() const { return m_waiting.has_value() || m_listedSinceShowBegan; }

    const MessageCatalogue &m_messages;
    QString m_folder;
    QStringList m_names{QString()};
    int m_index = -1;
    QString m_fileName;
    QString m_summary;
    QString m_filterCode = QStringLiteral("ALLSUP");
    int m_filterIndex = 0;
    QString m_filterText;
    int m_listing = 0;
    bool m_listingUnderWay = false;
    int m_rereads = 0;

    QString m_typeCode;
    MediaClass m_shownClass = MediaClass::Picture;
    bool m_movieLoaded = false;
    QString m_sizeText;
    ShownPicture m_picture;
    DisplayMode m_mode = DisplayMode::Fit;
    double m_zoom = 0;
    bool m_fullScreen = false;

    std::unique_ptr<PicturePrefetch> m_prefetch;
    DisplayPresenter *m_presenter = nullptr;
    bool m_showing = false;
    bool m_listedSinceShowBegan = false;
    std::optional<ShowRequest> m_waiting;
};
