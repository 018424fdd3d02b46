#pragma once

#include <QList>
#include <QString>

class MessageCatalogue;
class QWidget;

// The texts of each window by control name and message number. A window
// applies its table when it is built and again when the language changes;
// windows are recognised by their object name.
namespace FormTexts {

struct Entry {
    const char *control; // object name; "" is the window's own title
    int number;
    const char *defaultText;
};

QList<Entry> captionsOf(const QString &formName);
QList<Entry> tooltipsOf(const QString &formName);

void ApplyCaptions(QWidget *form, const MessageCatalogue &messages);
// Tooltips are " text " when shown and empty when tooltips are off. Either
// way a control without a caption gets the text as its accessible name, so
// screen readers can name icon-only buttons.
void ApplyTooltips(QWidget *form, const MessageCatalogue &messages, bool on);

} // namespace FormTexts
