#include "platform/WmfPlayer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

// libwmf comes last: its U8/U16/... macros break headers included after it.
#include <libwmf/api.h>
#include <libwmf/defs.h>
#include <libwmf/ipa.h>
#include <libwmf/macro.h>

namespace WmfPlayer {
namespace {

constexpr double ScreenDpi = 96.0;
constexpr std::uint32_t PlaceableKey = 0x9AC6CDD7;
constexpr std::size_t PlaceableHeaderSize = 22;
constexpr unsigned EtoOpaque = 0x0002;
constexpr unsigned EtoClipped = 0x0004;

unsigned read16(const unsigned char *at)
{
    return unsigned(at[0]) | unsigned(at[1]) << 8;
}

int readSigned16(const unsigned char *at)
{
    return std::int16_t(read16(at));
}

std::uint32_t read32(const unsigned char *at)
{
    return read16(at) | std::uint32_t(read16(at + 2)) << 16;
}

Rect normalised(double x1, double y1, double x2, double y2)
{
    return {std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2)};
}

struct Session {
    Canvas *canvas = nullptr;
    bool drawing = false; // the first play only finds where the picture lies
    int width = 0;        // of the picture
    int height = 0;
    Rect scannedBox;      // device-space extent of everything drawn, from wmf_scan
    bool placeable = false;
    Rect placeableFrame;  // in logical units
    Rect deviceBox;       // the part of libwmf's device space that is the picture
    bool mapped = false;
    double scaleX = 1;
    double scaleY = 1;
    std::string leadByte; // first half of a double-byte character drawn byte by byte
    Point leadByteAt;
    std::chrono::steady_clock::time_point deadline;

