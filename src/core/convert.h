#ifndef CONVERT_H
#define CONVERT_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

/**
 * Conversions between the raw values a unit keeps and their display forms.
 *
 * All operations are static and stateless. Raw values travel as *byte
 * strings*: QStrings whose characters are the bytes (Latin-1, one character
 * per byte, values 0 to 255). Conversions from text do not validate: check a
 * text with validateIP() or validateSubnetMask() before converting it.
 */
class MUXCORE_EXPORT Convert
{
public:
    /// Byte order of a byte array.
    enum EndianType {
        EndianBig = 0, ///< Most significant byte first.
        EndianLittle = 1 ///< Least significant byte first; any value but 0 counts as this.
    };

    /// Does nothing; every operation is static.
    Convert();

    /**
     * Brings @p data into little-endian order: reverses all its bytes in place
     * when @p type is #EndianBig, and leaves it unchanged otherwise.
     */
    static void toLitEndian(EndianType type, QByteArray &data);
    /// The inverse of toLitEndian(), which is the same reversal.
    static void toCurrentEndianFromLit(EndianType type, QByteArray &data);

    /// Joins a name and a value into the command record "name<@>value".
    static QString makeCmdRecord(QString name, QString value);
    /**
     * Splits a command record made by makeCmdRecord().
     *
     * Empty parts are dropped. @return true with @p name and @p value set when
     * exactly two parts remain; false otherwise, leaving both untouched.
     */
    static bool getCmdRecord(QString record, QString &name, QString &value);

    /**
     * The units' CRC-32 of the Latin-1 bytes of @p text, as 4 bytes, most
     * significant first; an empty text gives four zero bytes.
     *
     * Bytes from 0x80 are sign-extended before mixing, as the units do, so
     * such texts differ from the standard CRC-32 on purpose: stored checksums
     * depend on it.
     */
    static QByteArray crc32(QString text);

    /// Dotted decimal text of the first 4 bytes of a byte string; empty when it is shorter.
    static QString ipToString(QString bytes);
    /// The 4-byte byte string of a dotted decimal address; validate it first with validateIP().
    static QString stringToIp(QString text);
    /// Colon-separated lower-case hexadecimal ("00:1a:2b:3c:4d:5e") of the first 6 bytes; empty when shorter.
    static QString macToString(QString bytes);
    /// The 6-byte byte string of a colon-separated hexadecimal MAC address; six parts are required.
    static QString stringToMac(QString text);

    /**
     * The unit's 8-byte date of a local date-time: year (high, low byte),
     * month, day, hour, minute, second, millisecond (low 8 bits).
     *
     * The text ends before the first zero byte, so 10:20:00 ends after the
     * minute; strToDate() reads such short texts.
     */
    static QString dateToString(QDateTime dateTime);
    /// The local date-time of a unit date from dateToString(); missing bytes count as 0, bad fields give an
    /// invalid result.
    static QDateTime strToDate(QString bytes);

    /// True when @p text is four decimal numbers 0 to 255 joined by dots, with no blanks or empty parts.
    static bool validateIP(QString text);
    /// A valid address whose ones form one unbroken run from the top bit down (0.0.0.0 and 255.255.255.255
    /// pass).
    static bool validateSubnetMask(QString text);

    /// A load figure in hundredths as fixed two-decimal text: 1234 gives "12.34", -5 gives "-0.05".
    static QString TCFloadToString(int value);

    /// SNMP truth value to bool: only 1 is true (2, 0 and all others are false).
    static bool intToBool(int value);
    /// Bool to SNMP truth value: 1 for true, 2 for false.
    static int boolToInt(bool value);
};

#endif // CONVERT_H
