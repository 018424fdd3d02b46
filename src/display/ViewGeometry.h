#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

// The main window's layout is kept in twips (1/1440 inch), as its rules are
// written; widgets convert at their boundary.
namespace ViewGeometry {

constexpr double DisplayTop = 2850;      // top of the display area
constexpr double BottomReserve = 710;    // below the display area
constexpr double SideReserve = 200;
constexpr double MinWindowHeight = 3500;
constexpr double MinWindowWidth = 5870;
constexpr double StatusBarOffset = 690;  // status row top = height - this
constexpr double StatusBarHeight = 690;
constexpr double Frame1Width = 8400;     // the browser frame, centred when it fits
constexpr double Frame1Height = 2760;

// Twips per pixel from the logical DPI: 15 at 96 DPI.
struct Twips {
    double perPixelX = 15;
    double perPixelY = 15;

    static Twips forDpi(double dpiX, double dpiY) { return {1440.0 / dpiX, 1440.0 / dpiY}; }

    int toPixelsX(double twips) const { return int(twips / perPixelX + (twips >= 0 ? 0.5 : -0.5)); }
    int toPixelsY(double twips) const { return int(twips / perPixelY + (twips >= 0 ? 0.5 : -0.5)); }
    double fromPixelsX(int pixels) const { return pixels * perPixelX; }
    double fromPixelsY(int pixels) const { return pixels * perPixelY; }
    QRect toPixels(double left, double top, double width, double height) const
    {
        return {toPixelsX(left), toPixelsY(top), toPixelsX(width), toPixelsY(height)};
    }
    // Twips per device pixel, where a logical pixel is `ratio` of them: a
    // picture pixel is a device pixel, so that " 100% " stays sharp.
    Twips devicePixels(double ratio) const
    {
        return ratio > 0 ? Twips{perPixelX / ratio, perPixelY / ratio} : *this;
    }
};

// The logical size that covers so many device pixels (a pixel's fraction dropped).
inline QSize logicalSize(double deviceWidth, double deviceHeight, double ratio)
{
    if (ratio <= 0)
        ratio = 1;
    return {int(deviceWidth / ratio + 1e-9), int(deviceHeight / ratio + 1e-9)};
}

// Whether a control of that device size shows the picture at its own size:
// the picture's size less the fraction of a logical pixel that logicalSize
// dropped. Then it is drawn pixel for pixel, never resampled by a pixel.
inline bool coversAtActualSize(QSize device, QSize picture, double ratio)
{
    const auto within = [ratio](int shown, int stored) { return shown <= stored && stored - shown < qMax(1.0, ratio); };
    return !picture.isEmpty() && within(device.width(), picture.width()) && within(device.height(), picture.height());
}

// How wide in centimetres a width of logical pixels shows on the screen:
// from its physical size when the screen reports a plausible one, else
// from the twips (the logical DPI).
inline double displayedCentimetres(int logicalWidth, double physicalDpi, const Twips &twips)
{
    if (physicalDpi >= 20 && physicalDpi <= 2000)
        return logicalWidth / physicalDpi * 2.54;
    return twips.fromPixelsX(logicalWidth) / 1440.0 * 2.54;
}

// Frame1's left edge: centred (a little to the left) when the window is
// wider than its minimum, else at 0.
inline double frame1Left(double windowWidth, double frameWidth)
{
    return windowWidth > MinWindowWidth ? (windowWidth - frameWidth) / 2 - 50 : 0;
}

// The frame narrows with a narrow window rather than being cut off.
inline double frame1Width(double windowWidth)
{
    return windowWidth < Frame1Width + 100 ? windowWidth - 100 : Frame1Width;
}

} // namespace ViewGeometry
