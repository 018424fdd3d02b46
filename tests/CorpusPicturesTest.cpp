#include "core/FileTypeCatalogue.h"
#include "platform/PictureLoader.h"
#include "support/TestTiming.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>
#include <QtEndian>

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <optional>

// Every picture file of the test corpus against what its folder's README
// says: "show" must decode at its true size, "refuse cleanly" must give a
// null picture, "either" must only come back, and in time.

namespace {

enum class Expect { Show, Refuse, Either };

struct Rule {
    const char *pattern; // path inside the corpus; '*' matches anything, '/' included
    Expect expect;
    QSize size = {}; // when the README states it
};

// First match wins: exceptions come before the rule of their folder.
const Rule Rules[] = {
    // pillow-tests: BMP Suite groups, then the single files the README names.
    {"pillow-tests/bmp/g/*", Expect::Show},
    {"pillow-tests/bmp/q/*", Expect::Either},
    {"pillow-tests/bmp/b/*", Expect::Refuse},
    {"pillow-tests/no_cursors.cur", Expect::Refuse},
    {"pillow-tests/hopper_unexpected.ico", Expect::Refuse},
    {"pillow-tests/decompression_bomb*", Expect::Either},
    {"pillow-tests/hopper_256x256.ico", Expect::Show, {256, 256}},
    {"pillow-tests/hopper_orientation_*.jpg", Expect::Show, {128, 128}},
    {"pillow-tests/exif*.jpg", Expect::Either},
    {"pillow-tests/invalid-exif*.jpg", Expect::Either},
    {"pillow-tests/*broken*.jpg", Expect::Either},
    {"pillow-tests/truncated_*.jpg", Expect::Either},
    {"pillow-tests/multiple_exif.jpg", Expect::Either},
    {"pillow-tests/zero_width.gif", Expect::Refuse},
    {"pillow-tests/*", Expect::Show},
    // bmptestsuite and BMP Suite 2.8: valid/good must show, the rest may go either way.
    {"bmptestsuite/valid/*", Expect::Show},
    {"bmptestsuite/*", Expect::Either},
    {"bmpsuite-2.8/g/*", Expect::Show},
    {"bmpsuite-2.8/*", Expect::Either},
    {"cppbmploader-v1/*", Expect::Either},
    // image-rs
    {"image-rs/bad/*", Expect::Refuse},
    {"image-rs/regression/*", Expect::Refuse},
    {"image-rs/images/bmp/images/imagemagick_invalid_run_length_issue_2321.bmp", Expect::Either},
    {"image-rs/images/bmp/images/lenient/V5_A8_R8_G8_B8_Rgb_BadMask.bmp", Expect::Either},
    {"image-rs/images/ico/images/lenient-bpp.ico", Expect::Either},
    {"image-rs/images/ico/images/bmp-24bpp-mask.ico", Expect::Show, {32, 32}},
    {"image-rs/images/ico/images/bmp-32bpp-alpha.ico", Expect::Show, {32, 32}},
    {"image-rs/images/ico/images/bmp-32bpp-conflicting-and-mask.ico", Expect::Show, {16, 16}},
    {"image-rs/images/ico/images/bmp_v5_with_icc.ico", Expect::Show, {127, 64}},
    {"image-rs/images/ico/images/png-32bpp-alpha.ico", Expect::Show, {32, 32}},
    {"image-rs/images/ico/images/smile.ico", Expect::Show, {32, 32}},
    {"image-rs/images/ico/images/truncated_mask_32bpp.ico", Expect::Show, {64, 64}},
    {"image-rs/images/ico/images/two-entry-order-test.ico", Expect::Show, {48, 48}},
    {"image-rs/images/*", Expect::Show}, // lenient/rle_overflow.bmp included: "must clip"
    // JPEG
    {"jpeg-decoder/crashtest/images/extraneous-bytes-after-sos.jpg", Expect::Show},
    {"jpeg-decoder/crashtest/images/multiple-0xff-before-eoi.jpg", Expect::Show},
    {"jpeg-decoder/crashtest/images/dc-predictor-overflow.jpg", Expect::Either},
    {"jpeg-decoder/crashtest/images/subtract-with-overflow.jpg", Expect::Either},
    {"jpeg-decoder/crashtest/images/imagetestsuite/*", Expect::Either},
    {"jpeg-decoder/crashtest/*", Expect::Refuse},
    {"jpeg-decoder/reftest/images/lossless/*", Expect::Either},
    {"jpeg-decoder/reftest/images/progressive-missing-dc.jpg", Expect::Either},
    {"jpeg-decoder/reftest/*", Expect::Show},
    {"libjpeg-turbo/monkey12.jpg", Expect::Either},
    {"libjpeg-turbo/testimgari.jpg", Expect::Either},
    {"libjpeg-turbo/*", Expect::Show},
    // GIF (pygif-test-suite goes by its .conf files)
    {"peterdn-gif-test-suite/*", Expect::Show},
    // Metafiles
    {"libemf2svg/emf-corrupted/*", Expect::Either},
    {"libemf2svg/*", Expect::Show},
    {"libwmf/*", Expect::Show},
    {"apache-poi/slideshow/61338.wmf", Expect::Refuse},
    {"apache-poi/spreadsheet/61294.emf", Expect::Either},
    {"apache-poi/*", Expect::Show},
    // Small collections
    {"libgdiplus/test.ico", Expect::Show, {256, 256}},
    {"libgdiplus/test3.ico", Expect::Show, {32, 32}},
    {"libgdiplus/*", Expect::Show},
    {"mathiasbynens-small/gif.gif", Expect::Either},
    {"mathiasbynens-small/jpeg.jpg", Expect::Either},
    {"mathiasbynens-small/ico.ico", Expect::Show, {1, 1}},
    {"mathiasbynens-small/*", Expect::Show},
    {"exiftool/ICO.ico", Expect::Show, {1, 1}},
    {"exiftool/*", Expect::Show},
    {"file-format-fixtures/*", Expect::Refuse},
    // Reference frames and pictures that came with the older folders.
    {"pygif-test-suite/*.png", Expect::Show},
    // Today's types: PNG, WebP, TIFF
    {"pngsuite/x*", Expect::Refuse},
    {"pngsuite/*", Expect::Show, {32, 32}},
    {"image-webp-tests/images/animated/random_lossy.webp", Expect::Show, {99, 87}},
    {"image-webp-tests/images/regression/color_index.webp", Expect::Show, {30, 30}},
    {"pillow-tests-modern/webp/transparent.webp", Expect::Show, {200, 150}},
    {"pillow-tests-modern/webp/*", Expect::Show, {128, 128}},
    {"pillow-tests-modern/tiff/multipage.tiff", Expect::Show, {10, 10}},
    {"pillow-tests-modern/tiff/crash-*", Expect::Either},
    {"pillow-tests-modern/tiff/*", Expect::Refuse},
    {"image-tiff-tests/images/palette-1c-4b.tiff", Expect::Show, {157, 151}},
    {"image-tiff-tests/libtiffpic/smallliz.tif", Expect::Either},
    {"image-tiff-tests/fuzz/inf_loop-000028.tiff", Expect::Either},
    {"image-tiff-tests/fuzz/*", Expect::Refuse},
    // SVG
    {"librsvg-tests/real-world/gnome-cool.svgz", Expect::Show},
    {"librsvg-tests/w3c-svg11/struct-use-01-t.svg", Expect::Show, {480, 360}},
    {"librsvg-tests/crash/bug785276-empty.svg", Expect::Refuse},
    {"librsvg-tests/*", Expect::Either},
    {"resvg-tests/*", Expect::Either},
    // AVIF and HEIF
    {"libavif-tests/kodim03_yuv420_8bpc.avif", Expect::Show, {768, 512}},
    {"libavif-tests/white_1x1.avif", Expect::Show, {1, 1}},
    {"libavif-tests/abc_color_irot_alpha_irot.avif", Expect::Show, {256, 512}},
    {"libavif-tests/paris_icc_exif_xmp.avif", Expect::Show, {403, 302}},
    {"libavif-tests/draw_points_idat_metasize0.avif", Expect::Refuse},
    {"libavif-tests/*", Expect::Either},
    {"libheif-tests/tests/rainbow-451x461.heic", Expect::Show, {451, 461}},
    {"libheif-tests/corpus/colors-with-alpha.heic", Expect::Show, {64, 64}},
    {"libheif-tests/corpus/*", Expect::Refuse},
    {"pillow-heif-tests/heif/RGB_10__29x100.heif", Expect::Show, {29, 100}},
    {"pillow-heif-tests/*", Expect::Refuse},
    // JPEG XL
    {"libjxl-conformance/alpha_triangles.jxl", Expect::Show, {1024, 1024}},
    {"libjxl-conformance/grayscale.jxl", Expect::Show, {200, 200}},
    {"libjxl-conformance/animation_spline.jxl", Expect::Show, {320, 320}},
    {"libjxl-testdata/*", Expect::Refuse},
    // Camera RAW, colour profiles
    {"exiv2-tests/Canon-R6-pruned.CR3", Expect::Either},
    {"exiv2-tests/Reagan.jpg", Expect::Show, {200, 130}},
    {"exiv2-tests/Reagan.jxl", Expect::Show, {200, 130}},
    {"exiv2-tests/*", Expect::Refuse},
    {"exiftool-raw/CanonRaw.cr2", Expect::Refuse},
    {"exiftool-raw/*", Expect::Either},
    {"imagemeta-raw/*", Expect::Either},
    {"wide-gamut-tests/*", Expect::Show, {1000, 1000}},
    {"sharp-fixtures/prophoto.png", Expect::Show, {1, 1}},
};

// Files whose outcome differs from their README, and why. The test checks
// they still differ, so this list stays true.
const struct {
    const char *file;
    const char *reason;
} KnownDeviations[] = {
    {"pillow-tests/bmp/b/badbitssize.bmp", "shown: only the image-size field is wrong, which no decoder needs"},
    {"pillow-tests/bmp/b/baddens1.bmp", "shown: only the pixels-per-metre fields are absurd"},
    {"pillow-tests/bmp/b/baddens2.bmp", "shown: only the pixels-per-metre fields are absurd"},
    {"pillow-tests/bmp/b/badfilesize.bmp", "shown: only the file-size field is wrong"},
    {"pillow-tests/bmp/b/badrle.bmp", "shown: runs past the edge are clipped, as image-rs/lenient/rle_overflow.bmp asks"},
    {"pillow-tests/bmp/b/pal8badindex.bmp", "shown: Qt draws indices past the palette black"},
    {"pillow-tests/bmp/b/rletopdown.bmp", "shown: top-down RLE is read on purpose"},
    {"pillow-tests/bmp/b/shortfile.bmp", "shown: a truncated bitmap keeps what was decoded"},
    {"pygif-test-suite/image-zero-height.gif", "refused: Qt's GIF reader rejects an empty first image"},
    {"pygif-test-suite/image-zero-size.gif", "refused: Qt's GIF reader rejects an empty first image"},
    {"pygif-test-suite/image-zero-width.gif", "refused: Qt's GIF reader rejects an empty first image"},
    {"pygif-test-suite/no-data.gif", "refused: Qt's GIF reader rejects an image without data"},
    {"pygif-test-suite/invalid-colors.gif", "shown: Qt's GIF reader accepts indices past the palette"},
    {"pygif-test-suite/overflow-codes.gif", "shown: Qt's GIF reader accepts codes past 4095"},
    {"pygif-test-suite/plain-text.gif", "shown: Qt's GIF reader shows the screen of a file without image"},
};

const char *deviationReason(const QString &file)
{
    for (const auto &deviation : KnownDeviations)
        if (file == QLatin1String(deviation.file))
            return deviation.reason;
    return nullptr;
}

bool matches(const char *pattern, const QString &file)
{
    QString expression = QRegularExpression::escape(QString::fromLatin1(pattern));
    expression.replace(QLatin1String("\\*"), QLatin1String(".*"));
    return QRegularExpression(QRegularExpression::anchoredPattern(expression)).match(file).hasMatch();
}

struct Expectation {
    Expect expect = Expect::Either;
    QSize size;
};

// pygif's .conf files give the screen size and the frames; none means error.
std::optional<Expectation> fromPygifConfiguration(const QString &gifPath)
{
    const QString configuration = gifPath.left(gifPath.size() - 4) + QStringLiteral(".conf");
    if (!QFileInfo::exists(configuration))
        return std::nullopt;
    QSettings settings(configuration, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("config"));
    // A list of frames reads as a string list; no frames as an empty string.
    if (settings.value(QStringLiteral("frames")).toStringList().join(QString()).trimmed().isEmpty())
        return Expectation{Expect::Refuse, {}};
    return Expectation{Expect::Show, QSize(settings.value(QStringLiteral("width")).toInt(),
                                           settings.value(QStringLiteral("height")).toInt())};
}

// The size the file's header declares, for the formats whose header is
// simple to read; invalid when unknown.
QSize headerSize(const QByteArray &bytes, const QString &file)
{
    const auto u16 = [&](int at) { return int(qFromLittleEndian<quint16>(bytes.constData() + at)); };
    const auto s16 = [&](int at) { return int(qFromLittleEndian<qint16>(bytes.constData() + at)); };
    const auto s32 = [&](int at) { return qFromLittleEndian<qint32>(bytes.constData() + at); };
    if (bytes.startsWith("BM") && bytes.size() >= 26) {
        if (qFromLittleEndian<quint32>(bytes.constData() + 14) == 12) // OS/2 1.x
            return QSize(u16(18), u16(20));
        return QSize(s32(18), std::abs(s32(22)));
    }
    if (bytes.startsWith("GIF8") && bytes.size() >= 10)
        return QSize(u16(6), u16(8)); // the logical screen
    if (bytes.startsWith("\xD7\xCD\xC6\x9A") && bytes.size() >= 22) // placeable WMF: frame at 96 DPI
        return QSize(qRound(std::abs(s16(10) - s16(6)) * 96.0 / u16(14)),
                     qRound(std::abs(s16(12) - s16(8)) * 96.0 / u16(14)));
    if (file.endsWith(QLatin1String(".emf"), Qt::CaseInsensitive) && bytes.size() >= 88) // frame in 0.01 mm, inclusive
        return QSize(qRound((s32(32) - s32(24) + 1) * 96.0 / 2540), qRound((s32(36) - s32(28) + 1) * 96.0 / 2540));
    if (bytes.startsWith("\xFF\xD8")) { // JPEG: the first start-of-frame marker
        for (qsizetype at = 2; at + 9 < bytes.size();) {
            if (uchar(bytes[at]) != 0xFF)
                return {};
            const uchar marker = uchar(bytes[at + 1]);
            if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC)
                return QSize(qFromBigEndian<quint16>(bytes.constData() + at + 7),
                             qFromBigEndian<quint16>(bytes.constData() + at + 5));
            at += 2 + qFromBigEndian<quint16>(bytes.constData() + at + 2);
        }
    }
    return {};
}

} // namespace

