// Runs the benchmarks and, given --results=FILE, writes the table of figures
// against their anchors as Markdown.
#include "figures.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDateTime>
#include <QFile>
#include <QSysInfo>
#include <QTextStream>
#include <QThread>

#include <algorithm>
#include <map>
#include <vector>

int snapshotPeakMain(const QString &path);
int mapCycleMain(int count);

namespace {

struct Measured
{
    std::vector<double> seconds; // per iteration, one entry per repetition
    std::map<std::string, std::vector<double>> counters;
    std::string error;

    double fastest() const { return seconds.empty() ? 0 : *std::min_element(seconds.begin(), seconds.end()); }
    double median() const
    {
        if (seconds.empty())
            return 0;
        std::vector<double> sorted = seconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }
    double counter(const std::string &name) const
    {
        const auto it = counters.find(name);
        if (it == counters.end() || it->second.empty())
            return 0;
        return *std::min_element(it->second.begin(), it->second.end());
    }
};

// Prints as usual and keeps every repetition for the table.
class CollectingReporter : public benchmark::ConsoleReporter
{
public:
    std::map<std::string, Measured> results;
    std::vector<std::string> order;

    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type != Run::RT_Iteration)
                continue;
            const std::string &name = run.run_name.function_name;
            if (!results.count(name))
                order.push_back(name);
            Measured &m = results[name];
            if (run.error_occurred) {
                m.error = run.error_message;
                continue;
            }
            if (run.iterations > 0)
                m.seconds.push_back(run.real_accumulated_time / double(run.iterations));
            for (const auto &counter : run.counters)
                m.counters[counter.first].push_back(counter.second.value);
        }
    }
};

QString formatSeconds(double s)
{
    if (s >= 1)
        return QString::number(s, 'f', 2) + QStringLiteral(" s");
    if (s >= 1e-3)
        return QString::number(s * 1e3, 'f', 2) + QStringLiteral(" ms");
    if (s >= 1e-6)
        return QString::number(s * 1e6, 'f', 2) + QStringLiteral(" µs");
    return QString::number(s * 1e9, 'f', 1) + QStringLiteral(" ns");
}

QString readFirstLine(const QString &path, const QByteArray &prefix = QByteArray())
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(prefix)) {
            const int colon = prefix.isEmpty() ? -1 : line.indexOf(':');
            return QString::fromLatin1(line.mid(colon + 1).trimmed());
        }
    }
    return QString();
}

// The soak section is measured by bench/soak.sh over an hour, not by this
// program: a rewrite of the file keeps it as it stands.
QString soakSection(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return QString();
    const QString text = QString::fromUtf8(file.readAll());
    const int start = text.indexOf(QLatin1String("\n## Soak"));
    return start < 0 ? QString() : text.mid(start);
}