    // Fixes the picture's place in device space at the first drawing, once
    // the file has set up its window. A placeable file shows its window, as
    // when Windows plays it (the header's frame if it sets none); other files
    // show what they draw.
    void mapWith(const wmfDC *dc)
    {
        if (mapped)
            return;
        mapped = true;
        deviceBox = scannedBox;
        if (placeable) {
            constexpr int Isotropic = 7;
            constexpr int Anisotropic = 8;
            const bool scaled = dc->map_mode == Isotropic || dc->map_mode == Anisotropic;
            const double unitX = !scaled && dc->Window.width < 0 ? -dc->pixel_width : dc->pixel_width;
            const double unitY = !scaled && dc->Window.height < 0 ? -dc->pixel_height : dc->pixel_height;
            Rect window = normalised(0, 0, dc->Window.width * unitX, dc->Window.height * unitY);
            if (dc->Window.width == 0 || dc->Window.height == 0)
                window = normalised((placeableFrame.left - dc->Window.Ox) * unitX,
                                    (placeableFrame.top - dc->Window.Oy) * unitY,
                                    (placeableFrame.right - dc->Window.Ox) * unitX,
                                    (placeableFrame.bottom - dc->Window.Oy) * unitY);
            if (window.right - window.left > 1e-6 && window.bottom - window.top > 1e-6)
                deviceBox = window;
        }
        if (deviceBox.right - deviceBox.left > 1e-6 && deviceBox.bottom - deviceBox.top > 1e-6) {
            scaleX = width / (deviceBox.right - deviceBox.left);
            scaleY = height / (deviceBox.bottom - deviceBox.top);
        }
    }
    Point map(const wmfD_Coord &at) const
    {
        return {(at.x - deviceBox.left) * scaleX, (at.y - deviceBox.top) * scaleY};
    }
    Rect map(const wmfD_Coord &a, const wmfD_Coord &b) const
    {
        const Point first = map(a);
        const Point second = map(b);
        return normalised(first.x, first.y, second.x, second.y);
    }
};

Session &sessionOf(wmfAPI *api)
{
    return *static_cast<Session *>(api->device_data);
}

// The session to draw with, or null during the mapping pass.
Session *drawingSession(wmfAPI *api, const wmfDC *dc)
{
    Session &session = sessionOf(api);
    session.mapWith(dc);
    return session.drawing ? &session : nullptr;
}

Colour colourOf(const wmfRGB &rgb)
{
    return {rgb.r, rgb.g, rgb.b};
}

Style styleOf(const Session &session, const wmfDC *dc)
{
    Style style;
    if (const wmfPen *pen = dc->pen) {
        static const LineStyle lines[] = {LineStyle::Solid, LineStyle::Dash, LineStyle::Dot, LineStyle::DashDot,
                                          LineStyle::DashDotDot, LineStyle::None, LineStyle::Solid,
                                          LineStyle::Solid, LineStyle::Dot};
        const unsigned line = WMF_PEN_STYLE(pen);
        style.line = line < 9 ? lines[line] : LineStyle::Solid;
        const unsigned cap = WMF_PEN_ENDCAP(pen);
        style.cap = cap == PS_ENDCAP_SQUARE ? LineCap::Square : cap == PS_ENDCAP_FLAT ? LineCap::Flat : LineCap::Round;
        const unsigned join = WMF_PEN_JOIN(pen);
        style.join = join == PS_JOIN_BEVEL ? LineJoin::Bevel : join == PS_JOIN_MITER ? LineJoin::Miter : LineJoin::Round;
        // Cosmetic pens are one device pixel wide however fine the logical units.
        style.lineWidth = std::max(1.0, (pen->width * session.scaleX + pen->height * session.scaleY) / 2);
        style.lineColour = colourOf(pen->lopnColor);
    }
    if (const wmfBrush *brush = dc->brush) {
        switch (WMF_BRUSH_STYLE(brush)) {
        case BS_NULL: style.fill = BrushStyle::None; break;
        case BS_HATCHED: style.fill = BrushStyle::Hatched; break;
        case BS_PATTERN:
        case BS_DIBPATTERN:
        case BS_DIBPATTERNPT:
        case BS_PATTERN8X8:
        case BS_DIBPATTERN8X8: style.fill = brush->bmp.data ? BrushStyle::Pattern : BrushStyle::Solid; break;
        default: style.fill = BrushStyle::Solid; break;
        }
        style.hatch = std::min<int>(WMF_BRUSH_HATCH(brush), HS_DIAGCROSS);
        style.pattern = brush->bmp.data;
        style.fillColour = colourOf(brush->lbColor);
    }
    style.background = colourOf(dc->bgcolor);
    style.opaqueBackground = WMF_DC_OPAQUE(dc);
    style.windingFill = dc->polyfillmode == WINDING;
    switch (dc->ROPmode) {
    case R2_NOP: style.mix = Mix::Nothing; break;
    case R2_BLACK: style.mix = Mix::Black; break;
    case R2_WHITE: style.mix = Mix::White; break;
    case R2_XORPEN: style.mix = Mix::Xor; break;
    case R2_NOT: style.mix = Mix::InvertDestination; break;
    case R2_MASKPEN: style.mix = Mix::And; break;
    case R2_MERGEPEN: style.mix = Mix::Or; break;
    case R2_NOTCOPYPEN: style.mix = Mix::InvertedPen; break;
    default: style.mix = Mix::Copy; break;
    }
    return style;
}

Font fontOf(const wmfFont *logical, double pixelHeight)
{
    Font font;
    font.face = logical->lfFaceName ? logical->lfFaceName : "";
    font.charSet = logical->lfCharSet;
    font.pixelHeight = pixelHeight;
    // libwmf fills an unset width with the height.
    font.widthRatio = logical->lfWidth && logical->lfHeight ? double(logical->lfWidth) / logical->lfHeight : 1.0;
    font.weight = logical->lfWeight ? logical->lfWeight : 400;
    font.italic = logical->lfItalic;
    font.underline = logical->lfUnderline;
    font.strikeOut = logical->lfStrikeOut;
    return font;
}

bool isLeadByte(unsigned char byte, int charSet)
{
    switch (charSet) {
    case 128: return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC); // Shift-JIS
    case 129: // Korean, simplified and traditional Chinese
    case 134:
    case 136: return byte >= 0x81 && byte <= 0xFE;
    default: return false;
    }
}

void drawPixel(wmfAPI *api, wmfDrawPixel_t *pixel)
{
    if (Session *session = drawingSession(api, pixel->dc)) {
        const Point at = session->map(pixel->pt);
        session->canvas->fillRectangle({at.x, at.y, at.x + std::max(1.0, pixel->pixel_width * session->scaleX),
                                        at.y + std::max(1.0, pixel->pixel_height * session->scaleY)},
                                       colourOf(pixel->color));
    }
}

