#ifndef SIMULATEDUNIT_H
#define SIMULATEDUNIT_H

#include "unitlayout.h"

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QVariant>

class QRandomGenerator;

// One unit at the far end of the simulated line: its configuration memory
// (live, saved and factory copies), its status, G.826 counters that grow, and
// alarms that come and go. It answers the demo's serial commands with bytes
// and its SNMP operations with variable sets, as the firmware of a real unit
// would.
class SimulatedUnit
{
public:
    // A notification the unit sends by itself (an SNMP trap on a real unit).
    struct Event
    {
        int alarm = 0; // Core::AlarmType of the unit after the event
        QHash<QString, QVariant> variables;
    };

    // The unit's own IP address is part of its configuration.
    SimulatedUnit(int index, bool snmp, unsigned short firmware, const QString &ip);

    bool isSnmp() const { return snmp; }
    // True while the unit reboots and answers nothing.
    bool isRestarting() const { return restartTicks > 0; }

    QByteArray handleSerial(const QByteArray &request);
    QByteArray handleSnmp(const QByteArray &request);
    // Sets configuration variables and runs the control variable's command;
    // false when a command was refused.
    bool applySet(const QHash<QString, QVariant> &set);
    static bool isWritable(const QString &oid);

    // One simulated second: counters grow, alarms may rise or clear.
    QList<Event> tick(QRandomGenerator &random);

    QByteArray configImage() const { return config; }
    QByteArray statusImage() const;
    QHash<QString, QVariant> variables() const;
    int alarmLevel() const;
    int identifyCount() const { return identifies; }

private:
    bool portEnabled(int port) const;
    UnitLayout::PortState portState(int port) const;
    bool runCommand(unsigned char command, const QByteArray &argument);
    void setConfigVariable(const QString &oid, const QVariant &value);
    void resetCounters();
    Event makeEvent(const QString &what, int port) const;

    bool snmp;
    QByteArray config;
    QByteArray saved;
    QByteArray factory;
    bool los[UnitLayout::portCount] = {};
    bool ais[UnitLayout::portCount] = {};
    bool activity[UnitLayout::portCount] = {};
    bool powerFail = false;
    bool overTemperature = false;
    bool ethernetActivity = false;
    int temperature = 38;
    int load = 20;
    qint64 clockOffsetMs = 0;
    unsigned short firmware;
    // [family][port], the ten G.826 families in memory order.
    quint32 counters[10][UnitLayout::portCount] = {};
    int restartTicks = 0;
    int identifies = 0;
};

#endif // SIMULATEDUNIT_H
