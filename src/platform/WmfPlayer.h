#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

// Plays a Windows metafile through libwmf's parser and hands every drawing
// operation to a Canvas, in pixels of the picture. Free of Qt on purpose:
// libwmf's headers define macros (U8, U16, ...) that break Qt's.
namespace WmfPlayer {

struct Point {
    double x = 0;
    double y = 0;
};

struct Rect { // normalised: left <= right, top <= bottom
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

struct Colour {
    unsigned char red = 0;
    unsigned char green = 0;
    unsigned char blue = 0;
};

enum class LineStyle { None, Solid, Dash, Dot, DashDot, DashDotDot };
enum class LineCap { Round, Square, Flat };
enum class LineJoin { Round, Bevel, Miter };
enum class BrushStyle { None, Solid, Hatched, Pattern };
// The foreground mixes of SetROP2 that draw something else than the pen.
enum class Mix { Copy, Nothing, Black, White, Xor, InvertDestination, And, Or, InvertedPen };

struct Style {
    LineStyle line = LineStyle::Solid;
    LineCap cap = LineCap::Round;
    LineJoin join = LineJoin::Round;
    double lineWidth = 1; // at least one pixel
    Colour lineColour;
    BrushStyle fill = BrushStyle::Solid;
    int hatch = 0;                     // HS_HORIZONTAL ... HS_DIAGCROSS
    const void *pattern = nullptr;     // a bitmap from Canvas::readBitmap
    Colour fillColour;
    Colour background;                 // behind hatches, when opaque
    bool opaqueBackground = false;
    bool windingFill = false;
    Mix mix = Mix::Copy;
};

struct Font {
    std::string face; // in the code page of charSet
    int charSet = 0;
    double pixelHeight = 0;
    double widthRatio = 1; // lfWidth / lfHeight; exactly 1 when the width is unset
    int weight = 400;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
};

enum class VerticalAlignment { Top, Baseline, Bottom };

struct Text {
    Font font;
    std::string bytes;
    // The reference point, except that for top alignment libwmf moved it
    // down by the full height, its guess of the ascent.
    Point at;
    VerticalAlignment alignment = VerticalAlignment::Top;
    double angle = 0;   // degrees, counter-clockwise
    double squeeze = 1; // narrowing for characters wider than their spacing
    Colour colour;
    Colour background;
    Rect box;
    bool fillBox = false;
    bool clipToBox = false;
};

enum class ArcShape { Open, Pie, Chord };
enum class BlockFill { Brush, Black, White, InvertDestination, XorBrush };
enum class BitmapMix { Copy, And, Or, Xor, InvertedSource };

class Canvas {
public:
    virtual ~Canvas() = default;

    // Called once the picture's size is known, before any drawing.
    virtual void begin(int width, int height) = 0;
    virtual void drawPolygons(const Style &style, const std::vector<std::vector<Point>> &polygons, bool closed,
                              bool filled) = 0;
    virtual void drawEllipse(const Style &style, const Rect &box) = 0;
    // Angles in degrees, counter-clockwise, parametric on the ellipse.
    virtual void drawArc(const Style &style, const Rect &box, double start, double sweep, ArcShape shape) = 0;
    virtual void drawRectangle(const Style &style, const Rect &box, double cornerWidth, double cornerHeight) = 0;
    virtual void fillRectangle(const Rect &box, const Colour &colour) = 0;
    virtual void fillBlock(const Style &style, const Rect &box, BlockFill fill) = 0;
    virtual void fillRegion(const Style &style, const std::vector<Rect> &rectangles) = 0;
    virtual void frameRegion(const Style &style, const std::vector<Rect> &rectangles, double across, double down) = 0;
    virtual void clipTo(const std::vector<Rect> &rectangles) = 0; // none: no clipping
    virtual void drawBitmap(const void *bitmap, const Rect &target, const Rect &source, BitmapMix mix) = 0;
    virtual void drawText(const Text &text) = 0;

    // A DIB as metafiles hold it (no file header); null when it does not
    // decode. The canvas owns it until freeBitmap or its own end.
    virtual const void *readBitmap(const unsigned char *dib, long length, int *width, int *height) = 0;
    virtual void freeBitmap(const void *bitmap) = 0;
    // The width of the text as drawn, in units of the font's height.
    virtual double textWidth(const Font &font, const std::string &bytes) = 0;
};

// Whether the bytes start a placeable (key 0x9AC6CDD7) or a standard WMF.
bool isWmf(const unsigned char *bytes, std::size_t size);

// Size at 96 DPI from a placeable header; false for a standard WMF, whose
// size is only known once its records have been scanned.
bool placeableSize(const unsigned char *bytes, std::size_t size, int *width, int *height);

struct Outcome {
    bool played = false;
    int naturalWidth = 0; // at 96 DPI
    int naturalHeight = 0;
};

// Plays the file onto the canvas at its natural size, scaled down to fit in
// maxWidth x maxHeight when larger. Gives up when playing takes longer than
// the time limit; that only catches slow files, not a parser stuck inside
// one record.
Outcome play(const unsigned char *bytes, std::size_t size, int maxWidth, int maxHeight,
             std::chrono::milliseconds timeLimit, Canvas &canvas);

} // namespace WmfPlayer
