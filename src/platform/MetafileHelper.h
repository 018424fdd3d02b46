#pragma once

#include "platform/MetafileAnswer.h"

#include <QByteArray>
#include <QSize>
#include <QString>

#include <optional>

// Metafiles and SVG drawings are drawn by vimora-metafile, a program of
// Vimora's own, because libwmf and libemf2svg can loop or crash on hostile
// files, QtSvg can take minutes on a hostile drawing, and a thread stuck
// inside a parser cannot be stopped. The helper gets the file on its standard
// input and only the pipes as descriptors, limits its own CPU time, memory and
// file writes before it reads a byte, and is killed when the time limit
// passes; its answer is checked like the file itself.
namespace MetafileHelper {

// SvgFill: drawn as large as fits the bound, past its natural size.
enum class Kind { Wmf, Emf, Svg, SvgFill };

// The picture drawn at its natural size, or scaled down to fit `bound`;
// nothing when the helper failed, crashed, overran or answered nonsense.
std::optional<MetafileAnswer::Drawn> draw(Kind kind, const QByteArray &file, const QSize &bound, int timeLimitMs);

// Beside the running program (the build tree, tests), else where installed.
QString program();

} // namespace MetafileHelper
