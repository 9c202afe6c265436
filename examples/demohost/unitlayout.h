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
// The G.826 table sits where the counter item expects it, under the vendor arc.
inline QString oidG826()
{
    return QStringLiteral(".") + enterpriseArc() + QStringLiteral(".2.21.1.3.2.2");
}

// SNMP wire form used between the demo model and its simulated agent: a
// QDataStream of the operation, the subtree or variables, and the answer's
// result code with the variables. A real host hands these to its SNMP stack.
enum SnmpOperation : unsigned char { SnmpGet = 1, SnmpSet = 2 };

// Model codes for device settings files.
constexpr short deviceCode = 0x4E1;
inline QString modelName()
{
    return QStringLiteral("DemoMux-4E1");
}

} // namespace UnitLayout

#endif // UNITLAYOUT_H
