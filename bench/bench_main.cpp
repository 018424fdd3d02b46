// Vimora's speed figures, each next to a reference measured in the same
// run on the same files. Prints a table and, with --json FILE, writes it.
#include "bench/BenchTable.h"

int runBenchChild(const QStringList &arguments); // picture_walk_bench.cpp

#include <QApplication>
#include <QCommandLineParser>

#include <clocale>

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    QCommandLineParser parser;
    parser.addOption({"json", "Write the table as JSON to this file.", "file"});
    parser.addOption({"only", "Run only the benches whose name contains this text.", "text"});
    parser.addOption({"quick", "Fewer repetitions and pictures, for a quick look."});
    parser.addOption({"child", "Internal: one measurement in a fresh process."});
    parser.process(app);
    if (parser.isSet("child"))
        return runBenchChild(parser.positionalArguments());
    setQuickBench(parser.isSet("quick"));

    BenchTable table;
    for (const Bench &bench : allBenches())
        if (!parser.isSet("only") || QString::fromUtf8(bench.name).contains(parser.value("only")))
            bench.run(table);
    table.print();
    if (parser.isSet("json"))
        table.writeJson(parser.value("json"));
    return 0;
}
