#ifndef SIMULATEDNETWORK_H
#define SIMULATEDNETWORK_H

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QRandomGenerator>
#include <QString>
#include <QVariant>

#include <map>
#include <memory>

class Map;
class QTimer;
class SimulatedUnit;

// The host's transport with simulated units at the far end, inside the
// process (--simulated): the stand-in for SerialTransport and SnmpTransport.
// Like them it listens to Map::request and hands the reply to Map::answer or
// a failure to Map::replyError. The library never talks to a line itself.
class SimulatedNetwork : public QObject
{
    Q_OBJECT
public:
    struct Options
    {
        quint32 seed = 1;
        double errorRate = 0.05; // share of requests that fail as a lost reply
        int minDelayMs = 15;
        int maxDelayMs = 90;
        int tickMs = 250; // one simulated second of line traffic
    };

    SimulatedNetwork(Map *map, const Options &options, QObject *parent = nullptr);
    ~SimulatedNetwork() override;

    // Takes ownership of the unit reached under the map's key.
    void addUnit(unsigned short key, SimulatedUnit *unit);
    SimulatedUnit *unit(unsigned short key) const;
    // A serial line that is closed answers nothing.
    void setLineOpen(unsigned short key, bool open);
    // The next count requests to this unit get no reply, whatever the error rate.
    void failNext(unsigned short key, int count);
    void setErrorRate(double rate) { options.errorRate = rate; }

    int requestCount(unsigned short key) const { return requests.value(key); }
    int errorCount() const { return errors; }

signals:
    // An SNMP unit reported an event on its own (a trap).
    void trap(unsigned short key, int alarm, const QHash<QString, QVariant> &variables);

private slots:
    void onRequest(int key, const QByteArray &request);
    void tick();

private:
    void deliver(unsigned short key, const QByteArray &request);

    QPointer<Map> map;
    Options options;
    QRandomGenerator random;
    std::map<unsigned short, std::unique_ptr<SimulatedUnit>> units;
    QHash<unsigned short, bool> closedLines;
    QHash<unsigned short, int> forcedFailures;
    QHash<unsigned short, int> requests;
    int errors = 0;
    QTimer *ticker;
};

#endif // SIMULATEDNETWORK_H
