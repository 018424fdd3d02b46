#include "platform/WmfRenderer.h"

#include "platform/RleBitmapDecoder.h"
#include "platform/WmfPlayer.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QStringDecoder>
#include <QtEndian>

#include <algorithm>
#include <memory>
#include <vector>

namespace WmfRenderer {
namespace {

using namespace WmfPlayer;

constexpr int LargestEmbeddedBitmap = 16384; // a side; bitmaps in metafiles are far smaller
constexpr int SymbolCharset = 2;

QColor qtColour(const Colour &colour)
{
    return QColor(colour.red, colour.green, colour.blue);
}

QRectF qtRect(const Rect &rect)
{
    return QRectF(QPointF(rect.left, rect.top), QPointF(rect.right, rect.bottom));
}

QPen qtPen(const Style &style)
{
    if (style.line == LineStyle::None)
        return Qt::NoPen;
    QPen pen(qtColour(style.lineColour), style.lineWidth);
    static const Qt::PenStyle lines[] = {Qt::NoPen, Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine,
                                         Qt::DashDotDotLine};
    pen.setStyle(lines[int(style.line)]);
    pen.setCapStyle(style.cap == LineCap::Square ? Qt::SquareCap : style.cap == LineCap::Flat ? Qt::FlatCap : Qt::RoundCap);
    pen.setJoinStyle(style.join == LineJoin::Bevel  ? Qt::BevelJoin
                         : style.join == LineJoin::Miter ? Qt::MiterJoin
                                                         : Qt::RoundJoin);
    return pen;
}

QBrush qtBrush(const Style &style)
{
    static const Qt::BrushStyle hatches[] = {Qt::HorPattern, Qt::VerPattern, Qt::FDiagPattern,
                                             Qt::BDiagPattern, Qt::CrossPattern, Qt::DiagCrossPattern};
    switch (style.fill) {
    case BrushStyle::None: return Qt::NoBrush;
    case BrushStyle::Hatched: return QBrush(qtColour(style.fillColour), hatches[std::clamp(style.hatch, 0, 5)]);
    case BrushStyle::Pattern: return QBrush(*static_cast<const QImage *>(style.pattern));
    case BrushStyle::Solid: break;
    }
    return QBrush(qtColour(style.fillColour));
}

// Applies the foreground mix (SetROP2); false when it draws nothing.
bool applyMix(QPainter &painter, Mix mix, QPen &pen, QBrush &brush)
{
    switch (mix) {
    case Mix::Nothing: return false;
    case Mix::Black:
    case Mix::White: {
        const QColor colour = mix == Mix::Black ? Qt::black : Qt::white;
        if (pen.style() != Qt::NoPen)
            pen.setColor(colour);
        if (brush.style() != Qt::NoBrush)
            brush = colour;
        return true;
    }
    case Mix::Xor: painter.setCompositionMode(QPainter::RasterOp_SourceXorDestination); return true;
    case Mix::InvertDestination: painter.setCompositionMode(QPainter::RasterOp_NotDestination); return true;
    case Mix::And: painter.setCompositionMode(QPainter::RasterOp_SourceAndDestination); return true;
    case Mix::Or: painter.setCompositionMode(QPainter::RasterOp_SourceOrDestination); return true;
    case Mix::InvertedPen: painter.setCompositionMode(QPainter::RasterOp_NotSource); return true;
    case Mix::Copy: return true;
    }
    return true;
}

// A DIB as metafiles embed it (no file header) to a picture.
QImage decodeDib(const unsigned char *dib, long length)
{
    if (!dib || length < 16)
        return {};
    const quint32 headerSize = qFromLittleEndian<quint32>(dib);
    qsizetype paletteBytes = 0;
    if (headerSize == 12) { // OS/2 core header: 3-byte palette entries
        const int bits = qFromLittleEndian<quint16>(dib + 10);
        paletteBytes = bits <= 8 ? 3 * (qsizetype(1) << bits) : 0;
    } else if (headerSize >= 40 && headerSize <= 124 && length >= 40) {
        const int bits = qFromLittleEndian<quint16>(dib + 14);
        const quint32 compression = qFromLittleEndian<quint32>(dib + 16);
        const quint32 coloursUsed = qFromLittleEndian<quint32>(dib + 32);
        paletteBytes = 4 * (coloursUsed ? qMin<qsizetype>(coloursUsed, 256) : bits <= 8 ? qsizetype(1) << bits : 0);
        if (headerSize == 40 && compression == 3) // BI_BITFIELDS masks follow a short header
            paletteBytes += 12;
    } else {
        return {};
    }
    QByteArray file(14, '\0');
    file[0] = 'B';
    file[1] = 'M';
    qToLittleEndian<quint32>(quint32(14 + length), file.data() + 2);
    qToLittleEndian<quint32>(quint32(14 + headerSize + paletteBytes), file.data() + 10);
    file.append(reinterpret_cast<const char *>(dib), length);
    if (RleBitmapDecoder::isRleBitmap(file))
        return RleBitmapDecoder::decode(file, qint64(LargestEmbeddedBitmap) * LargestEmbeddedBitmap);
    return QImage::fromData(file, "BMP");
}

// Windows code page of a font character set; null for the ANSI set.
const char *codePageOf(int charSet)
{
    static const std::pair<int, const char *> codePages[] = {
        {128, "Shift_JIS"},    {129, "windows-949"},  {134, "GBK"},          {136, "Big5"},
        {161, "windows-1253"}, {162, "windows-1254"}, {163, "windows-1258"}, {177, "windows-1255"},
        {178, "windows-1256"}, {186, "windows-1257"}, {204, "windows-1251"}, {222, "windows-874"},
        {238, "windows-1250"}};
    for (const auto &[set, name] : codePages)
        if (set == charSet)
            return name;
    return nullptr;
}

bool isSymbolFont(const Font &font)
{
    return font.charSet == SymbolCharset || font.face.find("Symbol") != std::string::npos;
}

// Symbol fonts take their bytes as they stand; the others are in a Windows
// code page, 1252 unless the character set says otherwise.
QString decodeText(const std::string &bytes, const Font &font)
{
    const QByteArray raw = QByteArray::fromStdString(bytes);
    if (isSymbolFont(font))
        return QString::fromLatin1(raw);
    const char *codePage = codePageOf(font.charSet);
    QStringDecoder decoder(codePage ? codePage : "windows-1252");
    return decoder.isValid() ? QString(decoder(raw)) : QString::fromLatin1(raw);
}

// The font a logical font asks for. Fonts with a set width are stretched to
// that average character width, as GDI does; *stretch gets the factor.
QFont qtFont(const Font &font, double *stretch)
{
    QFont result;
    // Not QFont(""): Qt crashes recording a font without a family onto a QPicture.
    if (isSymbolFont(font))
        result.setFamily(QStringLiteral("Symbol"));
    else if (const QString face = decodeText(font.face, font); !face.trimmed().isEmpty())
        result.setFamily(face);
    result.setPixelSize(std::max(1, int(std::lround(font.pixelHeight))));
    result.setWeight(QFont::Weight(std::clamp(font.weight, 1, 1000)));
    result.setItalic(font.italic);
    result.setUnderline(font.underline);
    result.setStrikeOut(font.strikeOut);
    *stretch = 1.0;
    if (font.widthRatio != 1.0) {
        const double natural = QFontMetricsF(result).averageCharWidth() / result.pixelSize();
        if (natural > 0)
            *stretch = std::clamp(font.widthRatio / natural, 0.05, 20.0);
    }
    return result;
}

// Records what the player draws on a QPainter: onto a QPicture, which keeps
// painter commands without rasterising anything.
class PainterCanvas : public Canvas {
public:
    explicit PainterCanvas(QPicture *commands) : m_commands(commands) { }
    ~PainterCanvas() override { end(); }

