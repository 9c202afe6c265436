#ifndef UNITLAYOUT_H
#define UNITLAYOUT_H

#include <QByteArray>
#include <QString>

// What the demo's unit model and its simulator agree on: the memory layout of
// a "DemoMux-4E1" unit, its serial command set and its SNMP variables. A real
// host has this from the unit's firmware documentation; the library does not
// care about any of it, it only carries the bytes and variables.
namespace UnitLayout {

constexpr int portCount = 4;

// Raw unit values travel as byte strings, one character per byte. The
// (data, size) form keeps zero bytes, where the QByteArray overload stops.
inline QString byteString(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.constData(), bytes.size());
}

// A zero-padded Latin-1 text field: the text up to its first zero byte.
inline QString paddedText(const QByteArray &field)
{
    return QString::fromLatin1(
        field.constData(), static_cast<int>(qstrnlen(field.constData(), field.size())));
}

// Configuration image (also the payload of a device settings file).
constexpr int cfgPorts = 0; // one byte per port: bit 0 enabled, bit 1 CRC-4, bit 2 AMI line code
constexpr int cfgIp = 4; // 4 bytes
constexpr int cfgMask = 8; // 4 bytes
constexpr int cfgLabel = 12; // 16 bytes of Latin-1, zero padded
constexpr int cfgLabelSize = 16;
constexpr int configSize = 32;

constexpr unsigned char portEnabledBit = 0;
constexpr unsigned char portCrc4Bit = 1;
constexpr unsigned char portAmiBit = 2;

// Status image.
constexpr int stAlarms = 0; // 2 bytes: byte 0 bits 0-3 LOS, bits 4-7 AIS; byte 1 see below
constexpr int stPortState = 2; // 4 bytes: PortState in bits 0-6, bit 7 traffic activity
constexpr int stTemperature = 6; // 16-bit, degrees Celsius
constexpr int stLoad = 8; // 16-bit, percent
constexpr int stEthernet = 10; // 16-bit: bit 0 link, bit 1 activity
constexpr int stClock = 12; // 8 bytes, the unit date form of Convert::dateToString
constexpr int stFirmware = 20; // 16-bit, major in the high byte
constexpr int stG826 = 22; // 160 bytes of counters
constexpr int statusSize = stG826 + 160;

// Bits of alarm byte 1.
constexpr unsigned char alarmPowerBit = 0;
constexpr unsigned char alarmTemperatureBit = 1;
constexpr unsigned char alarmClockBit = 2;

enum PortState { PortDisabled = 0, PortUp = 1, PortLos = 2, PortAis = 3 };
constexpr unsigned char portActivityBit = 7;

// Serial command set: a request is the command byte and its arguments; an
// answer repeats the command with bit 7 set, then a result byte (0 = done),
// then the data of a read.
enum Command : unsigned char {
    CmdReadConfig = 0x01,
    CmdReadStatus = 0x02,
    CmdWriteConfig = 0x03, // + configSize bytes
    CmdSave = 0x10,
    CmdRestoreSaved = 0x11,
    CmdFactory = 0x12, // + 1 byte: keep addresses
    CmdRestart = 0x13,
    CmdSetClock = 0x14, // + the unit date bytes
    CmdResetStatistics = 0x15,
    CmdIdentify = 0x16,
    CmdSwitchToActive = 0x17
};
constexpr unsigned char answerBit = 0x80;
constexpr unsigned char resultDone = 0;
constexpr unsigned char resultRefused = 1;
constexpr int clockSize = 8; // the unit date form, zero padded

// A byte stream has no message boundaries: both ends know from the command
// byte how long a request is, and from the result byte how long its answer.
inline int requestLength(unsigned char command)
{
    switch (command) {
    case CmdWriteConfig:
        return 1 + configSize;
    case CmdFactory:
        return 2;
    case CmdSetClock:
        return 1 + clockSize;
    default:
        return 1;
    }
}
// Zero while the answer's first two bytes are not there yet.
inline int answerLength(const QByteArray &head)
{
    if (head.size() < 2)
        return 0;
    if (head.at(1) != static_cast<char>(resultDone))
        return 2;
    switch (static_cast<unsigned char>(head.at(0)) & ~answerBit) {
    case CmdReadConfig:
        return 2 + configSize;
    case CmdReadStatus:
        return 2 + statusSize;
    default:
        return 2;
    }
}

