#include "bench/BenchTable.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <limits>

void BenchTable::print() const
{
    std::printf("%-58s %12s   %-44s %12s %8s\n", "what", "ours", "reference", "theirs", "ratio");
    for (const BenchRow &row : m_rows) {
        const double ratio = row.theirs > 0 ? row.ours / row.theirs : 0;
        std::printf("%-58s %9.2f %-2s   %-44s %9.2f %-2s %8.3f\n", qPrintable(row.what), row.ours, qPrintable(row.unit),
                    qPrintable(row.reference), row.theirs, qPrintable(row.unit), ratio);
    }
}

void BenchTable::writeJson(const QString &path) const
{
    QJsonArray rows;
    for (const BenchRow &row : m_rows)
        rows.append(QJsonObject{{"what", row.what}, {"ours", row.ours}, {"reference", row.reference},
                                {"theirs", row.theirs}, {"unit", row.unit},
                                {"ratio", row.theirs > 0 ? row.ours / row.theirs : 0}});
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(QJsonDocument(rows).toJson());
}

namespace {
bool g_quick = false;
}

void setQuickBench(bool quick)
{
    g_quick = quick;
}

bool quickBench()
{
    return g_quick;
}

int benchRuns(int full)
{
    return g_quick ? 1 : full;
}

double bestOf(int runs, const std::function<void()> &work)
{
    double best = std::numeric_limits<double>::max();
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        best = std::min(best, timer.nsecsElapsed() / 1e6);
    }
    return best;
}
