// The device map: adding units, one scan pass through the event loop and
// removing every unit, each set against as many bare queued signal round
// trips.
#include "benchdevice.h"
#include "figures.h"

#include <device/map.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QEventLoop>
#include <QModelIndex>
#include <QProcess>
#include <QVector>

#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

enum class Phase { Add, Scan, Remove };

// Newest first takes rows off the end of the tree; oldest first takes them off
// its front, where the item model moves every later row.
enum class Order { NewestFirst, OldestFirst };

struct Durations
{
    double add = 0;
    double scan = 0;
    double remove = 0;
    bool ok = true;
};

// One life of a map with `count` units; the descriptors are made before the
// clock starts, since building them is the device model's business.
// The deferred deletions of a removal; kept apart so that an instruction
// count can name it.
__attribute__((noinline)) void flushDeletions()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

Durations mapCycle(int count, Order order)
{
    Durations d;
    auto *map = new Map;
    QVector<BenchDevice *> devices;
    devices.reserve(count);
    for (int i = 0; i < count; ++i)
        devices.append(new BenchDevice);

    auto start = Clock::now();
    for (BenchDevice *device : qAsConst(devices))
        map->addItem(QModelIndex(), device, QVector<QString>());
    d.add = secondsSince(start);
    d.ok = d.ok && map->getDeviceCount() == count;

    QEventLoop loop;
    int polled = 0;
    QObject::connect(map, &Map::updateAlarmFinished, &loop, [&] {
        // Queued behind the last unit's statusUpdated(), which ends the pass.
        if (++polled == count)
            QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection);
    });
    start = Clock::now();
    map->startScan();
    loop.exec();
    d.scan = secondsSince(start);
    d.ok = d.ok && polled == count && !map->scanInproccess();

    start = Clock::now();
    for (int i = 0; i < count; ++i) {
        const int key = order == Order::OldestFirst ? i + 1 : count - i;
        d.ok = map->deleteDevice(static_cast<unsigned short>(key)) && d.ok;
    }
    flushDeletions();
    d.remove = secondsSince(start);
    d.ok = d.ok && map->getDeviceCount() == 0;

    delete map;
    return d;
}

void runMapPhase(benchmark::State &state, int count, Phase phase, Order order = Order::NewestFirst)
{
    for (auto _ : state) {
        const Durations d = mapCycle(count, order);
        if (!d.ok) {
            state.SkipWithError("the map did not add, scan or remove every unit");
            break;
        }
        state.SetIterationTime(phase == Phase::Add ? d.add : phase == Phase::Scan ? d.scan : d.remove);
    }
}

void BM_RoundTrips(benchmark::State &state, int count)
{
    Pinger pinger;
    Echo echo;
    echo.pinger = &pinger;
    QObject::connect(&pinger, &Pinger::ping, &echo, &Echo::onPing, Qt::QueuedConnection);
    QEventLoop loop;
    QObject::connect(&pinger, &Pinger::done, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    for (auto _ : state) {
        pinger.remaining = count;
        pinger.poll();
        loop.exec();
    }
}

// Instructions per unit that adding and removing take, counted by callgrind
// in a child process running one map life: unlike times, the counts do not
// depend on the load of the machine or on how much of the units fit the
// caches, so they show the growth with the count alone.
void BM_MapInstructions(benchmark::State &state, int count)
{
    const QString out = QDir(benchWorkDir()).filePath(QStringLiteral("map-%1.callgrind").arg(count));
    for (auto _ : state) {
        QProcess valgrind;
        valgrind.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        valgrind.start(QStringLiteral("valgrind"),
            {QStringLiteral("--tool=callgrind"), QStringLiteral("--callgrind-out-file=") + out,
                QStringLiteral("--toggle-collect=Map::addItem*"),
                QStringLiteral("--toggle-collect=Map::deleteDevice*"),
                QStringLiteral("--toggle-collect=*flushDeletions*"), QCoreApplication::applicationFilePath(),
                QStringLiteral("--map-cycle=%1").arg(count)});
        if (!valgrind.waitForStarted(-1) || !valgrind.waitForFinished(-1) || valgrind.exitCode() != 0) {
            state.SkipWithError("valgrind could not count the map's instructions");
            return;
        }
    }
    QProcess annotate;
    annotate.start(QStringLiteral("callgrind_annotate"), {QStringLiteral("--inclusive=yes"), out});
    annotate.waitForFinished(-1);
    double add = 0;
    double remove = 0;
    for (const QByteArray &line : annotate.readAllStandardOutput().split('\n')) {
        const double cost = line.trimmed().split(' ').value(0).replace(",", "").toDouble();
        if (line.contains("Map::addItem(QModelIndex, DeviceDescriptor*, QVector"))
            add += cost;
        else if (line.contains("Map::deleteDevice(") || line.contains("flushDeletions()"))
            remove += cost;
    }
    if (add <= 0 || remove <= 0) {
        state.SkipWithError("callgrind_annotate gave no counts");
        return;
    }
    state.counters["add_ir_per_unit"] = add / count;
    state.counters["remove_ir_per_unit"] = remove / count;
}

} // namespace

// Entered from main() with --map-cycle=N: one life of a map with N units.
int mapCycleMain(int count)
{
    return mapCycle(count, Order::NewestFirst).ok ? 0 : 1;
}

BENCHMARK_CAPTURE(BM_MapInstructions, ir1k, 1000)
    ->Name("map/instructions_1000")
    ->Iterations(1)
    ->Repetitions(1);
BENCHMARK_CAPTURE(BM_MapInstructions, ir10k, 10000)
    ->Name("map/instructions_10000")
    ->Iterations(1)
    ->Repetitions(1);

BENCHMARK_CAPTURE(runMapPhase, add10k, 10000, Phase::Add)
    ->Name("map/add_10000")
    ->Iterations(3)
    ->UseManualTime();
BENCHMARK_CAPTURE(runMapPhase, scan10k, 10000, Phase::Scan)
    ->Name("map/scan_10000")
    ->Iterations(3)
    ->UseManualTime();
BENCHMARK_CAPTURE(runMapPhase, remove10k, 10000, Phase::Remove)
    ->Name("map/remove_10000")
    ->Iterations(3)
    ->UseManualTime();
BENCHMARK_CAPTURE(runMapPhase, add1k, 1000, Phase::Add)->Name("map/add_1000")->UseManualTime();
BENCHMARK_CAPTURE(runMapPhase, remove1k, 1000, Phase::Remove)->Name("map/remove_1000")->UseManualTime();
BENCHMARK_CAPTURE(runMapPhase, removeOldest10k, 10000, Phase::Remove, Order::OldestFirst)
    ->Name("map/remove_10000_oldest_first")
    ->Iterations(3)
    ->UseManualTime();
BENCHMARK_CAPTURE(runMapPhase, removeOldest1k, 1000, Phase::Remove, Order::OldestFirst)
    ->Name("map/remove_1000_oldest_first")
    ->UseManualTime();
BENCHMARK_CAPTURE(BM_RoundTrips, trips10k, 10000)->Name("map/queued_round_trips_10000")->UseRealTime();
