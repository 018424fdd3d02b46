#include "fullscreen/FullViewRules.h"

#include <Qt>

#include <algorithm>
#include <cmath>

namespace FullViewRules {

QSize fittedSize(QSize picture, QSize window)
{
    if (picture.isEmpty() || window.isEmpty())
        return {};
    const double factor = std::min(double(window.width()) / picture.width(),
                                   double(window.height()) / picture.height());
    return {std::max(1, int(std::lround(picture.width() * factor))),
            std::max(1, int(std::lround(picture.height() * factor)))};
}

QPoint centredPosition(QSize target, QSize window)
{
    return {std::max(0, (window.width() - target.width()) / 2), std::max(0, (window.height() - target.height()) / 2)};
}

QString pictureToolTip(const QString &fileName, QSize natural, const QString &sizeText)
{
    return QStringLiteral(" %1  (%2 x %3)  %4 ").arg(fileName).arg(natural.width()).arg(natural.height()).arg(sizeText);
}

KeyAction keyAction(int key)
{
    switch (key) {
    case Qt::Key_Escape:
        return KeyAction::Close;
    case Qt::Key_Up:
    case Qt::Key_PageUp:
        return KeyAction::Previous;
    case Qt::Key_Space:
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        return KeyAction::Next;
    default:
        return KeyAction::None;
    }
}

} // namespace FullViewRules
