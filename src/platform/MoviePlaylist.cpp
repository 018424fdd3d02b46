#include "platform/MoviePlaylist.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QStringDecoder>
#include <QUrl>

#include <utility>

namespace {

// A playlist that names a playlist is followed this deep, and no deeper:
// metafiles that point at each other must not loop.
constexpr int MaxNesting = 1;

const QRegularExpression &urlSchemePattern()
{
    // Two letters at least, so that "C://" stays a (Windows) path.
    static const QRegularExpression pattern(QStringLiteral("^([A-Za-z][A-Za-z0-9+.\\-]+)://"));
    return pattern;
}

bool isUrl(const QString &text)
{
    return urlSchemePattern().match(text).hasMatch();
}

QString decodeText(const QByteArray &bytes)
{
    if (bytes.startsWith("\xFF\xFE"))
        return QStringDecoder(QStringDecoder::Utf16LE)(bytes.mid(2));
    if (bytes.startsWith("\xFE\xFF"))
        return QStringDecoder(QStringDecoder::Utf16BE)(bytes.mid(2));
    const QByteArray body = bytes.startsWith("\xEF\xBB\xBF") ? bytes.mid(3) : bytes;
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8(body);
    // Old Windows playlists are often in the ANSI code page.
    return utf8.hasError() ? QString::fromLatin1(body) : text;
}

QByteArray readHead(const QString &path, qint64 bytes)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    return file.read(bytes);
}

bool isPlaylistExtension(const QString &suffix)
{
    static const QSet<QString> extensions = {
        QStringLiteral("asx"), QStringLiteral("wax"), QStringLiteral("wvx"), QStringLiteral("wmx"),
        QStringLiteral("lsx"), QStringLiteral("lsf"), QStringLiteral("ram"), QStringLiteral("rmm"),
        QStringLiteral("rpm"),
    };
    return extensions.contains(suffix.toLower());
}

QString decodeEntities(QString value)
{
    if (!value.contains(QLatin1Char('&')))
        return value;
    static const QRegularExpression entity(QStringLiteral("&(#x[0-9A-Fa-f]+|#[0-9]+|[A-Za-z]+);"));
    QString out;
    qsizetype last = 0;
    auto it = entity.globalMatch(value);
    while (it.hasNext()) {
        const auto match = it.next();
        out += QStringView(value).mid(last, match.capturedStart() - last);
        const QString name = match.captured(1);
        QString replacement = match.captured(0);
        if (name.startsWith(QLatin1String("#x"), Qt::CaseInsensitive)) {
            bool ok = false;
            const uint code = name.mid(2).toUInt(&ok, 16);
            if (ok && code > 0 && code <= 0x10FFFF)
                replacement = QString::fromUcs4(reinterpret_cast<const char32_t *>(&code), 1);
        } else if (name.startsWith(QLatin1Char('#'))) {
            bool ok = false;
            const uint code = name.mid(1).toUInt(&ok);
            if (ok && code > 0 && code <= 0x10FFFF)
                replacement = QString::fromUcs4(reinterpret_cast<const char32_t *>(&code), 1);
        } else {
            static const QHash<QString, QString> named = {
                {QStringLiteral("amp"), QStringLiteral("&")}, {QStringLiteral("lt"), QStringLiteral("<")},
                {QStringLiteral("gt"), QStringLiteral(">")}, {QStringLiteral("quot"), QStringLiteral("\"")},
                {QStringLiteral("apos"), QStringLiteral("'")},
            };
            replacement = named.value(name.toLower(), replacement);
        }
        out += replacement;
        last = match.capturedEnd();
    }
    out += QStringView(value).mid(last);
    return out;
}

// One tag of a forgiving XML scan: real ASX files are often not well-formed
// (bare "&", ANSI bytes, unclosed elements), so no XML parser is used.
struct Tag {
    QString name; // lower case
    bool closing = false;
    bool selfClosing = false;
    QHash<QString, QString> attributes; // names in lower case
};

class TagScanner {
public:
    explicit TagScanner(const QString &text) : m_text(text) {}