    QSize size() const { return m_size; }
    void end()
    {
        if (m_painter.isActive())
            m_painter.end();
    }

    void begin(int width, int height) override
    {
        m_size = QSize(width, height);
        m_painter.begin(m_commands);
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.setRenderHint(QPainter::SmoothPixmapTransform);
    }

    void drawPolygons(const Style &style, const std::vector<std::vector<Point>> &polygons, bool closed,
                      bool filled) override
    {
        QPainterPath path;
        for (const std::vector<Point> &points : polygons) {
            if (points.size() < 2)
                continue;
            QPolygonF polygon;
            for (const Point &point : points)
                polygon << QPointF(point.x, point.y);
            path.addPolygon(polygon);
            if (closed)
                path.closeSubpath();
        }
        drawPath(style, path, filled);
    }

    void drawEllipse(const Style &style, const Rect &box) override
    {
        QPainterPath path;
        path.addEllipse(qtRect(box));
        drawPath(style, path, true);
    }

    void drawArc(const Style &style, const Rect &box, double start, double sweep, ArcShape shape) override
    {
        const QRectF rect = qtRect(box);
        QPainterPath path;
        if (shape == ArcShape::Pie)
            path.moveTo(rect.center());
        else
            path.arcMoveTo(rect, start);
        path.arcTo(rect, start, sweep);
        if (shape != ArcShape::Open)
            path.closeSubpath();
        drawPath(style, path, shape != ArcShape::Open);
    }

