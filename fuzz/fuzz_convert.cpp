// Convert's text parsers and byte-string forms on arbitrary text, with the
// round trips that hosts rely on checked along the way.

#include "fuzzinput.h"

#include <core/convert.h>

#include <QDateTime>
#include <QStringList>

#include <cmath>

namespace {

// The numbers of a dotted-decimal text that validateIP accepted.
QList<uint> addressParts(const QString &text)
{
    QList<uint> parts;
    for (const QString &part : text.split(QLatin1Char('.')))
        parts << part.toUInt();
    return parts;
}

void checkAddress(const QString &text)
{
    const bool valid = Convert::validateIP(text);
    const bool mask = Convert::validateSubnetMask(text);
    FUZZ_CHECK(!mask || valid);
    const QString bytes = Convert::stringToIp(text);
    FUZZ_CHECK(bytes.size() <= 4);
    if (!valid)
        return;
    FUZZ_CHECK(bytes.size() == 4);
    const QString back = Convert::ipToString(bytes);
    FUZZ_CHECK(Convert::validateIP(back));
    FUZZ_CHECK(addressParts(back) == addressParts(text));
}

void checkMac(const QString &text)
{
    const QString bytes = Convert::stringToMac(text);
    FUZZ_CHECK(bytes.size() <= 6);
    const QString shown = Convert::macToString(bytes);
    FUZZ_CHECK(shown.isEmpty() == (bytes.size() < 6));
    if (!shown.isEmpty())
        FUZZ_CHECK(Convert::macToString(Convert::stringToMac(shown)) == shown);
}

void checkByteStrings(const QString &bytes)
{
    const QString ip = Convert::ipToString(bytes);
    if (bytes.size() >= 4)
        FUZZ_CHECK(Convert::validateIP(ip));
    Convert::macToString(bytes);
    const QDateTime date = Convert::strToDate(bytes);
    if (date.isValid())
        Convert::dateToString(date);
    FUZZ_CHECK(Convert::crc32(bytes).size() == 4);
}

void checkRecord(const QString &name, const QString &value)
{
    const QString separator = QStringLiteral("<@>");
    QString readName = QStringLiteral("unchanged");
    QString readValue = QStringLiteral("unchanged");
    const bool ok = Convert::getCmdRecord(Convert::makeCmdRecord(name, value), readName, readValue);
    if (!name.isEmpty() && !value.isEmpty() && !name.contains(separator) && !value.contains(separator)) {
        FUZZ_CHECK(ok && readName == name && readValue == value);
    } else if (!ok) {
        FUZZ_CHECK(readName == QLatin1String("unchanged") && readValue == QLatin1String("unchanged"));
    }
}

void checkNumbers(FuzzInput &input)
{
    const int load = int(input.dword());
    const QString text = Convert::TCFloadToString(load);
    bool ok = false;
    const double shown = text.toDouble(&ok);
    FUZZ_CHECK(ok && std::llround(shown * 100) == load);

    const int truth = int(input.dword());
    FUZZ_CHECK(Convert::intToBool(truth) == (truth == 1));
    FUZZ_CHECK(Convert::intToBool(Convert::boolToInt(truth & 1)) == bool(truth & 1));

    QByteArray data = input.field();
    const QByteArray original = data;
    const auto type = Convert::EndianType(input.byte() & 1);
    Convert::toLitEndian(type, data);
    Convert::toCurrentEndianFromLit(type, data);
    FUZZ_CHECK(data == original);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const QString address = input.latin1Field();
    const QString mac = input.latin1Field();
    const QString bytes = input.latin1Field();
    const QString name = input.latin1Field();
    const QString value = input.latin1Field();

    checkAddress(address);
    checkMac(mac);
    checkByteStrings(bytes);
    checkRecord(name, value);
    QString recordName, recordValue;
    Convert::getCmdRecord(bytes, recordName, recordValue);
    checkNumbers(input);
    return 0;
}