// SNMP: the documentation enterprise number (RFC 5612) stands in for a
// vendor's. Everything of the unit lies under the product arc.
inline QString enterpriseArc()
{
    return QStringLiteral("1.3.6.1.4.1.32473");
}
inline QString productArc()
{
    return enterpriseArc() + QStringLiteral(".7");
}

// Configuration variables.
inline QString oidSystem()
{
    return productArc() + QStringLiteral(".2.1");
} // .1 ip, .2 mask, .3 label
inline QString oidPortTable()
{
    return productArc() + QStringLiteral(".2.2");
} // columns below, rows 1..4
constexpr const char *colPortEnabled = "2"; // truth value
constexpr const char *colPortCrc4 = "3"; // truth value
constexpr const char *colPortLineCode = "4"; // 1 HDB3, 2 AMI
inline QString oidControl()
{
    return productArc() + QStringLiteral(".2.9.0");
} // write-only command

// Status variables.
inline QString oidAlarms()
{
    return productArc() + QStringLiteral(".3.1");
} // .1 byte 0, .2 byte 1
inline QString oidPortStatus()
{
    return productArc() + QStringLiteral(".3.2");
} // columns below
constexpr const char *colPortState = "2"; // PortState + 1
constexpr const char *colPortActivity = "3"; // truth value
inline QString oidTemperature()
{
    return productArc() + QStringLiteral(".3.3");
}
inline QString oidLoad()
{
    return productArc() + QStringLiteral(".3.4");
}
inline QString oidEthernet()
{
    return productArc() + QStringLiteral(".3.5");
}
inline QString oidClock()
{
    return productArc() + QStringLiteral(".3.6");
}
inline QString oidFirmware()
{
    return productArc() + QStringLiteral(".3.7");
}
// The UDP port the unit answers on, carried by every trap: units that share
// one agent address are told apart by it.
inline QString oidEndpointPort()
{
    return productArc() + QStringLiteral(".4.1.0");
}
// The unit's alarm level (Core::AlarmType), carried by every trap.
inline QString oidAlarmLevel()
{
    return productArc() + QStringLiteral(".3.8.0");
}
// The G.826 table sits where the counter item expects it, under the vendor
// arc. Every OID of the demo is written without a leading dot.
inline QString oidG826()
{
    return enterpriseArc() + QStringLiteral(".2.21.1.3.2.2");
}

// What the demo model asks of the host's SNMP transport, as request bytes: a
// QDataStream of the operation and the subtree to walk or the variables to
// set. The answer is the result code and the variables, the same way.
enum SnmpOperation : unsigned char { SnmpGet = 1, SnmpSet = 2 };

// The demo's network: every other unit is on SNMP, the rest on serial lines.
inline bool isSnmpUnit(int index)
{
    return index % 2 == 1;
}
// One unit needs a password (firmware 2.4), one is exempt from it (2.7).
inline unsigned short firmwareOf(int index)
{
    return index == 5 ? 0x0204 : (index == 7 ? 0x0207 : 0x0105);
}
// The unit's own IP address, unique for every unit the demo agent allows
// (5,000). The host and the agent both take it from here, so a trap's unit
// is found by the address the host knows it under. Serial units are on
// 10.1.0.0/16. SNMP units fill the three documentation networks first, 240
// addresses each as numbered here; beyond those 720 units they go on in the
// private 172.16.0.0/12, which is as unroutable and has room for all of them.
inline QString unitIp(int index)
{
    if (!isSnmpUnit(index))
        return QStringLiteral("10.1.%1.%2").arg(index / 250).arg(index % 250 + 1);
    static const char *const networks[] = {"192.0.2", "198.51.100", "203.0.113"};
    const int n = index / 2;
    if (n < 3 * 240)
        return QStringLiteral("%1.%2").arg(QLatin1String(networks[n / 240])).arg(10 + n % 240);
    const int beyond = n - 3 * 240;
    return QStringLiteral("172.%1.%2.%3")
        .arg(16 + beyond / (250 * 256))
        .arg(beyond / 250 % 256)
        .arg(beyond % 250 + 1);
}

// Model codes for device settings files.
constexpr short deviceCode = 0x4E1;
inline QString modelName()
{
    return QStringLiteral("DemoMux-4E1");
}

} // namespace UnitLayout

#endif // UNITLAYOUT_H
