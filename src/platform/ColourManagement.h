#pragma once

#include <QByteArray>
#include <QColorSpace>
#include <QImage>

// Pictures with a colour profile are shown in the display's colours: the
// profile's colours are converted, not its numbers taken for sRGB ones.
namespace ColourManagement {

// `image` in `target`, from the colour space Qt read with it or else from
// `iccProfile`; through lcms2 when Qt cannot use the profile (lookup-table
// profiles, for one). A picture with neither comes back unchanged, and so
// does one whose profile neither can use.
QImage converted(QImage image, const QByteArray &iccProfile = {},
                 const QColorSpace &target = QColorSpace(QColorSpace::SRgb));

// The display's colour space from the ICC profile the desktop gives its
// screen (X11's _ICC_PROFILE); sRGB when there is none or it is unusable.
QColorSpace displayColourSpace(const QByteArray &screenProfile);

} // namespace ColourManagement