    void drawRectangle(const Style &style, const Rect &box, double cornerWidth, double cornerHeight) override
    {
        QPainterPath path;
        if (cornerWidth > 0 && cornerHeight > 0)
            path.addRoundedRect(qtRect(box), cornerWidth / 2, cornerHeight / 2);
        else
            path.addRect(qtRect(box));
        drawPath(style, path, true);
    }

    void fillRectangle(const Rect &box, const Colour &colour) override
    {
        m_painter.fillRect(qtRect(box), qtColour(colour));
    }

    void fillBlock(const Style &style, const Rect &box, BlockFill fill) override
    {
        switch (fill) {
        case BlockFill::Brush: m_painter.fillRect(qtRect(box), qtBrush(style)); break;
        case BlockFill::Black: m_painter.fillRect(qtRect(box), Qt::black); break;
        case BlockFill::White: m_painter.fillRect(qtRect(box), Qt::white); break;
        case BlockFill::InvertDestination:
            m_painter.setCompositionMode(QPainter::RasterOp_NotDestination);
            m_painter.fillRect(qtRect(box), Qt::black);
            break;
        case BlockFill::XorBrush:
            m_painter.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
            m_painter.fillRect(qtRect(box), qtBrush(style));
            break;
        }
        m_painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }

    void fillRegion(const Style &style, const std::vector<Rect> &rectangles) override
    {
        QPen noPen(Qt::NoPen);
        QBrush brush = qtBrush(style);
        if (!applyMix(m_painter, style.mix, noPen, brush))
            return;
        for (const Rect &rectangle : rectangles)
            m_painter.fillRect(qtRect(rectangle), brush);
        m_painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }

    void frameRegion(const Style &style, const std::vector<Rect> &rectangles, double across, double down) override
    {
        const QBrush brush = qtBrush(style);
        for (const Rect &rectangle : rectangles) {
            const QRectF box = qtRect(rectangle);
            m_painter.fillRect(QRectF(box.left(), box.top(), box.width(), down), brush);
            m_painter.fillRect(QRectF(box.left(), box.bottom() - down, box.width(), down), brush);
            m_painter.fillRect(QRectF(box.left(), box.top(), across, box.height()), brush);
            m_painter.fillRect(QRectF(box.right() - across, box.top(), across, box.height()), brush);
        }
    }

    void clipTo(const std::vector<Rect> &rectangles) override
    {
        if (rectangles.empty()) {
            m_painter.setClipping(false);
            return;
        }
        QPainterPath area;
        for (const Rect &rectangle : rectangles)
            area.addRect(qtRect(rectangle));
        m_painter.setClipPath(area.simplified());
    }

    void drawBitmap(const void *bitmap, const Rect &target, const Rect &source, BitmapMix mix) override
    {
        static const QPainter::CompositionMode modes[] = {
            QPainter::CompositionMode_SourceOver, QPainter::RasterOp_SourceAndDestination,
            QPainter::RasterOp_SourceOrDestination, QPainter::RasterOp_SourceXorDestination,
            QPainter::RasterOp_NotSource};
        m_painter.setCompositionMode(modes[int(mix)]);
        m_painter.drawImage(qtRect(target), *static_cast<const QImage *>(bitmap), qtRect(source));
        m_painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }

    void drawText(const Text &text) override
    {
        if (!qGuiApp)
            return;
        double stretch = 1.0;
        const QFont font = qtFont(text.font, &stretch);
        const QFontMetricsF metrics(font);
        m_painter.save();
        if (text.fillBox)
            m_painter.fillRect(qtRect(text.box), qtColour(text.background));
        if (text.clipToBox)
            m_painter.setClipRect(qtRect(text.box), Qt::IntersectClip);
        // Put the baseline where the real font has it: libwmf moved top-aligned
        // text down by the full height.
        double baseline = 0;
        if (text.alignment == VerticalAlignment::Top)
            baseline = metrics.ascent() - text.font.pixelHeight;
        else if (text.alignment == VerticalAlignment::Bottom)
            baseline = -metrics.descent();
        m_painter.translate(text.at.x, text.at.y);
        m_painter.rotate(-text.angle);
        m_painter.scale(std::clamp(stretch * text.squeeze, 0.01, 50.0), 1.0);
        m_painter.setFont(font);
        m_painter.setPen(qtColour(text.colour));
        m_painter.drawText(QPointF(0, baseline), decodeText(text.bytes, text.font));
        m_painter.restore();
    }

    const void *readBitmap(const unsigned char *dib, long length, int *width, int *height) override
    {
        auto image = std::make_unique<QImage>(decodeDib(dib, length));
        if (image->isNull() || image->width() > LargestEmbeddedBitmap || image->height() > LargestEmbeddedBitmap)
            return nullptr;
        *width = image->width();
        *height = image->height();
        m_bitmaps.push_back(std::move(image));
        return m_bitmaps.back().get();
    }

    void freeBitmap(const void *bitmap) override
    {
        std::erase_if(m_bitmaps, [&](const auto &image) { return image.get() == bitmap; });
    }

    double textWidth(const Font &font, const std::string &bytes) override
    {
        if (!qGuiApp || font.pixelHeight <= 0)
            return 0.5 * double(bytes.size());
        double stretch = 1.0;
        const QFont measured = qtFont(font, &stretch);
        return QFontMetricsF(measured).horizontalAdvance(decodeText(bytes, font)) * stretch / font.pixelHeight;
    }

private:
    void drawPath(const Style &style, QPainterPath path, bool filled)
    {
        QPen pen = qtPen(style);
        QBrush brush = filled ? qtBrush(style) : QBrush(Qt::NoBrush);
        if ((pen.style() == Qt::NoPen && brush.style() == Qt::NoBrush) || path.isEmpty()
            || !applyMix(m_painter, style.mix, pen, brush))
            return;
        path.setFillRule(style.windingFill ? Qt::WindingFill : Qt::OddEvenFill);
        if (brush.style() != Qt::NoBrush) {
            if (style.fill == BrushStyle::Hatched && style.opaqueBackground)
                m_painter.fillPath(path, qtColour(style.background));
            m_painter.fillPath(path, brush);
        }
        if (pen.style() != Qt::NoPen)
            m_painter.strokePath(path, pen);
        m_painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }

    QPicture *m_commands;
    QPainter m_painter;
    QSize m_size;
    std::vector<std::unique_ptr<QImage>> m_bitmaps; // lent to libwmf by address
};

} // namespace

bool isWmf(const QByteArray &fileStart)
{
    return WmfPlayer::isWmf(reinterpret_cast<const unsigned char *>(fileStart.constData()), size_t(fileStart.size()));
}

QSize naturalSizeOf(const QByteArray &fileStart)
{
    int width = 0;
    int height = 0;
    if (!WmfPlayer::placeableSize(reinterpret_cast<const unsigned char *>(fileStart.constData()),
                                  size_t(fileStart.size()), &width, &height))
        return {};
    return QSize(width, height);
}

Recording record(const QByteArray &file, const QSize &bound, int timeLimitMs)
{
    Recording recording;
    PainterCanvas canvas(&recording.commands);
    const WmfPlayer::Outcome outcome
        = WmfPlayer::play(reinterpret_cast<const unsigned char *>(file.constData()), size_t(file.size()),
                          bound.width(), bound.height(), std::chrono::milliseconds(timeLimitMs), canvas);
    canvas.end();
    if (!outcome.played)
        return Recording();
    recording.size = canvas.size();
    recording.naturalSize = QSize(outcome.naturalWidth, outcome.naturalHeight);
    return recording;
}

QImage paint(const Recording &recording)
{
    if (recording.isNull())
        return {};
    QImage image(recording.size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return {};
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.drawPicture(0, 0, recording.commands);
    return image;
}

} // namespace WmfRenderer
