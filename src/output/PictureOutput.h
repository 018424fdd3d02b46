#pragma once

#include <QImage>
#include <QString>

class Launcher;
class QPrinter;

// Where a picture goes: a bitmap file, the clipboard, the printer. They
// take a picture or a path, so every window's commands can use them.
namespace PictureOutput {

// The scratch bitmap shared by the clipboard, area print and wallpaper
// commands, in the per-user cache folder.
QString TempBitmapPath();

// Writes a Windows bitmap, through a temporary file so that a failure
// leaves no half-written file and an existing one intact.
bool saveBitmap(const QImage &picture, const QString &path);

// Copies a file, through a temporary file beside the destination; false
// (and the destination as it was) on failure, with the reason in error.
bool copyFile(const QString &source, const QString &destination, QString *error = nullptr);

// Puts the picture on the clipboard as image data and as PNG bytes, so
// that programs that ask only for image/png can paste it too.
void putOnClipboard(const QImage &picture);

// The copies are drawn at the picture's natural size from the top-left
// corner of the printable area, one page each, in one job; a picture larger
// than the page is clipped, not reduced. False when the printer failed.
bool printPicture(QPrinter &printer, const QImage &picture, int copies);

// Slides are printed by their own program; false when none is installed.
bool printWithOwnProgram(Launcher &launcher, const QString &path);

} // namespace PictureOutput
