#include "fuzz/FuzzTargets.h"

#include "platform/EmfRenderer.h"

#include <QDir>
#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

// Every seed and every input a fuzzer once failed on, fed to the same entry
// the fuzzer calls, in the normal (gcc) build: a fault that comes back fails
// here without clang. An entry aborts on a broken promise of its parser.
namespace {

const QString FuzzFolder = QStringLiteral(VIMORA_SOURCE_DIR "/tests/fuzz");

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class FuzzRegression : public ::testing::TestWithParam<FuzzTargets::Target> { };

TEST_P(FuzzRegression, SeedsAndKeptInputsPassTheEntry)
{
    const FuzzTargets::Target target = GetParam();
    int fed = 0;
    for (const char *kind : {"seeds", "regressions"}) {
        const QDir folder(FuzzFolder + '/' + kind + '/' + target.name);
        for (const QString &name : folder.entryList(QDir::Files)) {
            SCOPED_TRACE(qPrintable(folder.filePath(name)));
            target.entry(readAll(folder.filePath(name)));
            ++fed;
        }
    }
    EXPECT_GT(fed, 0) << "no seeds for " << target.name;
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzRegression,
                         ::testing::ValuesIn(FuzzTargets::all().begin(), FuzzTargets::all().end()),
                         [](const auto &info) { return std::string(info.param.name); });

QByteArray seedEmf()
{
    return readAll(FuzzFolder + "/seeds/emf/test-034.emf");
}

void put(QByteArray &bytes, qsizetype at, quint32 value)
{
    qToLittleEndian<quint32>(value, bytes.data() + at);
}

} // namespace

// libemf2svg reads wherever the header and record sizes point; the parts
// that point outside the file are dropped, the rest is still drawn.
TEST(EmfSoundness, PartsPointingOutsideTheFileAreDroppedOrRefused)
{
    const QByteArray good = seedEmf();
    ASSERT_TRUE(EmfRenderer::isEmf(good));
    const EmfRenderer::Conversion reference = EmfRenderer::convert(good);
    ASSERT_FALSE(reference.isNull());

    struct Case {
        const char *what;
        std::function<void(QByteArray &)> damage;
        bool drawn;
    };
    const std::vector<Case> cases = {
        {"description past the header", [](QByteArray &b) { put(b, 60, 500); put(b, 64, 100); }, true},
        {"description offset into the fields", [](QByteArray &b) { put(b, 60, 1); put(b, 64, 8); }, true},
        {"huge description", [](QByteArray &b) { put(b, 60, 0x7fffffff); put(b, 64, 88); }, true},
        {"the last record running past the end", [](QByteArray &b) { put(b, b.size() - 16, 0x10000000); }, true},
        {"the last record of size 0", [](QByteArray &b) { put(b, b.size() - 16, 0); }, true},
        {"no end-of-file record", [](QByteArray &b) { b.chop(20); }, true},
        {"header larger than the file", [](QByteArray &b) { put(b, 4, quint32(b.size() + 4)); }, false},
        {"header smaller than its fields", [](QByteArray &b) { put(b, 4, 40); }, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        QByteArray bytes = good;
        c.damage(bytes);
        const EmfRenderer::Conversion conversion = EmfRenderer::convert(bytes);
        EXPECT_EQ(conversion.isNull(), !c.drawn);
        if (c.drawn) {
            EXPECT_EQ(conversion.naturalSize, reference.naturalSize);
        }
    }
}