void drawArcShape(wmfAPI *api, const wmfDrawArc_t *arc, ArcShape shape)
{
    Session *session = drawingSession(api, arc->dc);
    const Rect box = session ? session->map(arc->TL, arc->BR) : Rect();
    const double width = box.right - box.left;
    const double height = box.bottom - box.top;
    if (width <= 0 || height <= 0)
        return;
    // libwmf gives the radial end points relative to the centre. GDI runs
    // counter-clockwise from start to end.
    const auto angleOf = [&](const wmfD_Coord &v) {
        return std::atan2(-v.y * session->scaleY / height, v.x * session->scaleX / width) * 180.0 / M_PI;
    };
    const double start = angleOf(arc->start);
    double sweep = angleOf(arc->end) - start;
    while (sweep <= 0)
        sweep += 360.0;
    session->canvas->drawArc(styleOf(*session, arc->dc), box, start, sweep, shape);
}

void drawPie(wmfAPI *api, wmfDrawArc_t *arc) { drawArcShape(api, arc, ArcShape::Pie); }
void drawChord(wmfAPI *api, wmfDrawArc_t *arc) { drawArcShape(api, arc, ArcShape::Chord); }
void drawArc(wmfAPI *api, wmfDrawArc_t *arc) { drawArcShape(api, arc, ArcShape::Open); }

void drawEllipse(wmfAPI *api, wmfDrawArc_t *arc)
{
    if (Session *session = drawingSession(api, arc->dc))
        session->canvas->drawEllipse(styleOf(*session, arc->dc), session->map(arc->TL, arc->BR));
}

std::vector<Point> pointsOf(const Session &session, const wmfD_Coord *points, int count)
{
    std::vector<Point> mapped;
    for (int i = 0; points && i < count; ++i)
        mapped.push_back(session.map(points[i]));
    return mapped;
}

void drawLine(wmfAPI *api, wmfDrawLine_t *line)
{
    if (Session *session = drawingSession(api, line->dc))
        session->canvas->drawPolygons(styleOf(*session, line->dc), {{session->map(line->from), session->map(line->to)}},
                                      false, false);
}

void drawPolyline(wmfAPI *api, wmfPolyLine_t *line)
{
    if (Session *session = drawingSession(api, line->dc))
        session->canvas->drawPolygons(styleOf(*session, line->dc), {pointsOf(*session, line->pt, line->count)},
                                      false, false);
}

void drawPolygon(wmfAPI *api, wmfPolyLine_t *polygon)
{
    if (Session *session = drawingSession(api, polygon->dc))
        session->canvas->drawPolygons(styleOf(*session, polygon->dc),
                                      {pointsOf(*session, polygon->pt, polygon->count)}, true, true);
}

void drawPolyPolygon(wmfAPI *api, wmfPolyPoly_t *polygons)
{
    Session *session = drawingSession(api, polygons->dc);
    if (!session || !polygons->pt || !polygons->count)
        return;
    std::vector<std::vector<Point>> all;
    for (int i = 0; i < polygons->npoly; ++i)
        all.push_back(pointsOf(*session, polygons->pt[i], polygons->count[i]));
    session->canvas->drawPolygons(styleOf(*session, polygons->dc), all, true, true);
}

void drawRectangle(wmfAPI *api, wmfDrawRectangle_t *rectangle)
{
    if (Session *session = drawingSession(api, rectangle->dc))
        session->canvas->drawRectangle(styleOf(*session, rectangle->dc), session->map(rectangle->TL, rectangle->BR),
                                       rectangle->width * session->scaleX, rectangle->height * session->scaleY);
}

// PatBlt and source-less BitBlt: only the raster operations without a source.
void drawRasterOperation(wmfAPI *api, wmfROP_Draw_t *operation)
{
    Session *session = drawingSession(api, operation->dc);
    if (!session)
        return;
    BlockFill fill;
    switch (operation->ROP) {
    case PATCOPY: fill = BlockFill::Brush; break;
    case BLACKNESS: fill = BlockFill::Black; break;
    case WHITENESS: fill = BlockFill::White; break;
    case DSTINVERT: fill = BlockFill::InvertDestination; break;
    case PATINVERT: fill = BlockFill::XorBrush; break;
    default: return;
    }
    session->canvas->fillBlock(styleOf(*session, operation->dc), session->map(operation->TL, operation->BR), fill);
}

