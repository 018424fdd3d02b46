#include "platform/MetafileAnswer.h"

#include <QtEndian>

#include <gtest/gtest.h>

namespace {

QImage sample()
{
    QImage picture(3, 2, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    picture.setPixel(0, 0, qRgba(255, 0, 0, 255));
    picture.setPixel(2, 1, qPremultiply(qRgba(0, 200, 100, 128)));
    return picture;
}

void putField(QByteArray &answer, int field, quint32 value)
{
    qToLittleEndian<quint32>(value, answer.data() + 4 + 4 * field);
}

} // namespace

TEST(MetafileAnswer, APictureComesBackAsDrawn)
{
    const QByteArray answer = MetafileAnswer::encode(sample(), QSize(30, 20));
    const auto drawn = MetafileAnswer::read(answer, QSize(3, 2));
    ASSERT_TRUE(drawn);
    EXPECT_EQ(drawn->naturalSize, QSize(30, 20));
    EXPECT_EQ(drawn->picture, sample());
}

TEST(MetafileAnswer, AnswersBeyondWhatWasAskedAreRefused)
{
    const QByteArray sound = MetafileAnswer::encode(sample(), QSize(30, 20));
    const QSize bound(3, 2);
    const auto changed = [&](int field, quint32 value) {
        QByteArray answer = sound;
        putField(answer, field, value);
        return answer;
    };
    const struct {
        const char *what;
        QByteArray answer;
    } refused[] = {
        {"another magic", QByteArray(sound).replace(0, 4, "VMF2")},
        {"no width", changed(0, 0)},
        {"wider than the bound", changed(0, 4)},
        {"taller than the bound", changed(1, 3)},
        {"a height past int", changed(1, 0x80000002u)},
        {"no natural size", changed(2, 0)},
        {"a natural size past any metafile", changed(3, 1u << 23)},
        {"drawn larger than natural", changed(2, 1)},
        {"pixels missing", sound.chopped(1)},
        {"pixels left over", sound + "more"},
        {"the header cut", sound.left(MetafileAnswer::HeaderBytes - 1)},
    };
    for (const auto &[what, answer] : refused)
        EXPECT_FALSE(MetafileAnswer::read(answer, bound)) << what;
    EXPECT_TRUE(MetafileAnswer::read(sound, bound));
}

TEST(MetafileAnswer, PixelsBrighterThanTheirAlphaAreDimmedToIt)
{
    QByteArray answer = MetafileAnswer::encode(sample(), QSize(3, 2));
    qToLittleEndian<quint32>(0x40FF8020u, answer.data() + MetafileAnswer::HeaderBytes); // alpha 0x40
    const auto drawn = MetafileAnswer::read(answer, QSize(3, 2));
    ASSERT_TRUE(drawn);
    EXPECT_EQ(drawn->picture.pixel(0, 0), qRgba(0x40, 0x40, 0x20, 0x40));
}
