#ifndef SNMPTRANSPORT_H
#define SNMPTRANSPORT_H

#include <snmp/snmptarget.h>

#include <QHash>
#include <QHostAddress>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

class Map;
class SnmpClient;
class SnmpTrapReceiver;

// The host's transport for units on SNMP: one client per unit. The model's
// request names a walk or a set; the client's variables go back to the model
// as its answer, any failure as Map::replyError. Traps from the units arrive
// at one receiver and are matched to a unit by their source and the port
// variable they carry.
class SnmpTransport : public QObject
{
    Q_OBJECT
public:
    explicit SnmpTransport(Map *map, QObject *parent = nullptr);
    ~SnmpTransport() override;

    void addUnit(unsigned short key, const SnmpTarget &target);
    bool hasUnit(unsigned short key) const { return clients.contains(key); }
    // Listens for traps on a free port of 127.0.0.1; 0 when none could be had.
    quint16 listenForTraps();
    int errorCount() const { return errors; }

signals:
    void trap(unsigned short key, int alarm, const QHash<QString, QVariant> &variables);

private:
    void onRequest(int key, const QByteArray &request);
    void onTrap(const QHostAddress &source, const QHash<QString, QVariant> &variables);

    QPointer<Map> map;
    QHash<unsigned short, SnmpClient *> clients;
    QHash<unsigned short, SnmpTarget> targets;
    // Request id of each client's request in flight.
    QHash<unsigned short, int> pending;
    SnmpTrapReceiver *receiver;
    int errors = 0;
};

#endif // SNMPTRANSPORT_H