void readBitmap(wmfAPI *api, wmfBMP_Read_t *read)
{
    read->bmp.data = nullptr;
    Session &session = sessionOf(api);
    int width = 0;
    int height = 0;
    const void *bitmap = session.drawing ? session.canvas->readBitmap(read->buffer, read->length, &width, &height)
                                         : nullptr;
    if (!bitmap || width < 1 || height < 1 || width > 0xFFFF || height > 0xFFFF)
        return;
    read->bmp.width = static_cast<U16>(width);
    read->bmp.height = static_cast<U16>(height);
    read->bmp.data = const_cast<void *>(bitmap);
}

void freeBitmap(wmfAPI *api, wmfBMP *bitmap)
{
    if (bitmap->data)
        sessionOf(api).canvas->freeBitmap(bitmap->data);
    bitmap->data = nullptr;
}

void drawBitmap(wmfAPI *api, wmfBMP_Draw_t *draw)
{
    Session *session = drawingSession(api, draw->dc);
    if (!session || !draw->bmp.data)
        return;
    wmfD_Coord farCorner = draw->pt;
    farCorner.x += float(draw->crop.w * draw->pixel_width);
    farCorner.y += float(draw->crop.h * draw->pixel_height);
    BitmapMix mix = BitmapMix::Copy;
    switch (draw->type) {
    case SRCAND: mix = BitmapMix::And; break;
    case SRCPAINT: mix = BitmapMix::Or; break;
    case SRCINVERT: mix = BitmapMix::Xor; break;
    case NOTSRCCOPY: mix = BitmapMix::InvertedSource; break;
    default: break;
    }
    const Rect source{double(draw->crop.x), double(draw->crop.y), double(draw->crop.x + draw->crop.w),
                      double(draw->crop.y + draw->crop.h)};
    session->canvas->drawBitmap(draw->bmp.data, session->map(draw->pt, farCorner), source, mix);
}

void drawText(wmfAPI *api, wmfDrawText_t *text)
{
    Session *session = drawingSession(api, text->dc);
    const wmfDC *dc = text->dc;
    if (!session || !dc->font || !text->str)
        return;
    const double pixelHeight = text->font_height * session->scaleY;
    if (pixelHeight < 0.5 || pixelHeight > 4.0 * session->height + 1000)
        return;
    // Text with character spacing arrives one byte at a time; the halves of
    // a double-byte character are joined and drawn where the first one goes.
    Text drawn;
    drawn.bytes = text->str;
    drawn.at = session->map(text->pt);
    if (drawn.bytes.size() == 1 && session->leadByte.empty()
        && isLeadByte(static_cast<unsigned char>(drawn.bytes[0]), dc->font->lfCharSet)) {
        session->leadByte = drawn.bytes;
        session->leadByteAt = drawn.at;
        return;
    }
    if (!session->leadByte.empty()) {
        drawn.bytes.insert(0, session->leadByte);
        drawn.at = session->leadByteAt;
        session->leadByte.clear();
    }
    drawn.font = fontOf(dc->font, pixelHeight);
    const unsigned vertical = dc->textalign & TA_BASELINE;
    drawn.alignment = vertical == TA_BASELINE ? VerticalAlignment::Baseline
        : vertical == TA_BOTTOM               ? VerticalAlignment::Bottom
                                              : VerticalAlignment::Top;
    drawn.angle = dc->font->lfEscapement / 10.0;
    drawn.squeeze = text->font_ratio / drawn.font.widthRatio;
    drawn.colour = colourOf(dc->textcolor);
    drawn.background = colourOf(dc->bgcolor);
    drawn.box = session->map(text->TL, text->BR);
    drawn.fillBox = text->flags & EtoOpaque;
    drawn.clipToBox = text->flags & EtoClipped;
    session->canvas->drawText(drawn);
}

