#include "index/ThumbnailCache.h"
#include "index/ThumbnailDecoder.h"
#include "platform/ColourManagement.h"
#include "platform/PictureLoader.h"
#include "platform/RawDecoder.h"

#include <QFile>
#include <QImageReader>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <lcms2.h>

#include <cstdlib>

// PNG, WebP, TIFF, SVG, AVIF, HEIF, JPEG XL and RAW through the one loader,
// and pictures with a colour profile in sRGB.

namespace {

QString corpusFile(const char *relative)
{
    return QStringLiteral(VIMORA_CORPUS_DIR "/") + QLatin1String(relative);
}

bool near(QRgb actual, QRgb expected, int tolerance)
{
    return std::abs(qRed(actual) - qRed(expected)) <= tolerance
        && std::abs(qGreen(actual) - qGreen(expected)) <= tolerance
        && std::abs(qBlue(actual) - qBlue(expected)) <= tolerance;
}

std::string rgbText(QRgb colour)
{
    return "(" + std::to_string(qRed(colour)) + "," + std::to_string(qGreen(colour)) + "," + std::to_string(qBlue(colour)) + ")";
}

} // namespace

TEST(TodaysPictures, EachTypeShowsAtItsTrueSizeAndFitsSmaller)
{
    const struct {
        const char *file;
        QSize size;
    } cases[] = {
        {"pngsuite/basn6a08.png", {32, 32}},
        {"pillow-tests-modern/webp/transparent.webp", {200, 150}},
        {"image-webp-tests/images/animated/random_lossy.webp", {99, 87}},  // its first frame
        {"pillow-tests-modern/tiff/multipage.tiff", {10, 10}},             // its first page
        {"image-tiff-tests/images/palette-1c-4b.tiff", {157, 151}},
        {"librsvg-tests/w3c-svg11/struct-use-01-t.svg", {480, 360}},
        {"libavif-tests/kodim03_yuv420_8bpc.avif", {768, 512}},
        {"libavif-tests/abc_color_irot_alpha_irot.avif", {256, 512}},      // turned by its irot
        {"libheif-tests/tests/rainbow-451x461.heic", {451, 461}},
        {"pillow-heif-tests/heif/RGB_10__29x100.heif", {29, 100}},
        {"libjxl-conformance/alpha_triangles.jxl", {1024, 1024}},
        {"libjxl-conformance/animation_spline.jxl", {320, 320}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        const QString path = corpusFile(c.file);
        const PictureLoader::Picture whole = PictureLoader::load(path);
        ASSERT_FALSE(whole.isNull());
        EXPECT_EQ(whole.naturalSize, c.size);
        EXPECT_EQ(whole.image.size(), c.size);
        EXPECT_EQ(PictureLoader::readNaturalSize(path), c.size);
        EXPECT_FALSE(PictureLoader::claimsTooManyPixels(path));

        PictureLoader::Options fit;
        fit.fitInto = QSize(16, 16);
        const PictureLoader::Picture fitted = PictureLoader::load(path, fit);
        ASSERT_FALSE(fitted.isNull());
        EXPECT_EQ(fitted.naturalSize, c.size);
        const QSize expected = c.size.width() > 16 || c.size.height() > 16
                                   ? c.size.scaled(16, 16, Qt::KeepAspectRatio).expandedTo(QSize(1, 1))
                                   : c.size;
        EXPECT_EQ(fitted.image.size(), expected);
    }
}

TEST(TodaysPictures, ContentDecidesNotTheName)
{
    QTemporaryDir dir;
    const struct {
        const char *file, *disguise;
    } cases[] = {
        {"libheif-tests/tests/rainbow-451x461.heic", "photo.jpg"},
        {"libjxl-conformance/grayscale.jxl", "photo.png"},
        {"pillow-tests-modern/webp/hopper.webp", "photo.bmp"},
        {"librsvg-tests/w3c-svg11/struct-use-01-t.svg", "drawing.png"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        const QString copy = dir.filePath(QLatin1String(c.disguise));
        QFile::remove(copy);
        ASSERT_TRUE(QFile::copy(corpusFile(c.file), copy));
        EXPECT_EQ(PictureLoader::load(copy).naturalSize, PictureLoader::load(corpusFile(c.file)).naturalSize);
    }
    // A TIFF under a RAW name that libraw cannot take is no picture, and
    // no RAW is taken for a TIFF under its own name.
    EXPECT_FALSE(RawDecoder::isRaw(QByteArray("II*\0", 4), QStringLiteral("scan.tif")));
    EXPECT_TRUE(RawDecoder::isRaw(QByteArray("II*\0", 4), QStringLiteral("DSC_0001.NEF")));
}

TEST(TodaysPictures, SvgIsDrawnAtTheFittedSizeNotScaled)
{
    // Drawn at 48x36 the lines are as sharp as at 480x360: the scaled-down
    // whole would blur every edge; the fitted drawing has the same edges.
    PictureLoader::Options fit;
    fit.fitInto = QSize(960, 720); // never enlarged past its natural size
    const QString path = corpusFile("librsvg-tests/real-world/gnome-cool.svgz");
    const PictureLoader::Picture picture = PictureLoader::load(path, fit);
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.image.size(), picture.naturalSize);
    EXPECT_EQ(picture.naturalSize, PictureLoader::load(corpusFile("librsvg-tests/real-world/gnome-cool.svgz")).naturalSize);
}

TEST(TodaysPictures, RawPreviewServesWhenItCoversTheFittedPicture)
{
    const struct {
        QSize preview, natural, bound;
        bool suffices;
    } cases[] = {
        {{1620, 1080}, {6000, 4000}, {1200, 900}, true},   // fitted: 1200x800
        {{1620, 1080}, {6000, 4000}, {1920, 1080}, true},  // fitted: 1620x1080 exactly
        {{1620, 1080}, {6000, 4000}, {1920, 1200}, false}, // fitted: 1800x1200
        {{1620, 1080}, {6000, 4000}, {}, false},           // actual size needs the sensor data
        {{6000, 4000}, {6000, 4000}, {}, true},            // a full-size preview
        {{160, 120}, {3872, 2592}, {128, 128}, true},      // thumbnails
        {{160, 120}, {3872, 2592}, {256, 256}, false},
        {{}, {3872, 2592}, {128, 128}, false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(RawDecoder::previewSuffices(c.preview, c.natural, c.bound), c.suffices)
            << c.preview.width() << " for " << c.bound.width() << "x" << c.bound.height();
}

TEST(TodaysPictures, EmbeddedProfilesLandOnTheirSrgbColours)
{
    // The expected values are the corpus READMEs', worked out with LittleCMS.
    const struct {
        const char *file;
        QPoint at;
        QRgb srgb;
        QRgb stored; // what a viewer ignoring the profile shows
    } cases[] = {
        {"wide-gamut-tests/rgb-to-gbr-test.png", {500, 30}, qRgb(255, 1, 0), qRgb(5, 0, 255)},
        {"wide-gamut-tests/rgb-to-gbr-test.png", {60, 940}, qRgb(0, 255, 69), qRgb(255, 71, 0)},
        {"wide-gamut-tests/rgb-to-gbr-test.png", {940, 940}, qRgb(0, 25, 255), qRgb(31, 255, 0)},
        {"wide-gamut-tests/P3-sRGB-red.jpg", {10, 10}, qRgb(255, 0, 0), qRgb(234, 54, 40)},       // Display P3
        {"exiv2-tests/Reagan.jpg", {100, 65}, qRgb(232, 218, 209), qRgb(227, 217, 208)},          // Adobe RGB
        {"exiv2-tests/Reagan.jxl", {100, 65}, qRgb(232, 218, 209), qRgb(227, 217, 208)},          // Adobe RGB in JPEG XL
        {"sharp-fixtures/prophoto.png", {0, 0}, qRgb(117, 160, 210), qRgb(131, 141, 192)},        // ProPhoto
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        const PictureLoader::Picture picture = PictureLoader::load(corpusFile(c.file));
        ASSERT_FALSE(picture.isNull());
        const QRgb shown = picture.image.pixel(c.at);
        EXPECT_TRUE(near(shown, c.srgb, 3)) << rgbText(shown) << " for " << rgbText(c.srgb);
        EXPECT_EQ(picture.image.colorSpace(), QColorSpace(QColorSpace::SRgb));
    }
}

// A phone photo held sideways: an EXIF block turning it a quarter, put in
// front of the picture's own segments.
QByteArray turnedAQuarter(const QByteArray &jpeg)
{
    QByteArray tiff("II*\0\x08\0\0\0", 8);
    tiff += QByteArray("\x01\0", 2);                                  // one entry
    tiff += QByteArray("\x12\x01\x03\0\x01\0\0\0\x06\0\0\0", 12); // orientation 6
    tiff += QByteArray(4, '\0');                                       // no next IFD
    const QByteArray body = QByteArray("Exif\0\0", 6) + tiff;
    QByteArray app1("\xFF\xE1", 2);
    app1 += char((body.size() + 2) >> 8);
    app1 += char((body.size() + 2) & 0xFF);
    return jpeg.left(2) + app1 + body + jpeg.mid(2);
}

TEST(TodaysPictures, ATurnedPhotoKeepsItsProfile)
{
    QFile original(corpusFile("wide-gamut-tests/P3-sRGB-red.jpg"));
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    QTemporaryDir dir;
    const QString turned = dir.filePath("turned.jpg");
    QFile out(turned);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(turnedAQuarter(original.readAll()));
    out.close();

    const PictureLoader::Picture upright = PictureLoader::load(corpusFile("wide-gamut-tests/P3-sRGB-red.jpg"));
    ASSERT_FALSE(upright.isNull());
    PictureLoader::Options fitted;
    fitted.fitInto = upright.naturalSize / 4;
    for (const PictureLoader::Options &options : {PictureLoader::Options{}, fitted}) {
        const PictureLoader::Picture picture = PictureLoader::load(turned, options);
        ASSERT_FALSE(picture.isNull());
        EXPECT_EQ(picture.naturalSize, upright.naturalSize.transposed());
        const QRgb shown = picture.image.pixel(2, 2);
        EXPECT_TRUE(near(shown, qRgb(255, 0, 0), 3)) << rgbText(shown) << (options.fitInto.isValid() ? " fitted" : "");
    }
}

TEST(TodaysPictures, PicturesWithoutProfileKeepTheirNumbers)
{
    // (PngSuite's pictures carry a gamma, which counts as a colour space.)
    for (const char *file : {"pillow-tests/hopper.jpg", "pillow-tests-modern/webp/hopper.webp",
                             "libavif-tests/kodim03_yuv420_8bpc.avif"}) {
        SCOPED_TRACE(file);
        QImageReader plain(corpusFile(file));
        const PictureLoader::Picture picture = PictureLoader::load(corpusFile(file));
        ASSERT_FALSE(picture.isNull());
        if (plain.canRead()) {
            const QImage stored = plain.read().convertToFormat(QImage::Format_RGB32);
            EXPECT_EQ(picture.image.convertToFormat(QImage::Format_RGB32), stored);
        }
        EXPECT_FALSE(picture.image.colorSpace().isValid() && picture.image.colorSpace() != QColorSpace::SRgb);
    }
}

TEST(TodaysPictures, ThumbnailsAreInSrgbToo)
{
    QTemporaryDir cacheRoot;
    const ThumbnailCache cache(cacheRoot.path());
    for (const char *file : {"sharp-fixtures/prophoto.png", "libheif-tests/tests/rainbow-451x461.heic",
                             "libjxl-conformance/grayscale.jxl", "pillow-tests-modern/webp/hopper.webp",
                             "librsvg-tests/real-world/gnome-cool.svgz", "imagemeta-raw/sample.arw",
                             "libavif-tests/kodim03_yuv420_8bpc.avif", "image-tiff-tests/images/palette-1c-4b.tiff"}) {
        SCOPED_TRACE(file);
        const ThumbnailDecoder::Result result = ThumbnailDecoder::decode(cache, corpusFile(file), QSize(96, 96));
        ASSERT_FALSE(result.image.isNull());
        EXPECT_LE(result.image.width(), 96);
        EXPECT_LE(result.image.height(), 96);
        // Read back from the freedesktop cache the second time.
        const ThumbnailDecoder::Result again = ThumbnailDecoder::decode(cache, corpusFile(file), QSize(96, 96));
        EXPECT_TRUE(again.fromCache);
        EXPECT_EQ(again.naturalSize, result.naturalSize);
    }
    const ThumbnailDecoder::Result prophoto
        = ThumbnailDecoder::decode(cache, corpusFile("sharp-fixtures/prophoto.png"), QSize(96, 96));
    EXPECT_TRUE(near(prophoto.image.pixel(0, 0), qRgb(117, 160, 210), 3)) << rgbText(prophoto.image.pixel(0, 0));
}

TEST(TodaysPictures, ProfilesQtCannotReadGoThroughLcms)
{
    QImage picture(2, 1, QImage::Format_ARGB32);
    picture.setPixel(0, 0, qRgba(128, 128, 128, 255));
    picture.setPixel(1, 0, qRgba(10, 10, 10, 40));
    EXPECT_EQ(ColourManagement::converted(picture, "not a profile at all"), picture); // unusable: unchanged
    EXPECT_EQ(ColourManagement::converted(picture), picture);                          // none: unchanged

    // An RGB profile of lookup tables only (A2B0: curves, then a matrix whose
    // red and green columns are swapped), which Qt 6.4 cannot use.
    constexpr double XyzEncoding = 1.0 + 32767.0 / 32768.0; // LittleCMS's float XYZ
    const double swapped[9] = {0.3851 / XyzEncoding, 0.4360 / XyzEncoding, 0.1431 / XyzEncoding,
                               0.7169 / XyzEncoding, 0.2225 / XyzEncoding, 0.0606 / XyzEncoding,
                               0.0971 / XyzEncoding, 0.0139 / XyzEncoding, 0.7141 / XyzEncoding};
    cmsToneCurve *gamma = cmsBuildGamma(nullptr, 2.2);
    cmsToneCurve *curves[3] = {gamma, gamma, gamma};
    cmsPipeline *lookup = cmsPipelineAlloc(nullptr, 3, 3);
    cmsPipelineInsertStage(lookup, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, curves));
    cmsPipelineInsertStage(lookup, cmsAT_END, cmsStageAllocMatrix(nullptr, 3, 3, swapped, nullptr));
    cmsPipelineInsertStage(lookup, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, nullptr)); // the format wants them
    cmsHPROFILE built = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(built, 4.3);
    cmsSetDeviceClass(built, cmsSigDisplayClass);
    cmsSetColorSpace(built, cmsSigRgbData);
    cmsSetPCS(built, cmsSigXYZData);
    cmsWriteTag(built, cmsSigMediaWhitePointTag, cmsD50_XYZ());
    cmsWriteTag(built, cmsSigAToB0Tag, lookup);
    cmsUInt32Number length = 0;
    cmsSaveProfileToMem(built, nullptr, &length);
    QByteArray profile(qsizetype(length), '\0');
    cmsSaveProfileToMem(built, profile.data(), &length);
    cmsCloseProfile(built);
    cmsPipelineFree(lookup);
    cmsFreeToneCurve(gamma);
    ASSERT_FALSE(QColorSpace::fromIccProfile(profile).isValid());

    picture.setPixel(0, 0, qRgba(200, 90, 120, 255));
    const QImage shown = ColourManagement::converted(picture, profile);
    // Gamma 2.2 and sRGB's curve differ by a level or two in the middle.
    EXPECT_TRUE(near(shown.pixel(0, 0), qRgb(90, 200, 120), 3)) << rgbText(shown.pixel(0, 0));
    EXPECT_EQ(qAlpha(shown.pixel(1, 0)), 40);
    EXPECT_EQ(shown.colorSpace(), QColorSpace(QColorSpace::SRgb));
}
