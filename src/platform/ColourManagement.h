#pragma once

#include <QByteArray>
#include <QColorSpace>
#include <QImage>

// Pictures with a colour profile are shown in the display's colours: the
// profile's colours are converted, not its numbers taken for sRGB ones.
namespace ColourManagement {

// `image` in `target`, from the colour space Qt read with it or else from
// `iccProfile`; through lcms2 when Qt cannot use the profile (lookup-table
// profiles, for one). A picture with neither, or with a profile neither can
// use, is taken as sRGB, so it comes back unchanged when `target` is sRGB.
QImage converted(QImage image, const QByteArray &iccProfile = {},
                 const QColorSpace &target = QColorSpace(QColorSpace::SRgb));

// The colour space of the ICC profile the desktop gives a screen; sRGB when
// there is none or Qt cannot use it (a display profile of lookup tables).
QColorSpace screenColourSpace(const QByteArray &screenProfile);

// What the screen shows (a grab of the window), back in sRGB.
QImage shownInSrgb(QImage shown);

// The screen's colour space, for every picture shown; sRGB until set.
void setDisplayColourSpace(const QColorSpace &space);
QColorSpace displayColourSpace();

} // namespace ColourManagement
