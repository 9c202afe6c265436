#include "simulatednetwork.h"

#include "simulatedunit.h"

#include <device/map.h>

#include <QTimer>

SimulatedNetwork::SimulatedNetwork(Map *map, const Options &options, QObject *parent)
    : QObject(parent)
    , map(map)
    , options(options)
    , random(options.seed)
    , ticker(new QTimer(this))
{
    connect(map, &Map::request, this, &SimulatedNetwork::onRequest);
    connect(ticker, &QTimer::timeout, this, &SimulatedNetwork::tick);
    ticker->start(qMax(10, options.tickMs));
}

SimulatedNetwork::~SimulatedNetwork() = default;

void SimulatedNetwork::addUnit(unsigned short key, SimulatedUnit *unit)
{
    units[key].reset(unit);
}

SimulatedUnit *SimulatedNetwork::unit(unsigned short key) const
{
    const auto it = units.find(key);
    return it == units.end() ? nullptr : it->second.get();
}

void SimulatedNetwork::setLineOpen(unsigned short key, bool open)
{
    closedLines.insert(key, !open);
}

void SimulatedNetwork::failNext(unsigned short key, int count)
{
    forcedFailures.insert(key, qMax(0, count));
}

void SimulatedNetwork::onRequest(int key, const QByteArray &request)
{
    const auto unitKey = static_cast<unsigned short>(key);
    requests[unitKey] += 1;
    // The line and the unit take their time; the answer is prepared when it
    // arrives, so it reflects the unit's state at that moment.
    const int spread = qMax(0, options.maxDelayMs - options.minDelayMs);
    const int delay = options.minDelayMs + (spread > 0 ? static_cast<int>(random.bounded(spread + 1)) : 0);
    QTimer::singleShot(delay, this, [this, unitKey, request] { deliver(unitKey, request); });
}

void SimulatedNetwork::deliver(unsigned short key, const QByteArray &request)
{
    if (!map)
        return;
    SimulatedUnit *target = unit(key);
    bool lost = !target || closedLines.value(key) || random.generateDouble() < options.errorRate;
    if (forcedFailures.value(key) > 0) {
        forcedFailures[key] -= 1;
        lost = true;
    }
    QByteArray answer;
    if (!lost)
        answer = target->isSnmp() ? target->handleSnmp(request) : target->handleSerial(request);
    if (answer.isEmpty()) {
        // A real transport reports its time-out the same way.
        ++errors;
        map->replyError(key);
        return;
    }
    map->answer(key, answer);
}

void SimulatedNetwork::tick()
{
    for (auto &entry : units) {
        const QList<SimulatedUnit::Event> events = entry.second->tick(random);
        // Only units on the IP network can report by themselves.
        if (!entry.second->isSnmp())
            continue;
        for (const SimulatedUnit::Event &event : events)
            emit trap(entry.first, event.alarm, event.variables);
    }
}
