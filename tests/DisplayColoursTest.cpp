#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "index/ThumbnailCache.h"
#include "index/ThumbnailDecoder.h"
#include "platform/ColourManagement.h"
#include "platform/MatrixShaperTransform.h"
#include "platform/PictureLoader.h"
#include "platform/ScreenProfile.h"

#include <QClipboard>
#include <QColorSpace>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>

#include <cstdlib>

namespace {

const QColorSpace Srgb(QColorSpace::SRgb);
const QColorSpace DisplayP3(QColorSpace::DisplayP3);
const QColorSpace AdobeRgb(QColorSpace::AdobeRgb);

// Qt's own conversion of one colour: the reference for ours.
QRgb byQt(QRgb colour, const QColorSpace &from, const QColorSpace &to)
{
    QImage one(1, 1, QImage::Format_RGB32);
    one.setPixel(0, 0, colour);
    one.setColorSpace(from);
    return one.convertedToColorSpace(to).pixel(0, 0);
}

bool near(QRgb a, QRgb b, int tolerance)
{
    return std::abs(qRed(a) - qRed(b)) <= tolerance && std::abs(qGreen(a) - qGreen(b)) <= tolerance
        && std::abs(qBlue(a) - qBlue(b)) <= tolerance;
}

std::string rgbText(QRgb colour)
{
    return QStringLiteral("(%1,%2,%3)").arg(qRed(colour)).arg(qGreen(colour)).arg(qBlue(colour)).toStdString();
}

// The screen's profile for one test, sRGB again afterwards.
struct ScreenScope {
    explicit ScreenScope(const QColorSpace &space) { ColourManagement::setDisplayColourSpace(space); }
    ~ScreenScope() { ColourManagement::setDisplayColourSpace(Srgb); }
};

QString plainPicture(const QString &path, QSize size, QColor colour)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    picture.save(path);
    return path;
}

} // namespace

// LittleCMS in floating point, unoptimised: the reference.
TEST(DisplayColours, TheFastConversionLandsNearTheExactColoursForEveryPairOfPhotoProfiles)
{
    const struct {
        QColorSpace from, to;
        double tolerance; // in levels
    } pairs[] = {
        {DisplayP3, Srgb, 1}, {AdobeRgb, Srgb, 1}, {Srgb, DisplayP3, 1}, {QColorSpace(QColorSpace::ProPhotoRgb), Srgb, 1},
        // A pure power curve is steep at black: its darkest levels are a few
        // steps of linear light apart (Qt's own conversion is 3.3 off there).
        {Srgb, AdobeRgb, 2.5},
    };
    for (const auto &pair : pairs) {
        SCOPED_TRACE(pair.from.description().toStdString() + " to " + pair.to.description().toStdString());
        const auto transform = MatrixShaperTransform::between(pair.from.iccProfile(), pair.to.iccProfile());
        ASSERT_TRUE(transform);
        const QByteArray fromBytes = pair.from.iccProfile(), toBytes = pair.to.iccProfile();
        cmsHPROFILE from = cmsOpenProfileFromMem(fromBytes.constData(), cmsUInt32Number(fromBytes.size()));
        cmsHPROFILE to = cmsOpenProfileFromMem(toBytes.constData(), cmsUInt32Number(toBytes.size()));
        cmsHTRANSFORM exact = cmsCreateTransform(from, TYPE_RGB_DBL, to, TYPE_RGB_DBL, INTENT_RELATIVE_COLORIMETRIC,
                                                 cmsFLAGS_NOOPTIMIZE);
        ASSERT_NE(exact, nullptr);
        double worst = 0;
        for (int red = 0; red < 256; red += 15)
            for (int green = 0; green < 256; green += 15)
                for (int blue = 0; blue < 256; blue += 15) {
                    const double in[3] = {red / 255.0, green / 255.0, blue / 255.0};
                    double out[3];
                    cmsDoTransform(exact, in, out, 1);
                    const auto got = transform->convert(red, green, blue);
                    for (int channel = 0; channel < 3; ++channel)
                        worst = std::max(worst, std::abs(got[size_t(channel)] - std::clamp(out[channel], 0.0, 1.0) * 255));
                }
        cmsDeleteTransform(exact);
        cmsCloseProfile(from);
        cmsCloseProfile(to);
        EXPECT_LE(worst, pair.tolerance);
    }
}

