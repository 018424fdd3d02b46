#include "platform/BandedJpegDecode.h"

#include "platform/JpegBandReader.h"
#include "platform/MatrixShaperTransform.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace BandedJpegDecode {
namespace {

// The rows decoded so far, handed from the decoding thread to the converting one.
struct Handover {
    std::mutex mutex;
    std::condition_variable changed;
    uchar *bits = nullptr;
    qsizetype stride = 0;
    int decoded = 0;
    bool over = false;
};

// The orientation as Qt's reader applies it when it turns by no quarter.
QImage upright(QImage image, QImageIOHandler::Transformations turn)
{
    if (turn & (QImageIOHandler::TransformationMirror | QImageIOHandler::TransformationFlip))
        image = std::move(image).mirrored(turn & QImageIOHandler::TransformationMirror,
                                          turn & QImageIOHandler::TransformationFlip);
    return image;
}

} // namespace

QImage decoded(const QByteArray &file, QImageIOHandler::Transformations turn, const QColorSpace &target,
               qint64 maxPixels)
{
    // Qt's reader loses the colour space of a picture it turns by a quarter,
    // so such pictures are shown as stored; left to it, they stay as they were.
    if (turn & QImageIOHandler::TransformationRotate90)
        return {};
    JpegBandReader reader(file, maxPixels);
    if (!reader.isReadable() || reader.iccProfile().isEmpty() || !target.isValid())
        return {};
    const QColorSpace source = QColorSpace::fromIccProfile(reader.iccProfile());
    if (!source.isValid() || source == target)
        return {};
    const auto transform = MatrixShaperTransform::between(source.iccProfile(), target.iccProfile());
    if (!transform)
        return {};
    const int width = reader.size().width();
    Handover handover;
    std::jthread converter([&] {
        int converted = 0;
        for (;;) {
            std::unique_lock lock(handover.mutex);
            handover.changed.wait(lock, [&] { return handover.over || handover.decoded > converted; });
            if (handover.decoded == converted)
                return; // over, and every decoded row converted (or the decode failed)
            const int end = handover.decoded;
            uchar *const bits = handover.bits;
            const qsizetype stride = handover.stride;
            lock.unlock();
            transform->applyToRows(bits, stride, width, QImage::Format_RGB32, converted, end);
            converted = end;
        }
    });
    QImage image = reader.read([&](uchar *bits, qsizetype stride, int, int end) {
        const std::lock_guard lock(handover.mutex);
        handover.bits = bits;
        handover.stride = stride;
        handover.decoded = end;
        handover.changed.notify_one();
    });
    {
        const std::lock_guard lock(handover.mutex);
        handover.over = true;
        handover.changed.notify_one();
    }
    converter.join();
    if (image.isNull())
        return {};
    image = upright(std::move(image), turn);
    image.setColorSpace(target);
    return image;
}

} // namespace BandedJpegDecode
