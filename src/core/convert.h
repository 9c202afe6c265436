#ifndef CONVERT_H
#define CONVERT_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

// Conversions between the raw values a unit keeps and their display forms.
// Raw values travel as byte strings: QStrings whose characters are the bytes
// (Latin-1, one character per byte).
class MUXCORE_EXPORT Convert
{
public:
    enum EndianType {
        EndianBig = 0,
        EndianLittle = 1
    };

    Convert();

    // Reverse the bytes in place when the data is big-endian (type 0).
    static void toLitEndian(EndianType type, QByteArray &data);
    static void toCurrentEndianFromLit(EndianType type, QByteArray &data);

    // A name and a value joined as "name<@>value".
    static QString makeCmdRecord(QString name, QString value);
    // False, leaving name and value untouched, unless the record has exactly two non-empty parts.
    static bool getCmdRecord(QString record, QString &name, QString &value);

    // The units' CRC-32, most significant byte first; bytes from 0x80 are
    // sign-extended before mixing, as the units do.
    static QByteArray crc32(QString text);

    static QString ipToString(QString bytes);
    static QString stringToIp(QString text);
    static QString macToString(QString bytes);
    static QString stringToMac(QString text);

    // The 8-byte unit date, cut before its first zero byte.
    static QString dateToString(QDateTime dateTime);
    static QDateTime strToDate(QString bytes);

    static bool validateIP(QString text);
    // A valid address whose ones form one unbroken run from the top bit down.
    static bool validateSubnetMask(QString text);

    // Hundredths to a fixed two-decimal text: 1234 gives "12.34".
    static QString TCFloadToString(int value);

    // SNMP truth values: 1 is true, 2 is false.
    static bool intToBool(int value);
    static int boolToInt(bool value);
};

#endif // CONVERT_H