bool writeResults(const QString &path, const CollectingReporter &reporter, const QString &loadBefore)
{
    const QString soak = soakSection(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        return false;
    // Collected as text and written as UTF-8: a stream on the file would
    // take the locale's encoding under one Qt and UTF-8 under the other.
    QString text;
    QTextStream out(&text);

    out << "# Benchmark results\n\n"
        << "Written by `./run bench` on " << QDateTime::currentDateTime().toString(Qt::ISODate) << ".\n\n"
        << "- Machine: " << readFirstLine(QStringLiteral("/proc/cpuinfo"), "model name") << ", "
        << QThread::idealThreadCount() << " cores, " << QSysInfo::prettyProductName() << "\n"
        << "- Load average before / after the run: " << loadBefore << " / "
        << readFirstLine(QStringLiteral("/proc/loadavg")) << "\n"
        << "- Qt " << qVersion() << ", GCC " << __VERSION__ << ", Release build\n\n"
        << "Every figure is measured in the same run as its anchor, their repetitions interleaved at\n"
        << "random; the fastest repetition of each counts, since load from other work on a shared\n"
        << "machine only ever adds time. The ratio is figure / anchor (per unit where the counts\n"
        << "differ); an aim is the largest ratio that meets it.\n\n";

    out << "| Figure | Time | Anchor | Time | Ratio | Aim | |\n"
        << "|---|---:|---|---:|---:|---:|---|\n";
    QString section;
    int missed = 0;
    for (const Figure &f : figures()) {
        if (f.section != section) {
            section = f.section;
            out << "| **" << section << "** | | | | | | |\n";
        }
        const auto fig = reporter.results.find(f.figure);
        const auto anc = reporter.results.find(f.anchor);
        if (fig == reporter.results.end() || anc == reporter.results.end() || !fig->second.error.empty()
            || !anc->second.error.empty() || fig->second.seconds.empty() || anc->second.seconds.empty()) {
            out << "| " << f.label << " | not run | " << f.anchorLabel << " | not run | | | |\n";
            continue;
        }
        double a = 0;
        double b = 0;
        QString ta;
        QString tb;
        if (f.counter.empty()) {
            a = fig->second.fastest();
            b = anc->second.fastest();
            ta = formatSeconds(a);
            tb = formatSeconds(b);
        } else {
            a = fig->second.counter(f.counter);
            b = anc->second.counter(f.counter);
            ta = QString::number(a, 'f', 0);
            tb = QString::number(b, 'f', 0);
        }
        const double ratio = b > 0 ? (a / f.figureCount) / (b / f.anchorCount) : 0;
        QString verdict;
        if (f.aim > 0) {
            verdict = ratio <= f.aim ? QStringLiteral("met") : QStringLiteral("**missed**");
            if (ratio > f.aim)
                ++missed;
        }
        out << "| " << f.label << " | " << ta << " | " << f.anchorLabel << " | " << tb << " | "
            << QString::number(ratio, 'f', 2) << " | "
            << (f.aim > 0 ? QStringLiteral("≤ ") + QString::number(f.aim, 'g', 3) : QStringLiteral("—"))
            << " | " << verdict << " |\n";
    }
    out << "\n"
        << (missed == 0 ? QStringLiteral("Every aim was met.")
                        : QStringLiteral("Aims missed: %1.").arg(missed))
        << "\n\n";

    out << "## Reading the figures\n\n"
        << "- **Memory image.** The map hands the image to every item's own `readData` / `writeData`\n"
        << "  (device models may override them), so 1,000 calls that each copy their piece are the\n"
        << "  floor; the line against 1,000 `memcpy` calls of the same pieces shows what the map adds\n"
        << "  on top of that floor.\n"
        << "- **SNMP.** The map runs each OID once through an automaton of its items' start\n"
        << "  addresses, so `loadData` costs about the copying of the set into the items and the\n"
        << "  last-sent set, whatever the number of items. The growth lines compare the cost per\n"
        << "  OID: the same set into ten times the items, and ten times the set into the same items,\n"
        << "  which costs a little more per OID as a set of 10,000 variables outgrows the caches.\n"
        << "- **Map.** The instruction counts (callgrind, one map life in a child process) show the\n"
        << "  work per unit at 1,000 and 10,000 units; the times per unit also grow with the memory\n"
        << "  that 10,000 units and their connections take, which outgrows the caches. Removal does\n"
        << "  more work per unit in a larger map: Qt finds a deleted object in its parent's child\n"
        << "  list by a linear search (the units' bindings are the map's children), and the item\n"
        << "  model moves the later rows and searches for a row's place the same way.\n"
        << "- **Topology.** A blink tick only changes pens: the tick with 200 unparsable entries per\n"
        << "  description costs what the plain tick costs, so nothing is parsed again.\n"
        << "- **Files.** The save and read of a settings file write 16 MiB to disk and read them\n"
        << "  back; the second line sets them against a plain safe write and read of the same bytes\n"
        << "  with the digest, which is what any such format costs at least. The snapshot's peak\n"
        << "  memory is taken in a fresh process of the benchmark program (VmHWM, KiB).\n"
        << "- **SNMP over loopback.** `demoagent` serves the units from another process; the walk\n"
        << "  and `snmpbulkwalk` (started once per walk, as a user would) fetch the same 10,000\n"
        << "  variables with the same 20 repetitions per exchange. The scan pass polls 200 units,\n"
        << "  each on its own UDP endpoint with its own client, one after the other as the map's\n"
        << "  scan does; its anchor is the same number of polls of one unit.\n"
        << "- Google Benchmark may warn that it was built as DEBUG: that is Debian's build of the\n"
        << "  benchmark library itself; MuxCore and the benchmarks are built in Release.\n\n";

    out << "## All measurements\n\n"
        << "| Benchmark | Fastest | Median | Repetitions |\n|---|---:|---:|---:|\n";
    std::vector<std::string> names = reporter.order;
    std::sort(names.begin(), names.end());
    for (const std::string &name : names) {
        const Measured &m = reporter.results.at(name);
        out << "| `" << QString::fromStdString(name) << "` | ";
        if (!m.error.empty())
            out << "error: " << QString::fromStdString(m.error) << " | | |\n";
        else
            out << formatSeconds(m.fastest()) << " | " << formatSeconds(m.median()) << " | "
                << m.seconds.size() << " |\n";
    }
    out << soak;
    out.flush();
    const QByteArray bytes = text.toUtf8();
    return file.write(bytes) == bytes.size();
}

} // namespace

int main(int argc, char **argv)
{
    QString results;
    QString workDir;
    std::vector<char *> rest;
    for (int i = 0; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        if (arg.startsWith(QLatin1String("--snapshot-peak="))) {
            QCoreApplication app(argc, argv);
            return snapshotPeakMain(arg.section(QLatin1Char('='), 1));
        }
        if (arg.startsWith(QLatin1String("--map-cycle="))) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
            int qtArgc = 1;
            QApplication app(qtArgc, argv);
            return mapCycleMain(arg.section(QLatin1Char('='), 1).toInt());
        }
        if (arg.startsWith(QLatin1String("--results=")))
            results = arg.section(QLatin1Char('='), 1);
        else if (arg.startsWith(QLatin1String("--workdir=")))
            workDir = arg.section(QLatin1Char('='), 1);
        else
            rest.push_back(argv[i]);
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    int qtArgc = 1;
    QApplication app(qtArgc, argv);
    setBenchWorkDir(workDir);
    const QString loadBefore = readFirstLine(QStringLiteral("/proc/loadavg"));

    int benchArgc = int(rest.size());
    benchmark::Initialize(&benchArgc, rest.data());
    if (benchmark::ReportUnrecognizedArguments(benchArgc, rest.data()))
        return 2;
    CollectingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    if (!results.isEmpty() && !writeResults(results, reporter, loadBefore))
        return 1;
    return 0;
}