    bool next(Tag &tag)
    {
        while (true) {
            const qsizetype open = m_text.indexOf(QLatin1Char('<'), m_pos);
            if (open < 0)
                return false;
            m_pos = open;
            if (skipSpecial())
                continue;
            if (parseTag(tag))
                return true;
            m_pos = open + 1;
        }
    }

private:
    bool skipTo(qsizetype from, QLatin1String end)
    {
        const qsizetype found = m_text.indexOf(end, from);
        m_pos = found < 0 ? m_text.size() : found + end.size();
        return true;
    }

    bool skipSpecial()
    {
        const QStringView rest = QStringView(m_text).mid(m_pos);
        if (rest.startsWith(QLatin1String("<!--")))
            return skipTo(m_pos + 4, QLatin1String("-->"));
        if (rest.startsWith(QLatin1String("<![CDATA[")))
            return skipTo(m_pos + 9, QLatin1String("]]>"));
        if (rest.startsWith(QLatin1String("<?")))
            return skipTo(m_pos + 2, QLatin1String("?>"));
        if (rest.startsWith(QLatin1String("<!")))
            return skipTo(m_pos + 2, QLatin1String(">"));
        return false;
    }

    static bool isNameChar(QChar c)
    {
        return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char(':') || c == QLatin1Char('-')
            || c == QLatin1Char('.');
    }

    void skipSpaces(qsizetype &i) const
    {
        while (i < m_text.size() && m_text.at(i).isSpace())
            ++i;
    }

    bool parseTag(Tag &tag)
    {
        tag = Tag();
        qsizetype i = m_pos + 1;
        skipSpaces(i);
        if (i < m_text.size() && m_text.at(i) == QLatin1Char('/')) {
            tag.closing = true;
            ++i;
            skipSpaces(i);
        }
        const qsizetype nameStart = i;
        while (i < m_text.size() && isNameChar(m_text.at(i)))
            ++i;
        if (i == nameStart)
            return false;
        tag.name = m_text.mid(nameStart, i - nameStart).toLower();
        while (i < m_text.size()) {
            skipSpaces(i);
            if (i >= m_text.size())
                break;
            const QChar c = m_text.at(i);
            if (c == QLatin1Char('>')) {
                m_pos = i + 1;
                return true;
            }
            if (c == QLatin1Char('/')) {
                tag.selfClosing = true;
                ++i;
                continue;
            }
            if (c == QLatin1Char('<')) // an unclosed tag: end it here
                break;
            const qsizetype attrStart = i;
            while (i < m_text.size() && isNameChar(m_text.at(i)))
                ++i;
            if (i == attrStart) {
                ++i;
                continue;
            }
            const QString attrName = m_text.mid(attrStart, i - attrStart).toLower();
            skipSpaces(i);
            QString value;
            if (i < m_text.size() && m_text.at(i) == QLatin1Char('=')) {
                ++i;
                skipSpaces(i);
                if (i < m_text.size() && (m_text.at(i) == QLatin1Char('"') || m_text.at(i) == QLatin1Char('\''))) {
                    const QChar quote = m_text.at(i);
                    const qsizetype close = m_text.indexOf(quote, i + 1);
                    const qsizetype end = close < 0 ? m_text.size() : close;
                    value = m_text.mid(i + 1, end - i - 1);
                    i = close < 0 ? m_text.size() : close + 1;
                } else {
                    const qsizetype valueStart = i;
                    while (i < m_text.size() && !m_text.at(i).isSpace() && m_text.at(i) != QLatin1Char('>'))
                        ++i;
                    value = m_text.mid(valueStart, i - valueStart);
                }
            }
            tag.attributes.insert(attrName, decodeEntities(value));
        }
        m_pos = i;
        return true;
    }

    const QString &m_text;
    qsizetype m_pos = 0;
};

struct Collector {
    QSet<QString> visited; // canonical playlist paths already read

    QStringList fromFile(const QString &path, int depth);
    QStringList fromAsx(const QByteArray &content, const QString &base, int depth);
    QStringList fromReference(const QByteArray &content, const QString &base, int depth);
    QStringList fromTextList(const QByteArray &content, const QString &base, int depth);
    QStringList expand(const QString &href, const QString &base, int depth);
};

