#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// What a movie file asks the engine to play. libmpv reads none of the ASX
// family, "[Reference]" redirectors, RAM lists or a bare IFO, so they are
// resolved here into local paths and network URLs.
struct MovieSource {
    enum class Kind {
        Media,               // the file itself (whatever its extension says)
        AsxPlaylist,         // XML <asx>: .asx, .wax, .wvx, .lsx, ...
        ReferenceRedirector, // "[Reference]" with Ref1=..., Ref2=...
        TextList,            // RAM style: one path or URL per line, # comments
        DvdTitle,            // an IFO of a VIDEO_TS folder
    };
    Kind kind = Kind::Media;
    // In playing order; the first is the first playable entry, the rest are
    // later entries and alternatives, tried when one fails. Local entries
    // that do not exist are left out; network URLs are kept as they are.
    QStringList urls;
    QString dvdDevice; // DvdTitle: the folder holding VIDEO_TS

    bool isEmpty() const { return urls.isEmpty(); }
};

namespace MoviePlaylist {

// Playlists larger than this are not playlists.
constexpr qint64 MaxPlaylistBytes = 1024 * 1024;

MovieSource resolve(const QString &path);

// The kind decided from the content (and the extension for IFO and RAM
// style lists); binary media under a playlist extension is Media.
MovieSource::Kind sniff(const QString &path);

// Parsers over a playlist's bytes; relative entries are taken against
// baseFolder. Entries are returned in order, missing local files dropped.
QStringList asxEntries(const QByteArray &content, const QString &baseFolder);
QStringList referenceEntries(const QByteArray &content, const QString &baseFolder);
QStringList textListEntries(const QByteArray &content, const QString &baseFolder);

// A playlist entry as the engine takes it: a network URL unchanged, a local
// path (absolute, relative, "\" separated or file://) made absolute when the
// file exists (matching the name case-blind as Windows would); else "".
QString playableTarget(const QString &href, const QString &baseFolder);

// The folder to hand the DVD reader for an IFO file: the parent of its
// VIDEO_TS folder; "" when the IFO is not in one.
QString dvdDeviceFor(const QString &ifoPath);

} // namespace MoviePlaylist
