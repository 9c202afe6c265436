#include "simulatedunit.h"

#include <core/convert.h>

#include <QDataStream>
#include <QIODevice>
#include <QRandomGenerator>

using namespace UnitLayout;

namespace {

// G.826 families in memory order: EB, ES, SES, AvT, UnavT on CRC-4, then the same on the E-bit.
enum Family { EB = 0, ES = 1, SES = 2, AVT = 3, UNAVT = 4 };
constexpr int ebitOffset = 5;

int snmpTruth(bool on)
{
    return on ? 1 : 2;
}

QString portOid(const QString &table, const char *column, int port)
{
    return QStringLiteral("%1.%2.%3").arg(table, QLatin1String(column)).arg(port + 1);
}

} // namespace

SimulatedUnit::SimulatedUnit(int index, bool snmp, unsigned short firmware, const QString &ip)
    : snmp(snmp)
    , config(configSize, '\0')
    , firmware(firmware)
{
    // Two lines in use with CRC-4, two spare.
    for (int port = 0; port < portCount; ++port) {
        unsigned char bits = 0;
        if (port < 2)
            bits |= (1u << portEnabledBit) | (1u << portCrc4Bit);
        config[cfgPorts + port] = static_cast<char>(bits);
    }
    const QByteArray mask = Convert::stringToIp(QStringLiteral("255.255.255.0")).toLatin1();
    config.replace(cfgIp, 4, Convert::stringToIp(ip).toLatin1());
    config.replace(cfgMask, 4, mask);
    const QByteArray label = QStringLiteral("Mux %1").arg(index + 1).toLatin1().left(cfgLabelSize);
    config.replace(cfgLabel, label.size(), label);
    factory = config;
    saved = config;
    temperature += index % 7;
}

bool SimulatedUnit::portEnabled(int port) const
{
    return (static_cast<unsigned char>(config.at(cfgPorts + port)) >> portEnabledBit) & 1u;
}

PortState SimulatedUnit::portState(int port) const
{
    if (!portEnabled(port))
        return PortDisabled;
    if (los[port])
        return PortLos;
    if (ais[port])
        return PortAis;
    return PortUp;
}

int SimulatedUnit::alarmLevel() const
{
    bool major = powerFail;
    bool minor = overTemperature;
    for (int port = 0; port < portCount; ++port) {
        const PortState state = portState(port);
        major = major || state == PortLos;
        minor = minor || state == PortAis;
    }
    return (major ? 1 : 0) | (minor ? 2 : 0);
}

QByteArray SimulatedUnit::statusImage() const
{
    QByteArray image(statusSize, '\0');
    unsigned char byte0 = 0;
    for (int port = 0; port < portCount; ++port) {
        const PortState state = portState(port);
        if (state == PortLos)
            byte0 |= 1u << port;
        if (state == PortAis)
            byte0 |= 1u << (4 + port);
        unsigned char st = static_cast<unsigned char>(state);
        if (state == PortUp && activity[port])
            st |= 1u << portActivityBit;
        image[stPortState + port] = static_cast<char>(st);
    }
    image[stAlarms] = static_cast<char>(byte0);
    image[stAlarms + 1] = static_cast<char>(
        (powerFail ? 1u << alarmPowerBit : 0u) | (overTemperature ? 1u << alarmTemperatureBit : 0u));
    auto put16 = [&image](int at, int value) {
        image[at] = static_cast<char>(value & 0xFF);
        image[at + 1] = static_cast<char>((value >> 8) & 0xFF);
    };
    put16(stTemperature, temperature);
    put16(stLoad, load);
    put16(stEthernet, 1 | (ethernetActivity ? 2 : 0));
    put16(stFirmware, firmware);
    const QByteArray clock
        = Convert::dateToString(QDateTime::currentDateTime().addMSecs(clockOffsetMs)).toLatin1();
    image.replace(stClock, qMin(clock.size(), 8), clock.left(8));
    for (int family = 0; family < 10; ++family) {
        for (int port = 0; port < portCount; ++port) {
            const int at = stG826 + (family * portCount + port) * 4;
            for (int b = 0; b < 4; ++b)
                image[at + b] = static_cast<char>((counters[family][port] >> (8 * b)) & 0xFF);
        }
    }
    return image;
}

