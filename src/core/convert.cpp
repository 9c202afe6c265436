#include "core/convert.h"

#include <QStringList>

#include <algorithm>

namespace {

const QString cmdSeparator = QStringLiteral("<@>");

void reverseIfBig(Convert::EndianType type, QByteArray &data)
{
    if (type == Convert::EndianBig)
        std::reverse(data.begin(), data.end());
}

// Reads a dotted-decimal part: digits only, 0..255.
bool isAddressPart(const QString &part, uint *value)
{
    if (part.isEmpty())
        return false;
    for (const QChar c : part) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    }
    bool ok = false;
    *value = part.toUInt(&ok);
    return ok && *value <= 255;
}

// Parses four dotted-decimal parts into a 32-bit value, first part on top.
bool parseAddress(const QString &text, quint32 *address)
{
    if (text.isEmpty())
        return false;
    const QStringList parts = text.split(QLatin1Char('.'), Qt::KeepEmptyParts);
    if (parts.size() != 4)
        return false;
    quint32 result = 0;
    for (const QString &part : parts) {
        uint value = 0;
        if (!isAddressPart(part, &value))
            return false;
        result = (result << 8) | value;
    }
    *address = result;
    return true;
}

QString bytesFromParts(const QString &text, QChar separator, int count, int base)
{
    const QStringList parts = text.split(separator, Qt::SkipEmptyParts);
    QString bytes;
    for (int i = 0; i < count && i < parts.size(); ++i)
        bytes.append(QChar(parts.at(i).toInt(nullptr, base) & 0xFF));
    return bytes;
}

} // namespace

Convert::Convert() = default;

void Convert::toLitEndian(EndianType type, QByteArray &data)
{
    reverseIfBig(type, data);
}

void Convert::toCurrentEndianFromLit(EndianType type, QByteArray &data)
{
    reverseIfBig(type, data);
}

QString Convert::makeCmdRecord(QString name, QString value)
{
    return QStringLiteral("%1<@>%2").arg(name, value);
}

bool Convert::getCmdRecord(QString record, QString &name, QString &value)
{
    const QStringList parts = record.split(cmdSeparator, Qt::SkipEmptyParts, Qt::CaseSensitive);
    if (parts.size() != 2)
        return false;
    name = parts.at(0);
    value = parts.at(1);
    return true;
}

QByteArray Convert::crc32(QString text)
{
    const QByteArray bytes = text.toLatin1();
    quint32 crc = 0;
    if (!bytes.isEmpty()) {
        crc = 0xFFFFFFFFu;
        for (const char byte : bytes) {
            // The units widen each byte as a signed value.
            crc ^= static_cast<quint32>(static_cast<qint32>(static_cast<qint8>(byte)));
            for (int bit = 0; bit < 8; ++bit)
                crc = (crc >> 1) ^ ((crc & 1u) ? 0xEDB88320u : 0u);
        }
        crc = ~crc;
    }
    QByteArray result(4, '\0');
    for (int i = 0; i < 4; ++i)
        result[i] = static_cast<char>((crc >> (24 - 8 * i)) & 0xFF);
    return result;
}

QString Convert::ipToString(QString bytes)
{
    if (bytes.size() < 4)
        return QString();
    return QStringLiteral("%1.%2.%3.%4")
        .arg(bytes.at(0).unicode() & 0xFF)
        .arg(bytes.at(1).unicode() & 0xFF)
        .arg(bytes.at(2).unicode() & 0xFF)
        .arg(bytes.at(3).unicode() & 0xFF);
}

QString Convert::stringToIp(QString text)
{
    return bytesFromParts(text, QLatin1Char('.'), 4, 10);
}

QString Convert::macToString(QString bytes)
{
    if (bytes.size() < 6)
        return QString();
    QStringList parts;
    for (int i = 0; i < 6; ++i)
        parts << QStringLiteral("%1").arg(bytes.at(i).unicode() & 0xFF, 2, 16, QLatin1Char('0'));
    return parts.join(QLatin1Char(':'));
}

QString Convert::stringToMac(QString text)
{
    return bytesFromParts(text, QLatin1Char(':'), 6, 16);
}

QString Convert::dateToString(QDateTime dateTime)
{
    const QDateTime local = dateTime.toLocalTime();
    const QDate date = local.date();
    const QTime time = local.time();
    const int fields[8] = {(date.year() >> 8) & 0xFF, date.year() & 0xFF, date.month(), date.day(),
                           time.hour(), time.minute(), time.second(), time.msec() & 0xFF};
    QString text;
    for (const int field : fields) {
        if (field == 0)
            break; // the unit's text form ends at the first zero byte
        text.append(QChar(field));
    }
    return text;
}

QDateTime Convert::strToDate(QString bytes)
{
    const QByteArray raw = bytes.toLatin1();
    int field[8] = {0, 0, 0, 0, 0, 0, 0, 0};
    for (int i = 0; i < 8 && i < raw.size(); ++i)
        field[i] = static_cast<quint8>(raw.at(i));
    if (!raw.isEmpty())
        field[0] = static_cast<qint8>(raw.at(0));
    const QDate date(field[0] * 256 + field[1], field[2], field[3]);
    const QTime time(field[4], field[5], field[6], field[7]);
    return QDateTime(date, time, Qt::LocalTime);
}

bool Convert::validateIP(QString text)
{
    quint32 address = 0;
    return parseAddress(text, &address);
}

bool Convert::validateSubnetMask(QString text)
{
    quint32 mask = 0;
    if (!parseAddress(text, &mask))
        return false;
    bool seenOne = false;
    for (int bit = 0; bit < 32; ++bit) {
        const bool one = mask & (1u << bit);
        if (one)
            seenOne = true;
        else if (seenOne)
            return false;
    }
    return true;
}

QString Convert::TCFloadToString(int value)
{
    return QString::number(value / 100.0, 'f', 2);
}

bool Convert::intToBool(int value)
{
    return value == 1;
}

int Convert::boolToInt(bool value)
{
    return value ? 1 : 2;
}
