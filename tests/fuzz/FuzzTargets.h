#pragma once

#include <QByteArray>

#include <span>

// One entry per parser that reads untrusted bytes. The libFuzzer programs
// (fuzz_*.cpp) and the regression test (FuzzRegressionTest.cpp) call the
// same functions, so an input kept from a crash is replayed exactly.
namespace FuzzTargets {

using Entry = void (*)(const QByteArray &input);

struct Target {
    const char *name; // also the folder of its seeds and regression inputs
    Entry entry;
};

void rleBitmap(const QByteArray &input);
void icon(const QByteArray &input);
void wmf(const QByteArray &input);
void emf(const QByteArray &input);
void moviePlaylist(const QByteArray &input);
void messageFile(const QByteArray &input);
void mimeApps(const QByteArray &input);
void thumbnailCache(const QByteArray &input);
void exifThumbnail(const QByteArray &input);
void metafileAnswer(const QByteArray &input);
void heif(const QByteArray &input);
void jpegXl(const QByteArray &input);
void raw(const QByteArray &input);
void svg(const QByteArray &input);
void trashInfo(const QByteArray &input);
void iccProfile(const QByteArray &input);
void jpegBands(const QByteArray &input);

std::span<const Target> all();

// The bytes without a copy, so that a read past the end is the sanitizer's.
inline QByteArray view(const unsigned char *data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
}

} // namespace FuzzTargets