QStringList Collector::fromFile(const QString &path, int depth)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    if (canonical.isEmpty() || visited.contains(canonical))
        return {};
    visited.insert(canonical);
    const QByteArray content = readHead(path, MoviePlaylist::MaxPlaylistBytes);
    const QString base = QFileInfo(path).absolutePath();
    switch (MoviePlaylist::sniff(path)) {
    case MovieSource::Kind::AsxPlaylist:
        return fromAsx(content, base, depth);
    case MovieSource::Kind::ReferenceRedirector:
        return fromReference(content, base, depth);
    case MovieSource::Kind::TextList:
        return fromTextList(content, base, depth);
    case MovieSource::Kind::Media:
    case MovieSource::Kind::DvdTitle:
        break;
    }
    return {QFileInfo(path).absoluteFilePath()};
}

// A local entry that is itself a playlist is replaced by its entries.
QStringList Collector::expand(const QString &href, const QString &base, int depth)
{
    const QString target = MoviePlaylist::playableTarget(href, base);
    if (target.isEmpty() || isUrl(target))
        return target.isEmpty() ? QStringList() : QStringList{target};
    const MovieSource::Kind kind = MoviePlaylist::sniff(target);
    if (kind == MovieSource::Kind::Media)
        return {target};
    if (kind == MovieSource::Kind::DvdTitle || depth >= MaxNesting)
        return {};
    return fromFile(target, depth + 1);
}

QStringList Collector::fromAsx(const QByteArray &content, const QString &base, int depth)
{
    const QString text = decodeText(content);
    TagScanner scanner(text);
    QStringList result;
    QStringList entryRefs;
    bool inEntry = false;
    const auto finishEntry = [&] {
        for (const QString &href : std::as_const(entryRefs))
            result += expand(href, base, depth);
        entryRefs.clear();
        inEntry = false;
    };
    Tag tag;
    while (scanner.next(tag)) {
        if (tag.name == QLatin1String("entry")) {
            if (tag.closing) {
                finishEntry();
            } else {
                if (inEntry)
                    finishEntry(); // an unclosed entry ends where the next begins
                inEntry = !tag.selfClosing;
            }
        } else if (tag.name == QLatin1String("ref") && !tag.closing) {
            const QString href = tag.attributes.value(QStringLiteral("href")).trimmed();
            if (href.isEmpty())
                continue;
            if (inEntry) {
                entryRefs += href;
            } else {
                result += expand(href, base, depth);
            }
        } else if (tag.name == QLatin1String("entryref") && !tag.closing) {
            if (inEntry)
                finishEntry();
            const QString href = tag.attributes.value(QStringLiteral("href")).trimmed();
            if (!href.isEmpty())
                result += expand(href, base, depth);
        } else if (tag.name == QLatin1String("asx") && tag.closing) {
            break;
        }
    }
    if (inEntry)
        finishEntry();
    return result;
}

QStringList Collector::fromReference(const QByteArray &content, const QString &base, int depth)
{
    static const QRegularExpression refLine(QStringLiteral("^\\s*Ref\\d+\\s*=\\s*(.*?)\\s*$"),
                                            QRegularExpression::CaseInsensitiveOption);
    QStringList result;
    const QStringList lines = decodeText(content).split(QRegularExpression(QStringLiteral("[\r\n]+")));
    for (const QString &line : lines) {
        const auto match = refLine.match(line);
        if (match.hasMatch() && !match.captured(1).isEmpty())
            result += expand(match.captured(1), base, depth);
    }
    return result;
}

QStringList Collector::fromTextList(const QByteArray &content, const QString &base, int depth)
{
    QStringList result;
    const QStringList lines = decodeText(content).split(QRegularExpression(QStringLiteral("[\r\n]+")));
    for (const QString &raw : lines) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        if (line == QLatin1String("--stop--")) // RealPlayer's end-of-list mark
            break;
        result += expand(line, base, depth);
    }
    return result;
}

} // namespace