TEST(DisplayColours, EveryLayoutAndEveryRowOfALargePictureIsConverted)
{
    const auto transform = MatrixShaperTransform::between(DisplayP3.iccProfile(), Srgb.iccProfile());
    ASSERT_TRUE(transform);
    const QRgb stored = qRgba(234, 54, 40, 77);
    const auto expected = transform->convert(234, 54, 40);
    ASSERT_TRUE(near(qRgb(expected[0], expected[1], expected[2]), byQt(stored, DisplayP3, Srgb), 1))
        << rgbText(qRgb(expected[0], expected[1], expected[2])) << " for " << rgbText(byQt(stored, DisplayP3, Srgb));
    for (QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_RGBX8888,
                                  QImage::Format_RGBA8888, QImage::Format_RGB888}) {
        SCOPED_TRACE(int(format));
        ASSERT_TRUE(MatrixShaperTransform::takes(format));
        QImage picture = QImage(3, 2, QImage::Format_ARGB32).convertToFormat(format);
        // Opaque formats: the colour alone, or Qt fills it blended.
        picture.fill(picture.hasAlphaChannel() ? QColor::fromRgba(stored) : QColor::fromRgb(stored));
        transform->apply(picture);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x) {
                const QRgb shown = picture.pixel(x, y);
                EXPECT_EQ(shown & 0xFFFFFF, qRgb(expected[0], expected[1], expected[2]) & 0xFFFFFF) << rgbText(shown);
                if (picture.hasAlphaChannel()) {
                    EXPECT_EQ(qAlpha(shown), 77);
                }
            }
    }
    EXPECT_FALSE(MatrixShaperTransform::takes(QImage::Format_Grayscale8));
    EXPECT_FALSE(MatrixShaperTransform::takes(QImage::Format_BGR888));

    // Large enough to be cut into strips: the first and last rows of each too.
    QImage large(1501, 2099, QImage::Format_RGB32);
    large.fill(QColor::fromRgb(stored));
    QImage shared = large; // the caller's copy stays as it was
    transform->apply(large);
    for (int y = 0; y < large.height(); ++y) {
        ASSERT_EQ(large.pixel(0, y), qRgb(expected[0], expected[1], expected[2])) << "row " << y;
        ASSERT_EQ(large.pixel(large.width() - 1, y), qRgb(expected[0], expected[1], expected[2])) << "row " << y;
    }
    EXPECT_EQ(shared.pixel(0, 0), QColor::fromRgb(stored).rgb());
}

TEST(DisplayColours, OnlyProfilesOfCurvesAndAMatrixTakeTheFastWay)
{
    EXPECT_FALSE(MatrixShaperTransform::between("not a profile", Srgb.iccProfile()));
    EXPECT_FALSE(MatrixShaperTransform::between(Srgb.iccProfile(), QByteArray()));
    QFile empty(QStringLiteral(VIMORA_CORPUS_DIR "/pygif-test-suite/empty.icc"));
    ASSERT_TRUE(empty.open(QIODevice::ReadOnly));
    EXPECT_FALSE(MatrixShaperTransform::between(empty.readAll(), Srgb.iccProfile()));
}

TEST(DisplayColours, PicturesWithoutAProfileAreTakenAsSrgbOnAWideGamutScreen)
{
    QImage untagged(2, 2, QImage::Format_RGB32);
    untagged.fill(QColor(255, 0, 0));
    EXPECT_EQ(ColourManagement::converted(untagged).pixel(0, 0), qRgb(255, 0, 0)); // sRGB screen: unchanged
    const QRgb onP3 = ColourManagement::converted(untagged, {}, DisplayP3).pixel(0, 0);
    EXPECT_TRUE(near(onP3, qRgb(234, 51, 35), 2)) << rgbText(onP3);
    // A profile nothing can read counts as none.
    const QRgb broken = ColourManagement::converted(untagged, "garbage", DisplayP3).pixel(0, 0);
    EXPECT_EQ(broken, onP3);
    // A Display P3 picture on a Display P3 screen keeps its numbers.
    QImage p3 = untagged;
    p3.setColorSpace(DisplayP3);
    EXPECT_EQ(ColourManagement::converted(p3, {}, DisplayP3).pixel(1, 1), qRgb(255, 0, 0));
    // Alpha premultiplied: the colour converted, not the colour times alpha.
    QImage half(1, 1, QImage::Format_ARGB32_Premultiplied);
    half.fill(QColor(255, 0, 0, 128));
    const QImage halfShown = ColourManagement::converted(half, {}, DisplayP3);
    EXPECT_TRUE(near(halfShown.pixelColor(0, 0).rgb(), qRgb(234, 51, 35), 3)) << rgbText(halfShown.pixel(0, 0));
    EXPECT_EQ(halfShown.pixelColor(0, 0).alpha(), 128);
}

