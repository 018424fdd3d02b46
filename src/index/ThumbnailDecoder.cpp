#include "index/ThumbnailDecoder.h"

#include "index/ExifThumbnail.h"
#include "platform/ColourManagement.h"
#include "platform/PictureLoader.h"

#include <QFile>
#include <QFileInfo>
#include <QThread>

namespace {

// An EXIF block is one APP1 segment of at most 64 KB, after at most a few
// small segments.
constexpr qint64 ExifSearchBytes = 128 * 1024;

// The camera's own thumbnail, when it is large enough and of the picture's
// proportions: a small JPEG to decode instead of the whole picture.
PictureLoader::Picture fromExifThumbnail(const QString &path, int side)
{
    QFile file(path);
    // Only a JPEG carries one: other pictures are not read twice for it.
    if (!file.open(QIODevice::ReadOnly) || file.peek(2) != QByteArrayLiteral("\xFF\xD8"))
        return {};
    const ExifThumbnail::Found found = ExifThumbnail::find(file.read(ExifSearchBytes));
    file.close();
    if (found.jpeg.isEmpty())
        return {};
    const QSize natural = PictureLoader::readNaturalSize(path);
    if (!natural.isValid() || qint64(natural.width()) * natural.height() > PictureLoader::MaxPixels)
        return {}; // the picture itself would be refused
    const QSize stored = found.orientation >= 5 ? natural.transposed() : natural;
    const QImage thumbnail = QImage::fromData(found.jpeg, "JPEG");
    if (thumbnail.isNull() || !ExifThumbnail::standsFor(thumbnail.size(), stored, side))
        return {};
    const QSize made = natural.width() <= side && natural.height() <= side
                           ? natural
                           : natural.scaled(side, side, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    const QImage shown = ExifThumbnail::oriented(thumbnail, found.orientation);
    return {shown.size() == made ? shown : shown.scaled(made, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
            natural, {}};
}

} // namespace

ThumbnailDecoder::ThumbnailDecoder(ThumbnailCache cache, QObject *parent)
    : QObject(parent)
    , m_cache(std::move(cache))
    , m_generation(std::make_shared<std::atomic<quint64>>(0))
{
    m_pool.setMaxThreadCount(qMax(1, QThread::idealThreadCount()));
}

ThumbnailDecoder::~ThumbnailDecoder()
{
    cancel();
    // Workers post to this object: it must outlive them.
    m_pool.waitForDone();
}

ThumbnailDecoder::Result ThumbnailDecoder::decode(const ThumbnailCache &cache, const QString &path, QSize box)
{
    Result result;
    result.path = path;
    const QString absolute = QFileInfo(path).absoluteFilePath();
    const ThumbnailCache::Flavour flavour = ThumbnailCache::flavourFor(box);
    ThumbnailCache::Entry cached = cache.read(absolute, flavour);
    if (!cached.isNull()) {
        result.fromCache = true;
        result.naturalSize = cached.naturalSize.isValid() ? cached.naturalSize : PictureLoader::readNaturalSize(absolute);
        result.image = std::move(cached.image);
    } else {
        const int side = ThumbnailCache::maxSide(flavour);
        PictureLoader::Options options;
        options.fitInto = QSize(side, side);
        options.colourSpace = QColorSpace(QColorSpace::SRgb); // the cache is shared with file managers
        PictureLoader::Picture picture = fromExifThumbnail(absolute, side);
        if (picture.isNull())
            picture = PictureLoader::load(absolute, options);
        if (picture.isNull())
            return result;
        result.naturalSize = picture.naturalSize;
        cache.write(absolute, flavour, picture.image, picture.naturalSize);
        result.image = std::move(picture.image);
    }
    if (result.image.width() > box.width() || result.image.height() > box.height())
        result.image = result.image.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    result.image = ColourManagement::converted(std::move(result.image), {}, ColourManagement::displayColourSpace());
    return result;
}

void ThumbnailDecoder::request(int cell, const QString &path, QSize box)
{
    ++m_pending;
    const quint64 generation = m_generation->load();
    std::shared_ptr<std::atomic<quint64>> current = m_generation;
    const ThumbnailCache cache = m_cache;
    m_pool.start([this, current, generation, cache, cell, path, box] {
        if (current->load() != generation)
            return;
        Result result = decode(cache, path, box);
        result.cell = cell;
        QMetaObject::invokeMethod(this, [this, generation, result = std::move(result)] {
            if (m_generation->load() != generation)
                return;
            --m_pending;
            emit thumbnailReady(result);
            if (m_pending == 0)
                emit allDone();
        }, Qt::QueuedConnection);
    });
}

void ThumbnailDecoder::cancel()
{
    m_generation->fetch_add(1);
    m_pool.clear();
    m_pending = 0;
}
