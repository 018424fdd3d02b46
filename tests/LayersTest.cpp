// The source folders are layers: each includes only the folders below it,
// so no window reaches into another window's files and the shared parts
// never depend on a window.
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

namespace {

// Lowest first. Folders on one line are side by side and do not include
// each other.
const QList<QStringList> Layers = {
    {"core"},
    {"platform"},
    {"context"},
    {"display"},
    {"commands"},
    {"system"},
    {"output"},
    {"files"},
    {"index", "fullscreen"},
    {"viewer"},
    {"app", "metafile"},
};

int layerOf(const QString &folder)
{
    for (qsizetype i = 0; i < Layers.size(); ++i)
        if (Layers[i].contains(folder))
            return int(i);
    return -1;
}

} // namespace

TEST(Layers, EachFolderIncludesOnlyTheFoldersBelowIt)
{
    const QString root = QStringLiteral(VIMORA_SOURCE_DIR "/src/");
    const QRegularExpression include(QStringLiteral(R"(^#include "([a-z]+)/)"),
                                     QRegularExpression::MultilineOption);
    int filesRead = 0;
    QDirIterator files(root, {"*.h", "*.cpp"}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const QString folder = path.mid(root.size()).section('/', 0, 0);
        const int layer = layerOf(folder);
        ASSERT_GE(layer, 0) << "a folder without a layer: " << folder.toStdString();
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        ++filesRead;
        for (const QRegularExpressionMatch &match : include.globalMatch(QString::fromUtf8(file.readAll()))) {
            const QString used = match.captured(1);
            const int usedLayer = layerOf(used);
            EXPECT_TRUE(used == folder || (usedLayer >= 0 && usedLayer < layer))
                << path.mid(root.size()).toStdString() << " includes " << used.toStdString();
        }
    }
    EXPECT_GT(filesRead, 100);
}