TEST(DisplayColours, TheScreensProfileNamesItsColourSpace)
{
    EXPECT_EQ(ScreenProfile::propertyName(0), "_ICC_PROFILE");
    EXPECT_EQ(ScreenProfile::propertyName(2), "_ICC_PROFILE_2");
    EXPECT_EQ(ColourManagement::screenColourSpace(DisplayP3.iccProfile()), DisplayP3);
    EXPECT_EQ(ColourManagement::screenColourSpace({}), Srgb);
    EXPECT_EQ(ColourManagement::screenColourSpace("not a profile"), Srgb);
    EXPECT_TRUE(ScreenProfile::fromX11(0).isEmpty()); // offscreen: no X server
}

// On a Display P3 screen: the window and the thumbnails show Display P3
// numbers, while the clipboard, a saved area and the thumbnail cache, read by
// other programs, get sRGB ones.
TEST(DisplayColours, TheWindowShowsTheScreensColoursAndHandsOutSrgb)
{
    const ScreenScope screen(DisplayP3);
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    const QString folder = fixture.makeFolder("colours");
    const QColor colour(20, 140, 220);
    const QString path = plainPicture(folder + "/plain.bmp", {600, 400}, colour);
    const QRgb onScreen = byQt(colour.rgb(), Srgb, DisplayP3);
    ASSERT_FALSE(near(onScreen, colour.rgb(), 4)); // far enough apart to tell
    frmMain &window = fixture.start(path);
    window.resize(1000, 800);
    QCoreApplication::processEvents();
    ASSERT_EQ(ui(window).ImgEgg->size(), QSize(600, 400));
    const QImage shown = ui(window).ImgEgg->grab().toImage();
    EXPECT_TRUE(near(shown.pixel(300, 200), onScreen, 1)) << rgbText(shown.pixel(300, 200));

    QGuiApplication::clipboard()->clear();
    QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
    const QImage copied = QGuiApplication::clipboard()->image();
    ASSERT_FALSE(copied.isNull());
    EXPECT_TRUE(near(copied.pixel(10, 10), colour.rgb(), 1)) << rgbText(copied.pixel(10, 10));

    ui(window).cmdRitaglia->click();
    QTest::mousePress(ui(window).ImgEgg, Qt::LeftButton, {}, {100, 100});
    QMouseEvent move(QEvent::MouseMove, QPointF(300, 300), ui(window).ImgEgg->mapToGlobal(QPointF(300, 300)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(ui(window).ImgEgg, &move);
    QTest::mouseRelease(ui(window).ImgEgg, Qt::LeftButton, {}, {300, 300});
    fixture.prompts.files = {folder + "/area.bmp"};
    ui(window).mnuCropSave->trigger();
    const QImage area(folder + "/area.bmp");
    ASSERT_FALSE(area.isNull());
    EXPECT_TRUE(near(area.pixel(50, 50), colour.rgb(), 2)) << rgbText(area.pixel(50, 50));
    ui(window).mnuCropClip->trigger();
    EXPECT_TRUE(near(QGuiApplication::clipboard()->image().pixel(50, 50), colour.rgb(), 2));

    QTemporaryDir cacheRoot;
    const ThumbnailCache cache(cacheRoot.path());
    for (bool again : {false, true}) {
        SCOPED_TRACE(again ? "from the cache" : "decoded");
        const ThumbnailDecoder::Result thumbnail = ThumbnailDecoder::decode(cache, path, QSize(96, 96));
        EXPECT_EQ(thumbnail.fromCache, again);
        EXPECT_TRUE(near(thumbnail.image.pixel(20, 20), onScreen, 1)) << rgbText(thumbnail.image.pixel(20, 20));
    }
    const QImage cached(cache.thumbnailPath(QFileInfo(path).absoluteFilePath(), ThumbnailCache::Flavour::Normal));
    ASSERT_FALSE(cached.isNull());
    EXPECT_TRUE(near(cached.pixel(20, 20), colour.rgb(), 1)) << rgbText(cached.pixel(20, 20));
}
