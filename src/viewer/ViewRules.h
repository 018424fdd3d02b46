#pragma once

#include <QString>

// The texts of the status row and the title.
namespace ViewRules {

// "  85% " below 100 (two leading blanks), " 115% " from 100 up.
QString zoomLabel(int percent);

// "640 x 480" and, once the picture is sized, " (N pixels/cm)".
QString resolutionText(int pixelWidth, int pixelHeight);
QString withPixelsPerCm(const QString &resolution, int pixelWidth, double displayedWidthCm);

// "1/10" style position text of the status row: " 3/10 ".
QString positionText(int index, int count);

// The window title while a file is shown: " name  - Vimora ".
QString fileTitle(const QString &fileName);

} // namespace ViewRules
