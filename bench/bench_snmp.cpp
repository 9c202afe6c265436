// SNMP exchange: a variable set of 10,000 OIDs loaded into a map of 1,000
// items, each of which takes its ten variables by the substring rule, then the
// set to send after one change; both set against a deep copy of the same set.
#include <memory/memorymap.h>
#include <memory/u8array.h>

#include <benchmark/benchmark.h>

#include <QHash>
#include <QString>
#include <QVariant>

namespace {

using VariableSet = QHash<QString, QVariant>;

constexpr int variablesPerItem = 10;

// Four-digit item numbers, so that no start address is a substring of
// another item's OIDs and each item takes exactly its own ten variables.
QString startAddress(int item)
{
    return QStringLiteral("1.3.6.1.4.1.5003.9.10.%1").arg(1001 + item);
}

VariableSet variableSet(int items)
{
    VariableSet set;
    set.reserve(items * variablesPerItem);
    for (int i = 0; i < items; ++i) {
        for (int k = 1; k <= variablesPerItem; ++k)
            set.insert(QStringLiteral("%1.%2").arg(startAddress(i)).arg(k), QVariant(i * 16 + k));
    }
    return set;
}

void fillSnmpMap(MemoryMap &map, int items)
{
    for (int i = 0; i < items; ++i) {
        auto *item = new U8Array;
        item->setStartAddress(startAddress(i));
        map.addItem(QStringLiteral("item%1").arg(i), item);
    }
}

// loadData with `items` items over the variables of `variableItems` items.
void loadVariables(benchmark::State &state, int items, int variableItems)
{
    MemoryMap map;
    fillSnmpMap(map, items);
    VariableSet set = variableSet(variableItems);
    // A map is filled once and polled many times: its first load, which
    // builds the map's matcher, is left out of the figure.
    map.loadData(&set);
    for (auto _ : state) {
        const bool ok = map.loadData(&set);
        benchmark::DoNotOptimize(ok);
    }
    const int taken = map.getItem(QStringLiteral("item0"))->getSnmpData().size();
    if (taken != variablesPerItem)
        state.SkipWithError("an item did not take exactly its own variables");
    state.counters["pairs"] = double(items) * set.size();
}

void BM_SnmpSaveAfterChange(benchmark::State &state)
{
    const int items = 1000;
    MemoryMap map;
    fillSnmpMap(map, items);
    VariableSet set = variableSet(items);
    map.loadData(&set);
    BaseRawType *changed = map.getItem(QStringLiteral("item500"));
    VariableSet toSend;
    int value = 0;
    for (auto _ : state) {
        changed->setValue(QStringLiteral("3"), QVariant(++value));
        toSend.clear();
        const bool ok = map.saveData(&toSend);
        benchmark::DoNotOptimize(ok);
    }
    if (toSend.size() != 1)
        state.SkipWithError("saveData did not send exactly the one change");
}

void BM_CopyVariableSet(benchmark::State &state)
{
    const VariableSet set = variableSet(1000);
    for (auto _ : state) {
        VariableSet copy = set;
        copy.detach();
        benchmark::DoNotOptimize(copy);
    }
}

} // namespace

BENCHMARK_CAPTURE(loadVariables, items1000, 1000, 1000)
    ->Name("snmp/loadData_1000items_10000oids")
    ->UseRealTime();
BENCHMARK_CAPTURE(loadVariables, items100, 100, 1000)
    ->Name("snmp/loadData_100items_10000oids")
    ->UseRealTime();
BENCHMARK_CAPTURE(loadVariables, oids1000, 1000, 100)
    ->Name("snmp/loadData_1000items_1000oids")
    ->UseRealTime();
BENCHMARK(BM_SnmpSaveAfterChange)->Name("snmp/saveData_after_one_change")->UseRealTime();
BENCHMARK(BM_CopyVariableSet)->Name("snmp/copy_10000oids")->UseRealTime();