namespace MoviePlaylist {

QString playableTarget(const QString &href, const QString &baseFolder)
{
    const QString text = href.trimmed();
    if (text.isEmpty())
        return {};
    const auto scheme = urlSchemePattern().match(text);
    QString path;
    if (scheme.hasMatch()) {
        const QString name = scheme.captured(1).toLower();
        // The player's own schemes (lavf://, fd://, edl://, ...) would let a
        // downloaded playlist open descriptors, other demuxers or any
        // protocol: only the streams a playlist was made for pass.
        static const QStringList streams{QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("mms"),
                                         QStringLiteral("mmsh"), QStringLiteral("rtsp"), QStringLiteral("rtmp")};
        if (streams.contains(name))
            return text;
        if (name != QLatin1String("file"))
            return {};
        path = QUrl(text).toLocalFile();
        if (path.isEmpty())
            return {};
    } else {
        path = text;
        path.replace(QLatin1Char('\\'), QLatin1Char('/'));
        if (QDir::isRelativePath(path))
            path = baseFolder + QLatin1Char('/') + path;
    }
    path = QDir::cleanPath(path);
    if (QFileInfo(path).isFile())
        return path;
    const QString decoded = QUrl::fromPercentEncoding(path.toUtf8());
    if (decoded != path && QFileInfo(decoded).isFile())
        return decoded;
    // Playlists made on Windows name files without regard to case.
    const QFileInfo info(path);
    const QDir folder = info.absoluteDir();
    if (!folder.exists())
        return {};
    // No System: a named pipe or a device would block whoever reads it.
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        if (name.compare(info.fileName(), Qt::CaseInsensitive) == 0)
            return folder.filePath(name);
    }
    return {};
}

QString dvdDeviceFor(const QString &ifoPath)
{
    const QFileInfo info(ifoPath);
    if (!info.isFile())
        return {};
    QDir folder = info.absoluteDir();
    if (folder.dirName().compare(QLatin1String("VIDEO_TS"), Qt::CaseInsensitive) != 0)
        return {};
    folder.cdUp();
    return folder.absolutePath();
}

MovieSource::Kind sniff(const QString &path)
{
    const QFileInfo info(path);
    if (info.suffix().compare(QLatin1String("ifo"), Qt::CaseInsensitive) == 0)
        return MovieSource::Kind::DvdTitle;
    const QByteArray head = readHead(path, 4096);
    const bool utf16 = head.startsWith("\xFF\xFE") || head.startsWith("\xFE\xFF");
    // Text playlists never hold NUL bytes; media headers (ASF's GUID, RIFF
    // sizes, MPEG start codes, IVF, RealMedia) always do.
    if (!utf16 && head.contains('\0'))
        return MovieSource::Kind::Media;
    const QString text = decodeText(head).trimmed();
    static const QRegularExpression asxStart(QStringLiteral("<\\s*asx[\\s>]"),
                                             QRegularExpression::CaseInsensitiveOption);
    if (text.startsWith(QLatin1Char('<')) && asxStart.match(text).hasMatch())
        return MovieSource::Kind::AsxPlaylist;
    if (text.startsWith(QLatin1String("[Reference]"), Qt::CaseInsensitive))
        return MovieSource::Kind::ReferenceRedirector;
    if (isPlaylistExtension(info.suffix()))
        return MovieSource::Kind::TextList;
    return MovieSource::Kind::Media;
}

MovieSource resolve(const QString &path)
{
    MovieSource source;
    if (isUrl(path) && !path.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        source.urls = {path};
        return source;
    }
    const QString local = playableTarget(path, QDir::currentPath());
    if (local.isEmpty())
        return source;
    source.kind = sniff(local);
    if (source.kind == MovieSource::Kind::DvdTitle) {
        source.dvdDevice = dvdDeviceFor(local);
        if (!source.dvdDevice.isEmpty())
            source.urls = {QStringLiteral("dvd://")};
        return source;
    }
    if (source.kind == MovieSource::Kind::Media) {
        source.urls = {local};
        return source;
    }
    Collector collector;
    source.urls = collector.fromFile(local, 0);
    return source;
}

QStringList asxEntries(const QByteArray &content, const QString &baseFolder)
{
    return Collector().fromAsx(content, baseFolder, 0);
}

QStringList referenceEntries(const QByteArray &content, const QString &baseFolder)
{
    return Collector().fromReference(content, baseFolder, 0);
}

QStringList textListEntries(const QByteArray &content, const QString &baseFolder)
{
    return Collector().fromTextList(content, baseFolder, 0);
}

} // namespace MoviePlaylist
