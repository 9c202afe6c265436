#ifndef SNMPENDPOINTS_H
#define SNMPENDPOINTS_H

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QTemporaryDir>
#include <QVariant>

#include <memory>
#include <vector>

class FaultPlan;
class QSocketNotifier;
class QTimer;
class SimulatedUnit;
struct netsnmp_transport_s;

// The SNMP side of the agent: net-snmp's agent library in this process, one
// UDP endpoint per unit on the loopback address. A request is told apart by
// the transport it came in on. The sockets are watched from the Qt loop, so
// the agent never blocks it, and fault injection simply drops a datagram
// before net-snmp sees it: to the manager that is a lost reply.
class SnmpEndpoints : public QObject
{
    Q_OBJECT
public:
    struct Options
    {
        QString community = QStringLiteral("public");
        QString v3User; // empty: no v3 user
        QString authPass;
        QString privPass;
        int trapPort = 0; // 0: no traps
        int tableRows = 0; // a large read-only table, for walks of many OIDs
    };

    explicit SnmpEndpoints(const Options &options, FaultPlan *faults, QObject *parent = nullptr);
    ~SnmpEndpoints() override;

    // False when net-snmp could not be set up.
    bool start();
    // Serves the unit on 127.0.0.1:port; false when the port is taken.
    bool addUnit(int key, SimulatedUnit *unit, int port);
    // Sends the unit's event as an SNMPv2c trap from the unit's own endpoint.
    void sendTrap(int key, const QHash<QString, QVariant> &variables);
    // The units changed: their variables are read anew at the next request.
    void invalidate();

    // The net-snmp handler's way back into this object.
    static SnmpEndpoints *instance() { return self; }
    struct Unit;
    Unit *unitForSession(void *session);

private:
    void onReadable(int socket);

    static SnmpEndpoints *self;
    Options options;
    FaultPlan *faults;
    std::vector<std::unique_ptr<Unit>> units;
    QHash<int, Unit *> bySocket;
    QHash<int, Unit *> byKey;
    QHash<void *, Unit *> bySession;
    QTimer *alarms;
    // net-snmp keeps a little state on disk; it goes with the process.
    QTemporaryDir stateDir;
    bool started = false;
};

#endif // SNMPENDPOINTS_H
