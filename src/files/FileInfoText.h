#pragma once

#include <QDateTime>
#include <QString>

class MessageCatalogue;

// The information panel's rules: what a type is called and which icon it
// shows, and the detail text under it.
namespace FileInfoText {

struct TypeLook {
    QString description; // "" for a type the panel has no words for
    QString iconName;    // a freedesktop icon name
    QString fallbackIcon; // bundled generic icon when the theme lacks it
    bool iconIsFile = false; // an icon file shows itself
};

TypeLook lookOf(const QString &typeCode, const MessageCatalogue &messages);

// " (detail)", two line breaks, the size text, two line breaks, the date.
QString detailText(const QString &detail, const QString &sizeText, const QDateTime &modified);

} // namespace FileInfoText
