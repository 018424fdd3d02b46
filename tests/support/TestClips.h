#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

// Tiny movies made with ffmpeg for the media tests: 1.5 s of the testsrc
// pattern (colour bars, so a rendered frame is never blank) at 176x144.
// Each is made on first use, once per test run, in one temporary folder
// that goes away when the run ends.
namespace TestClips {

constexpr int Width = 176;
constexpr int Height = 144;
constexpr double Seconds = 1.5;

bool ffmpegAvailable();

// The folder of this run's clips (made on first call).
QString folder();

// The extensions clip() makes: avi (mpeg4), mpg (MPEG-1 system with MP2
// audio), mpeg (MPEG-2 VOB), mov (mjpeg), asf (wmv2 + wmav2), rm (rv20),
// ivf (VP8).
QStringList extensions();

// clip() also makes the bare MPEG streams "m1v" (video) and "mpa" (MP2
// audio), which extensions() leaves out.
// The clip for an extension above, or "" when it could not be made.
QString clip(const QString &extension);

// A DVD folder (holding VIDEO_TS) authored from a PAL DVD clip with
// dvdauthor; "" and the reason in whyNot when that is not possible here.
QString dvdFolder(QString *whyNot = nullptr);

// Runs a program with arguments; true when it exits with 0 in time.
bool run(const QString &program, const QStringList &arguments, int timeoutMs = 60000,
         const QStringList &environment = {});

// testsrc shows colour bars: a real frame has several bright hues, a blank
// one (black, or one flat colour) has not.
bool showsColourBars(const QImage &image);

} // namespace TestClips