QHash<QString, QVariant> SimulatedUnit::variables() const
{
    QHash<QString, QVariant> vars;
    vars.insert(oidSystem() + QStringLiteral(".1"), Convert::ipToString(byteString(config.mid(cfgIp, 4))));
    vars.insert(oidSystem() + QStringLiteral(".2"), Convert::ipToString(byteString(config.mid(cfgMask, 4))));
    vars.insert(oidSystem() + QStringLiteral(".3"), paddedText(config.mid(cfgLabel, cfgLabelSize)));
    for (int port = 0; port < portCount; ++port) {
        const unsigned char bits = static_cast<unsigned char>(config.at(cfgPorts + port));
        vars.insert(portOid(oidPortTable(), colPortEnabled, port), snmpTruth((bits >> portEnabledBit) & 1u));
        vars.insert(portOid(oidPortTable(), colPortCrc4, port), snmpTruth((bits >> portCrc4Bit) & 1u));
        vars.insert(portOid(oidPortTable(), colPortLineCode, port), ((bits >> portAmiBit) & 1u) ? 2 : 1);
    }
    const QByteArray image = statusImage();
    vars.insert(oidAlarms() + QStringLiteral(".1"), static_cast<unsigned char>(image.at(stAlarms)));
    vars.insert(oidAlarms() + QStringLiteral(".2"), static_cast<unsigned char>(image.at(stAlarms + 1)));
    for (int port = 0; port < portCount; ++port) {
        const unsigned char st = static_cast<unsigned char>(image.at(stPortState + port));
        vars.insert(portOid(oidPortStatus(), colPortState, port), (st & 0x7F) + 1);
        vars.insert(portOid(oidPortStatus(), colPortActivity, port), snmpTruth((st >> portActivityBit) & 1u));
    }
    vars.insert(oidTemperature() + QStringLiteral(".0"), temperature);
    vars.insert(oidLoad() + QStringLiteral(".0"), load);
    vars.insert(oidEthernet() + QStringLiteral(".0"), 1 | (ethernetActivity ? 2 : 0));
    vars.insert(oidClock() + QStringLiteral(".0"),
        Convert::dateToString(QDateTime::currentDateTime().addMSecs(clockOffsetMs)));
    vars.insert(oidFirmware() + QStringLiteral(".0"), firmware);
    vars.insert(oidAlarmLevel(), alarmLevel());
    for (int family = 0; family < 10; ++family) {
        for (int port = 0; port < portCount; ++port) {
            vars.insert(QStringLiteral("%1.1.%2.%3").arg(oidG826()).arg(family + 2).arg(port + 1),
                counters[family][port]);
        }
    }
    return vars;
}

bool SimulatedUnit::runCommand(unsigned char command, const QByteArray &argument)
{
    switch (command) {
    case CmdWriteConfig:
        if (argument.size() != configSize)
            return false;
        config = argument;
        return true;
    case CmdSave:
        saved = config;
        return true;
    case CmdRestoreSaved:
        config = saved;
        return true;
    case CmdFactory: {
        const bool keepAddresses = !argument.isEmpty() && argument.at(0) != 0;
        const QByteArray addresses = config.mid(cfgIp, 8);
        config = factory;
        if (keepAddresses)
            config.replace(cfgIp, 8, addresses);
        saved = config;
        return true;
    }
    case CmdRestart:
        restartTicks = 3;
        config = saved;
        return true;
    case CmdSetClock: {
        const QDateTime set = Convert::strToDate(byteString(argument));
        if (!set.isValid())
            return false;
        clockOffsetMs = QDateTime::currentDateTime().msecsTo(set);
        return true;
    }
    case CmdResetStatistics:
        resetCounters();
        return true;
    case CmdIdentify:
        ++identifies;
        return true;
    default:
        // A standalone unit has no redundant partner to hand over to.
        return false;
    }
}

QByteArray SimulatedUnit::handleSerial(const QByteArray &request)
{
    if (request.isEmpty() || isRestarting())
        return QByteArray();
    const auto command = static_cast<unsigned char>(request.at(0));
    QByteArray answer;
    answer.append(static_cast<char>(command | answerBit));
    if (command == CmdReadConfig) {
        answer.append(static_cast<char>(resultDone));
        answer.append(config);
    } else if (command == CmdReadStatus) {
        answer.append(static_cast<char>(resultDone));
        answer.append(statusImage());
    } else {
        const bool done = runCommand(command, request.mid(1));
        answer.append(static_cast<char>(done ? resultDone : resultRefused));
    }
    return answer;
}

void SimulatedUnit::setConfigVariable(const QString &oid, const QVariant &value)
{
    const QString system = oidSystem() + QLatin1Char('.');
    if (oid == system + QLatin1Char('1') && Convert::validateIP(value.toString())) {
        config.replace(cfgIp, 4, Convert::stringToIp(value.toString()).toLatin1());
    } else if (oid == system + QLatin1Char('2') && Convert::validateSubnetMask(value.toString())) {
        config.replace(cfgMask, 4, Convert::stringToIp(value.toString()).toLatin1());
    } else if (oid == system + QLatin1Char('3')) {
        QByteArray label = value.toString().toLatin1().left(cfgLabelSize);
        label.append(QByteArray(cfgLabelSize - label.size(), '\0'));
        config.replace(cfgLabel, cfgLabelSize, label);
    } else {
        for (int port = 0; port < portCount; ++port) {
            unsigned char bits = static_cast<unsigned char>(config.at(cfgPorts + port));
            auto setBit = [&bits](unsigned char bit, bool on) {
                bits = on ? (bits | (1u << bit)) : (bits & ~(1u << bit));
            };
            if (oid == portOid(oidPortTable(), colPortEnabled, port))
                setBit(portEnabledBit, value.toInt() == 1);
            else if (oid == portOid(oidPortTable(), colPortCrc4, port))
                setBit(portCrc4Bit, value.toInt() == 1);
            else if (oid == portOid(oidPortTable(), colPortLineCode, port))
                setBit(portAmiBit, value.toInt() == 2);
            config[cfgPorts + port] = static_cast<char>(bits);
        }
    }
}