TEST(PictureCorpus, EveryPictureMeetsItsReadme)
{
    const QDir corpus(QStringLiteral(VIMORA_CORPUS_DIR));
    ASSERT_TRUE(corpus.exists());
    QStringList pictureNames;
    const QStringList items = FileTypeCatalogue::typeFilterItems({});
    for (const QString &extension : FileTypeCatalogue::admittedExtensions("ALLIMG", items[1]))
        if (extension != u"PPT" && extension != u"PPS") // slides are not decoded here
            pictureNames << QStringLiteral("*.") + extension.toLower();
    QStringList files;
    QDirIterator walk(corpus.path(), pictureNames, QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext())
        files << corpus.relativeFilePath(walk.next());
    files.sort();
    ASSERT_GT(files.size(), 600); // the corpus holds about 700 pictures

    PictureLoader::Options options;
    options.metafileTimeLimitMs = 2000;
    int shown = 0;
    int refused = 0;
    int deviations = 0;
    QElapsedTimer total;
    total.start();
    for (const QString &file : files) {
        SCOPED_TRACE(file.toStdString());
        const QString path = corpus.filePath(file);
        std::optional<Expectation> expectation;
        if (file.startsWith(QLatin1String("pygif-test-suite/")) && file.endsWith(QLatin1String(".gif")))
            expectation = fromPygifConfiguration(path);
        for (const Rule &rule : Rules) {
            if (expectation)
                break;
            if (matches(rule.pattern, file))
                expectation = Expectation{rule.expect, rule.size};
        }
        if (!expectation) {
            ADD_FAILURE() << "no expectation for this file";
            continue;
        }

        QElapsedTimer clock;
        clock.start();
        const PictureLoader::Picture picture = PictureLoader::load(path, options);
        EXPECT_LT(clock.elapsed(), 3000 * SanitizerSlowdown);
        if (picture.isNull()) {
            ++refused;
        } else {
            ++shown;
            // Drawings past the largest side are drawn smaller.
            if (picture.naturalSize.width() <= PictureLoader::MaxMetafileSide
                && picture.naturalSize.height() <= PictureLoader::MaxMetafileSide) {
                EXPECT_EQ(picture.image.size(), picture.naturalSize);
            }
            EXPECT_FALSE(picture.image.colorSpace().isValid() && picture.image.colorSpace() != QColorSpace::SRgb)
                << "a profile not converted to sRGB";
        }

        QFile source(path);
        const QByteArray head = source.open(QIODevice::ReadOnly) ? source.read(64 * 1024) : QByteArray();
        const QSize trueSize = expectation->size.isValid() ? expectation->size : headerSize(head, file);
        bool meets = true;
        switch (expectation->expect) {
        case Expect::Show:
            // A JPEG turned by its EXIF orientation shows its header's size across.
            meets = !picture.isNull()
                && (!trueSize.isValid() || picture.naturalSize == trueSize
                    || (head.startsWith("\xFF\xD8") && picture.naturalSize == trueSize.transposed()));
            break;
        case Expect::Refuse: meets = picture.isNull(); break;
        case Expect::Either: break;
        }
        if (const char *reason = deviationReason(file)) {
            ++deviations;
            std::cout << "  known deviation: " << file.toStdString() << " (" << reason << ")\n";
            EXPECT_FALSE(meets) << "meets its README now: take it off the list of deviations";
        } else {
            EXPECT_TRUE(meets) << "got " << (picture.isNull() ? "nothing" : "a picture") << " of "
                               << picture.naturalSize.width() << "x" << picture.naturalSize.height()
                               << ", expected " << (expectation->expect == Expect::Show ? "a picture" : "nothing")
                               << (trueSize.isValid() ? " of " + std::to_string(trueSize.width()) + "x"
                                                            + std::to_string(trueSize.height())
                                                      : std::string());
        }
    }
    EXPECT_LT(total.elapsed(), 45000 * SanitizerSlowdown);
    std::cout << "  corpus pictures: " << files.size() << " files, " << shown << " shown, " << refused
              << " refused, " << deviations << " known deviations from their README\n";
}
