#pragma once

#include <QPoint>
#include <QSize>
#include <QString>

// The arithmetic and texts of the full-screen window, without widgets.
namespace FullViewRules {

// The picture fills the screen as far as it can with one factor for both
// directions, enlarged or reduced: 320 x 240 on 1024 x 768 gives
// 1024 x 768, 2000 x 1000 gives 1024 x 512. Empty for an empty picture.
QSize fittedSize(QSize picture, QSize window);

// Centred in the window, or at 0 in a direction where it is larger.
QPoint centredPosition(QSize target, QSize window);

// " name  (w x h)  size ": the picture's tooltip.
QString pictureToolTip(const QString &fileName, QSize natural, const QString &sizeText);

enum class KeyAction { None, Close, Previous, Next };
KeyAction keyAction(int key);

} // namespace FullViewRules