bool SimulatedUnit::applySet(const QHash<QString, QVariant> &set)
{
    bool done = true;
    for (auto it = set.cbegin(); it != set.cend(); ++it) {
        if (it.key() == oidControl()) {
            const int code = it.value().toInt();
            done = runCommand(static_cast<unsigned char>(code & 0xFF),
                       QByteArray(1, static_cast<char>((code >> 8) & 0xFF)))
                && done;
        } else if (it.key() == oidClock() + QStringLiteral(".0")) {
            const QByteArray date = it.value().toString().toLatin1();
            done = runCommand(CmdSetClock, date) && done;
        } else {
            setConfigVariable(it.key(), it.value());
        }
    }
    return done;
}

bool SimulatedUnit::isWritable(const QString &oid)
{
    return oid.startsWith(oidSystem() + QLatin1Char('.')) || oid.startsWith(oidPortTable() + QLatin1Char('.'))
        || oid == oidControl() || oid == oidClock() + QStringLiteral(".0");
}

QByteArray SimulatedUnit::handleSnmp(const QByteArray &request)
{
    if (isRestarting())
        return QByteArray();
    QDataStream in(request);
    quint8 operation = 0;
    in >> operation;
    QHash<QString, QVariant> result;
    bool done = true;
    if (operation == SnmpGet) {
        QString subtree;
        in >> subtree;
        const QHash<QString, QVariant> all = variables();
        for (auto it = all.cbegin(); it != all.cend(); ++it) {
            if (it.key().startsWith(subtree))
                result.insert(it.key(), it.value());
        }
    } else if (operation == SnmpSet) {
        in >> result;
        done = applySet(result);
    } else {
        return QByteArray();
    }
    if (in.status() != QDataStream::Ok)
        return QByteArray();
    QByteArray answer;
    QDataStream out(&answer, QIODevice::WriteOnly);
    out << quint8(done ? resultDone : resultRefused) << result;
    return answer;
}

void SimulatedUnit::resetCounters()
{
    for (auto &family : counters) {
        for (quint32 &counter : family)
            counter = 0;
    }
}

SimulatedUnit::Event SimulatedUnit::makeEvent(const QString &what, int port) const
{
    Event event;
    event.alarm = alarmLevel();
    // snmpTrapOID.0 names the notification; the rest are its variables.
    event.variables.insert(
        QStringLiteral("1.3.6.1.6.3.1.1.4.1.0"), productArc() + QStringLiteral(".0.") + what);
    event.variables.insert(oidAlarmLevel(), event.alarm);
    if (port >= 0)
        event.variables.insert(
            portOid(oidPortStatus(), colPortState, port), static_cast<int>(portState(port)) + 1);
    return event;
}

QList<SimulatedUnit::Event> SimulatedUnit::tick(QRandomGenerator &random)
{
    QList<Event> events;
    if (restartTicks > 0) {
        if (--restartTicks == 0)
            events.append(makeEvent(QStringLiteral("1"), -1)); // cold start
        return events;
    }
    auto chance = [&random](double p) { return random.generateDouble() < p; };

    for (int port = 0; port < portCount; ++port) {
        if (!portEnabled(port)) {
            activity[port] = false;
            continue;
        }
        const PortState before = portState(port);
        if (los[port] ? chance(0.3) : chance(0.015))
            los[port] = !los[port];
        if (ais[port] ? chance(0.3) : chance(0.02))
            ais[port] = !ais[port];
        const PortState after = portState(port);
        if (after != before)
            events.append(makeEvent(after == PortUp ? QStringLiteral("3") : QStringLiteral("2"), port));

        activity[port] = after == PortUp && chance(0.7);
        const bool crc4 = (static_cast<unsigned char>(config.at(cfgPorts + port)) >> portCrc4Bit) & 1u;
        for (int side = 0; side < 2; ++side) {
            const int base = side * ebitOffset;
            if (side == 0 && !crc4)
                continue;
            if (after == PortLos) {
                ++counters[base + UNAVT][port];
                continue;
            }
            ++counters[base + AVT][port];
            if (chance(0.3)) {
                const quint32 blocks = 1 + random.bounded(after == PortAis ? 400 : 20);
                counters[base + EB][port] += blocks;
                ++counters[base + ES][port];
                if (blocks > 240)
                    ++counters[base + SES][port];
            }
        }
    }

    const bool wasPowerFail = powerFail;
    if (powerFail ? chance(0.25) : chance(0.004))
        powerFail = !powerFail;
    if (powerFail != wasPowerFail)
        events.append(makeEvent(powerFail ? QStringLiteral("4") : QStringLiteral("5"), -1));

    temperature = qBound(25, temperature + random.bounded(3) - 1, 70);
    const bool wasHot = overTemperature;
    overTemperature = temperature > 55;
    if (overTemperature != wasHot)
        events.append(makeEvent(QStringLiteral("6"), -1));
    load = qBound(5, load + random.bounded(11) - 5, 100);
    ethernetActivity = chance(0.6);
    return events;
}
