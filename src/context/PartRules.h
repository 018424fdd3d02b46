#pragma once

#include <QRect>
#include <QSize>

// Which pixels of a large picture to decode when only some of it shows.
namespace PartRules {

// What to decode when `visible` (picture pixels at 100 %) shows: the visible
// part with a quarter of its size as margin on each side, so that short pans
// need no new decoding. Invalid (the whole picture) when that part would be
// most of the picture anyway, or nothing is visible.
QRect partToDecode(const QRect &visible, const QSize &natural);

// What of a picture shows at first at actual size in a viewport: the
// centring rule puts a picture larger than the viewport at its top left,
// and shows all of a smaller one.
QRect visibleAtActualSize(const QSize &natural, const QSize &viewport);

} // namespace PartRules
