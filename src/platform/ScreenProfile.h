#pragma once

#include <QByteArray>
#include <QString>

// The ICC profile the desktop gives a screen: X11's _ICC_PROFILE property of
// the root window (the freedesktop "ICC profiles in X" convention, which
// colour daemons set), or else the profile colord holds for the screen's
// output. Empty when neither has one.
namespace ScreenProfile {

// "_ICC_PROFILE" for the first screen, "_ICC_PROFILE_1" for the second, ...
QByteArray propertyName(int screen);

// A larger property is refused rather than read.
constexpr qsizetype MaxProfileBytes = 16 * 1024 * 1024;

// screen: its place in the X server's screen order; output: its RandR name
// ("HDMI-1"), the one colord knows it by.
QByteArray read(int screen, const QString &output);

// Only the X11 property; empty off X11.
QByteArray fromX11(int screen);

// Only colord's profile for the output; empty when colord does not answer.
QByteArray fromColord(const QString &output);

} // namespace ScreenProfile