// Text width for a font size of one, which libwmf multiplies by the height
// and the width ratio (in device units) to align text.
float stringWidth(wmfAPI *api, wmfFont *logical, char *bytes)
{
    Session &session = sessionOf(api);
    if (!bytes || !logical)
        return 0;
    const Font font = fontOf(logical, 100);
    double width = session.canvas->textWidth(font, bytes) / font.widthRatio;
    // libwmf measures across in units of the height; device units may differ.
    if (session.mapped && session.scaleX > 0)
        width *= session.scaleY / session.scaleX;
    return float(width);
}

void mapFont(wmfAPI *, wmfFont *) { }

std::vector<Rect> rectanglesOf(const Session &session, const wmfPolyRectangle_t *region)
{
    std::vector<Rect> rectangles;
    for (unsigned i = 0; region->TL && region->BR && i < region->count; ++i)
        rectangles.push_back(session.map(region->TL[i], region->BR[i]));
    return rectangles;
}

void paintRegion(wmfAPI *api, wmfPolyRectangle_t *region)
{
    if (Session *session = drawingSession(api, region->dc))
        session->canvas->fillRegion(styleOf(*session, region->dc), rectanglesOf(*session, region));
}

void frameRegion(wmfAPI *api, wmfPolyRectangle_t *region)
{
    if (Session *session = drawingSession(api, region->dc))
        session->canvas->frameRegion(styleOf(*session, region->dc), rectanglesOf(*session, region),
                                     std::max(1.0, region->width * session->scaleX),
                                     std::max(1.0, region->height * session->scaleY));
}

void clipToRegion(wmfAPI *api, wmfPolyRectangle_t *region)
{
    if (Session *session = drawingSession(api, region->dc))
        session->canvas->clipTo(rectanglesOf(*session, region));
}

void installDevice(wmfAPI *api)
{
    auto *functions = static_cast<wmfFunctionReference *>(api->function_reference);
    functions->draw_pixel = drawPixel;
    functions->draw_pie = drawPie;
    functions->draw_chord = drawChord;
    functions->draw_arc = drawArc;
    functions->draw_ellipse = drawEllipse;
    functions->draw_line = drawLine;
    functions->poly_line = drawPolyline;
    functions->draw_polygon = drawPolygon;
    functions->draw_polypolygon = drawPolyPolygon;
    functions->draw_rectangle = drawRectangle;
    functions->rop_draw = drawRasterOperation;
    functions->bmp_draw = drawBitmap;
    functions->bmp_read = readBitmap;
    functions->bmp_free = freeBitmap;
    functions->draw_text = drawText;
    functions->region_frame = frameRegion;
    functions->region_paint = paintRegion;
    functions->region_clip = clipToRegion;
}

// Called after every record; a non-zero answer stops the player.
int stopWhenLate(void *context, float)
{
    return std::chrono::steady_clock::now() > static_cast<const Session *>(context)->deadline ? 1 : 0;
}

// libwmf allocates the largest record the header claims, up to 8 GB, before
// it reads one; no record can be longer than the file, so neither is that.
void boundLargestRecord(std::vector<unsigned char> &bytes)
{
    const std::size_t header = bytes.size() >= 4 && read32(bytes.data()) == PlaceableKey ? PlaceableHeaderSize : 0;
    constexpr std::size_t LargestRecordAt = 12;
    if (bytes.size() < header + LargestRecordAt + 4)
        return;
    unsigned char *field = bytes.data() + header + LargestRecordAt;
    const std::uint32_t words = std::uint32_t(std::min<std::size_t>(read32(field), (bytes.size() - header) / 2));
    for (int i = 0; i < 4; ++i)
        field[i] = static_cast<unsigned char>(words >> (8 * i));
}

} // namespace

bool isWmf(const unsigned char *bytes, std::size_t size)
{
    if (size >= 4 && read32(bytes) == PlaceableKey)
        return true;
    return size >= 6 && (read16(bytes) == 1 || read16(bytes) == 2) && read16(bytes + 2) == 9
        && (read16(bytes + 4) == 0x0100 || read16(bytes + 4) == 0x0300);
}

