#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QString>

#include <functional>

// One row: our figure, the reference's, and their ratio.
struct BenchRow {
    QString what;
    QString reference;
    double ours = 0;
    double theirs = 0;
    QString unit = QStringLiteral("ms");
};

class BenchTable {
public:
    void add(const BenchRow &row) { m_rows.append(row); }
    void print() const;
    void writeJson(const QString &path) const;

private:
    QList<BenchRow> m_rows;
};

struct Bench {
    const char *name;
    std::function<void(BenchTable &)> run;
};
QList<Bench> allBenches();

// Fewer repetitions and pictures for a quick look (--quick).
void setQuickBench(bool quick);
bool quickBench();
int benchRuns(int full); // full, or 1 when quick

// The best of several runs, in milliseconds.
double bestOf(int runs, const std::function<void()> &work);
