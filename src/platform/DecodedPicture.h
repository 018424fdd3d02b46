#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

// What the decoders of today's formats hand back: the picture at its natural
// size (or smaller, where the format can decode smaller) with the ICC profile
// found in the file, which Qt may not be able to read itself.
struct DecodedPicture {
    QImage image;
    QSize naturalSize;
    QByteArray iccProfile;
    bool isNull() const { return image.isNull(); }
};