bool placeableSize(const unsigned char *bytes, std::size_t size, int *width, int *height)
{
    if (size < PlaceableHeaderSize || read32(bytes) != PlaceableKey || read16(bytes + 14) == 0)
        return false;
    const double unitsPerInch = read16(bytes + 14);
    *width = std::max(1, int(std::lround(std::abs(readSigned16(bytes + 10) - readSigned16(bytes + 6)) * ScreenDpi / unitsPerInch)));
    *height = std::max(1, int(std::lround(std::abs(readSigned16(bytes + 12) - readSigned16(bytes + 8)) * ScreenDpi / unitsPerInch)));
    return true;
}

Outcome play(const unsigned char *bytes, std::size_t size, int maxWidth, int maxHeight,
             std::chrono::milliseconds timeLimit, Canvas &canvas)
{
    Outcome outcome;
    Session session;
    session.canvas = &canvas;
    session.placeable = placeableSize(bytes, size, &outcome.naturalWidth, &outcome.naturalHeight);
    if (!isWmf(bytes, size) || maxWidth < 1 || maxHeight < 1 || (size >= 4 && read32(bytes) == PlaceableKey && !session.placeable))
        return outcome;
    if (session.placeable)
        session.placeableFrame = normalised(readSigned16(bytes + 6), readSigned16(bytes + 8), readSigned16(bytes + 10),
                                            readSigned16(bytes + 12));

    wmfAPI_Options options;
    std::memset(&options, 0, sizeof options);
    options.function = installDevice;
    wmfAPI *api = nullptr;
    const unsigned long flags = WMF_OPT_FUNCTION | WMF_OPT_IGNORE_NONFATAL | WMF_OPT_NO_ERROR | WMF_OPT_NO_DEBUG;
    if (wmf_lite_create(&api, flags, &options) != wmf_E_None || !api)
        return outcome;
    struct Destroyer {
        wmfAPI *api;
        ~Destroyer() { wmf_lite_destroy(api); }
    } destroyer{api};

    api->device_data = &session;
    auto *fonts = static_cast<wmfFontData *>(wmf_malloc(api, sizeof(wmfFontData)));
    if (!fonts)
        return outcome;
    fonts->map = mapFont;
    fonts->stringwidth = stringWidth;
    fonts->user_data = nullptr;
    api->font_data = fonts;
    session.deadline = std::chrono::steady_clock::now() + timeLimit;
    wmf_status_function(api, &session, stopWhenLate);

    std::vector<unsigned char> writable(bytes, bytes + size); // libwmf wants a writable buffer
    boundLargestRecord(writable);
    wmfD_Rect box;
    if (wmf_mem_open(api, writable.data(), long(writable.size())) != wmf_E_None || wmf_scan(api, 0, &box) != wmf_E_None)
        return outcome;
    if (!session.placeable) {
        unsigned width = 0;
        unsigned height = 0;
        if (wmf_display_size(api, &width, &height, ScreenDpi, ScreenDpi) != wmf_E_None)
            return outcome;
        outcome.naturalWidth = int(std::clamp(width, 1u, 1u << 30));
        outcome.naturalHeight = int(std::clamp(height, 1u, 1u << 30));
    }
    session.scannedBox = normalised(box.TL.x, box.TL.y, box.BR.x, box.BR.y);
    session.width = outcome.naturalWidth;
    session.height = outcome.naturalHeight;
    if (session.width > maxWidth || session.height > maxHeight) { // as QSize::scaled keeps proportions
        const std::int64_t widthAtMaxHeight = std::int64_t(maxHeight) * session.width / session.height;
        if (widthAtMaxHeight <= maxWidth) {
            session.width = int(widthAtMaxHeight);
            session.height = maxHeight;
        } else {
            session.height = int(std::int64_t(maxWidth) * session.height / session.width);
            session.width = maxWidth;
        }
        session.width = std::max(1, session.width);
        session.height = std::max(1, session.height);
    }

    // The first play finds where the picture lies (text alignment needs the
    // scales before the first string), the second draws it.
    if (wmf_play(api, 0, &box) != wmf_E_None)
        return outcome;
    session.drawing = true;
    canvas.begin(session.width, session.height);
    outcome.played = wmf_play(api, 0, &box) == wmf_E_None;
    return outcome;
}

} // namespace WmfPlayer
