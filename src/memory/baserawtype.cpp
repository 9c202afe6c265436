#include "memory/baserawtype.h"

#include "memory/snmpindex_p.h"

#include <QJsonObject>
#include <QStringMatcher>

#include <cmath>
#include <cstring>
#include <limits>

const QString BaseRawType::name = QStringLiteral("baserawtype");

namespace {

constexpr quint64 noPosition = std::numeric_limits<quint64>::max();

unsigned long long lowMask(unsigned int count)
{
    return count >= 64 ? ~0ULL : (1ULL << count) - 1;
}

// Saturates instead of wrapping, so a huge index never aliases a real byte.
quint64 mulAdd(quint64 a, quint64 b, quint64 c)
{
    quint64 product = 0;
    quint64 sum = 0;
    if (__builtin_mul_overflow(a, b, &product) || __builtin_add_overflow(product, c, &sum))
        return noPosition;
    return sum;
}

} // namespace

BaseRawType::BaseRawType() = default;

BaseRawType::~BaseRawType() = default;

// Element and byte positions are computed in 64 bits with saturation; the
// two- and three-index forms address the same element as
// i * dimTwo + j and (i * dimTwo + j) * dimThree + k.
namespace {

struct Geometry
{
    quint64 itemSize;
    quint64 dimTwo;
    quint64 dimThree;

    quint64 element(quint64 i, quint64 j) const { return mulAdd(i, dimTwo, j); }
    quint64 element(quint64 i, quint64 j, quint64 k) const
    {
        const quint64 ij = element(i, j);
        return ij == noPosition ? noPosition : mulAdd(ij, dimThree, k);
    }
    quint64 byte(quint64 element, quint64 offset) const
    {
        return element == noPosition ? noPosition : mulAdd(element, itemSize, offset);
    }
};

Geometry geometryOf(unsigned int itemSize, unsigned int dimTwo, unsigned int dimThree)
{
    return {itemSize, dimTwo, dimThree};
}

// Little-endian read of count (at most 8) bytes; bytes past the end read 0.
unsigned long long readLittleEndian(const QByteArray &bytes, quint64 position, unsigned int count)
{
    unsigned long long word = 0;
    const quint64 size = quint64(bytes.size());
    for (unsigned int k = 0; k < count && k < 8; ++k) {
        if (position >= size || position + k >= size)
            break;
        word |= static_cast<unsigned long long>(static_cast<unsigned char>(bytes.at(int(position + k))))
            << (8 * k);
    }
    return word;
}

// Makes the copy end at least at end, zero-filling what it adds; false when
// that would pass the size limit.
bool growTo(QByteArray &bytes, quint64 end)
{
    const quint64 size = quint64(bytes.size());
    if (end <= size)
        return true;
    if (end > BaseRawType::maxCopySize)
        return false;
    bytes.append(QByteArray(int(end - size), '\0'));
    return true;
}

// Writes count bytes of value, least significant first; bytes above the
// eighth are zero.
void writeLittleEndian(QByteArray &bytes, quint64 position, unsigned int count, unsigned long long value)
{
    if (count == 0 || position == noPosition || !growTo(bytes, position + count))
        return;
    char *data = bytes.data();
    for (unsigned int k = 0; k < count; ++k)
        data[position + k] = k < 8 ? char((value >> (8 * k)) & 0xFF) : '\0';
}

// Whether oid contains part (not empty) anywhere. OIDs are short: testing the
// last and first characters at each place before comparing the whole beats a
// general search there; long texts go to the matcher built for part.
bool containsOid(const QString &oid, const QString &part, const QStringMatcher &matcher)
{
    const int n = oid.size();
    const int m = part.size();
    if (m > n)
        return false;
    if (n > 128)
        return matcher.indexIn(oid) >= 0;
    const QChar *text = oid.constData();
    const QChar *wanted = part.constData();
    const QChar first = wanted[0];
    const QChar last = wanted[m - 1];
    for (int i = 0; i <= n - m; ++i) {
        if (text[i + m - 1] == last && text[i] == first
            && std::memcmp(text + i, wanted, sizeof(QChar) * size_t(m)) == 0)
            return true;
    }
    return false;
}

} // namespace

bool BaseRawType::readData(QByteArray *image)
{
    const quint64 total = quint64(itemSize) * itemsCount;
    if (!image || quint64(image->size()) < quint64(startAddress) + total)
        return false;
    mode = 0;
    // Reloading an image is the common case: the copy already has its size,
    // so its buffer is reused rather than allocated anew for every item.
    if (quint64(localCopy.size()) == total && localCopy.isDetached()) {
        if (total > 0)
            std::memcpy(localCopy.data(), image->constData() + startAddress, total);
    } else {
        localCopy = QByteArray(image->constData() + startAddress, int(total));
    }
    return true;
}

bool BaseRawType::writeData(QByteArray *image)
{
    const quint64 total = quint64(itemSize) * itemsCount;
    if (!image || quint64(image->size()) < quint64(startAddress) + total)
        return false;
    // The image keeps its length whatever the copy's size: bytes the copy
    // does not hold are written as the item reads them, as zero.
    char *target = image->data() + startAddress;
    const quint64 held = qMin(total, quint64(localCopy.size()));
    if (held > 0)
        std::memcpy(target, localCopy.constData(), held);
    if (total > held)
        std::memset(target + held, 0, total - held);
    return true;
}

bool BaseRawType::readData(QHash<QString, QVariant> *variables)
{
    if (!variables)
        return false;
    mode = 1;
    if (snmpStartAddress.isEmpty())
        return true;
    // Within a map's loadData the whole set has been matched once for all
    // items; this item's share is ready.
    if (SnmpIndex::Pass::takeShared(this, *variables, snmpData))
        return true;
    // A plain substring test on purpose: units answer with OIDs that carry
    // the prefix inside a longer arc. The search tables are built once per
    // call, not once per OID.
    const QStringMatcher matcher(snmpStartAddress);
    int taken = 0;
    for (auto it = variables->cbegin(); it != variables->cend(); ++it) {
        if (containsOid(it.key(), snmpStartAddress, matcher)) {
            snmpData.insert(it.key(), it.value());
            ++taken;
        }
    }
    SnmpIndex::Pass::noteTaken(taken);
    return true;
}

bool BaseRawType::clearSnmpData()
{
    snmpData = QHash<QString, QVariant>();
    return true;
}

namespace {

enum class NumberKind { None, Signed, Unsigned, Real };

NumberKind numberKind(int type)
{
    switch (type) {
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return NumberKind::Signed;
    case QMetaType::Bool:
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return NumberKind::Unsigned;
    case QMetaType::Float:
    case QMetaType::Double:
        return NumberKind::Real;
    default:
        return NumberKind::None;
    }
}

// Whether a value needs sending again. Spelled out rather than left to
// QVariant, whose equality converts freely in Qt 5 ("5" equals 5, -1 equals
// 2^64 - 1) and not in Qt 6. Numbers compare by value whatever their type, as
// a unit answers `int` where a model sets `qulonglong`; a NaN equals a NaN of
// its own type, or a unit's not-a-number would go out on every write. Other
// values are equal only when of the same type and equal.
bool sameValue(const QVariant &a, const QVariant &b)
{
    const NumberKind kindA = numberKind(a.userType());
    const NumberKind kindB = numberKind(b.userType());
    if (kindA == NumberKind::None || kindB == NumberKind::None)
        return a.userType() == b.userType() && a == b;
    if (kindA == NumberKind::Real || kindB == NumberKind::Real) {
        const double x = a.toDouble();
        const double y = b.toDouble();
        if (std::isnan(x) || std::isnan(y))
            return std::isnan(x) && std::isnan(y) && a.userType() == b.userType();
        return x == y;
    }
    const bool negativeA = kindA == NumberKind::Signed && a.toLongLong() < 0;
    const bool negativeB = kindB == NumberKind::Signed && b.toLongLong() < 0;
    if (negativeA != negativeB)
        return false;
    return negativeA ? a.toLongLong() == b.toLongLong() : a.toULongLong() == b.toULongLong();
}

} // namespace

bool BaseRawType::writeData(QHash<QString, QVariant> *toSend, QHash<QString, QVariant> &lastSent)
{
    if (!toSend)
        return false;
    for (auto it = snmpData.cbegin(); it != snmpData.cend(); ++it) {
        const auto sent = lastSent.constFind(it.key());
        if (sent != lastSent.cend() && sameValue(sent.value(), it.value()))
            continue;
        toSend->insert(it.key(), it.value());
        lastSent.insert(it.key(), it.value());
    }
    return true;
}

void BaseRawType::serialise(QJsonObject &object)
{
    Q_UNUSED(object)
}

bool BaseRawType::deserialise(const QJsonObject &object)
{
    Q_UNUSED(object)
    return false;
}

void BaseRawType::setStartAddress(unsigned int address)
{
    startAddress = address;
}

unsigned int BaseRawType::getStartAddress()
{
    return startAddress;
}

void BaseRawType::setStartAddress(QString address)
{
    snmpStartAddress = address;
}

const QString &BaseRawType::getSnmpStartAddress() const
{
    return snmpStartAddress;
}

void BaseRawType::setItemSize(unsigned int size)
{
    itemSize = size;
}

unsigned int BaseRawType::getItemSize() const
{
    return itemSize;
}

void BaseRawType::setItemsCount(unsigned int count)
{
    itemsCount = count;
}

unsigned int BaseRawType::getItemCount()
{
    return itemsCount;
}

void BaseRawType::setDimension(unsigned int d1, unsigned int d2)
{
    dimOne = d1;
    dimTwo = d2;
    itemsCount = d1 * d2;
}

void BaseRawType::setDimension(unsigned int d1, unsigned int d2, unsigned int d3)
{
    dimOne = d1;
    dimTwo = d2;
    dimThree = d3;
    itemsCount = d1 * d2 * d3;
}

unsigned int BaseRawType::getTotalSize() const
{
    return itemSize * itemsCount;
}

unsigned int BaseRawType::getMode() const
{
    return mode;
}

const QByteArray &BaseRawType::getLocalCopy() const
{
    return localCopy;
}

const QHash<QString, QVariant> &BaseRawType::getSnmpData() const
{
    return snmpData;
}

// --- Bits --------------------------------------------------------------

namespace {

bool bitAt(const QByteArray &bytes, quint64 position, unsigned char bit)
{
    if (position >= quint64(bytes.size()))
        return false;
    return (static_cast<unsigned char>(bytes.at(int(position))) >> (bit % 8)) & 1;
}

void putBit(QByteArray &bytes, quint64 position, unsigned char bit, bool value)
{
    if (position >= quint64(bytes.size()))
        return;
    char &byte = bytes.data()[position];
    const char mask = char(1 << (bit % 8));
    byte = value ? char(byte | mask) : char(byte & ~mask);
}

// The bytes a field of count bits at first spans, at most eight.
unsigned int fieldBytes(unsigned char first, unsigned char count)
{
    return qMin((first % 8 + count + 7u) / 8u, 8u);
}

unsigned long long bitsAt(const QByteArray &bytes, quint64 position, unsigned char first, unsigned char count)
{
    if (count == 0 || position == noPosition)
        return 0;
    const unsigned long long word = readLittleEndian(bytes, position, fieldBytes(first, count));
    return (word >> (first % 8)) & lowMask(count);
}

void putBits(
    QByteArray &bytes, quint64 position, unsigned char first, unsigned char count, unsigned long long value)
{
    if (count == 0 || position == noPosition)
        return;
    const unsigned int n = fieldBytes(first, count);
    const unsigned int shift = first % 8;
    unsigned long long word = readLittleEndian(bytes, position, n);
    word = (word & ~(lowMask(count) << shift)) | (value << shift);
    writeLittleEndian(bytes, position, n, word);
}

} // namespace

bool BaseRawType::getBit(unsigned int element, unsigned char bit)
{
    return bitAt(localCopy, geometryOf(itemSize, dimTwo, dimThree).byte(element, bit / 8), bit);
}

bool BaseRawType::getBit(unsigned int i, unsigned int j, unsigned char bit)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    return bitAt(localCopy, g.byte(g.element(i, j), bit / 8), bit);
}

bool BaseRawType::getBit(unsigned int i, unsigned int j, unsigned int k, unsigned char bit)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    return bitAt(localCopy, g.byte(g.element(i, j, k), bit / 8), bit);
}

void BaseRawType::setBit(unsigned int element, unsigned char bit, bool value)
{
    putBit(localCopy, geometryOf(itemSize, dimTwo, dimThree).byte(element, bit / 8), bit, value);
}

void BaseRawType::setBit(unsigned int i, unsigned int j, unsigned char bit, bool value)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    putBit(localCopy, g.byte(g.element(i, j), bit / 8), bit, value);
}

void BaseRawType::setBit(unsigned int i, unsigned int j, unsigned int k, unsigned char bit, bool value)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    putBit(localCopy, g.byte(g.element(i, j, k), bit / 8), bit, value);
}

unsigned long long BaseRawType::getBits(unsigned int element, unsigned char first, unsigned char count)
{
    return bitsAt(localCopy, geometryOf(itemSize, dimTwo, dimThree).byte(element, first / 8), first, count);
}

unsigned long long BaseRawType::getBits(
    unsigned int i, unsigned int j, unsigned char first, unsigned char count)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    return bitsAt(localCopy, g.byte(g.element(i, j), first / 8), first, count);
}

unsigned long long BaseRawType::getBits(
    unsigned int i, unsigned int j, unsigned int k, unsigned char first, unsigned char count)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    return bitsAt(localCopy, g.byte(g.element(i, j, k), first / 8), first, count);
}

void BaseRawType::setBits(
    unsigned int element, unsigned char first, unsigned char count, unsigned long long value)
{
    putBits(localCopy, geometryOf(itemSize, dimTwo, dimThree).byte(element, first / 8), first, count, value);
}

void BaseRawType::setBits(
    unsigned int i, unsigned int j, unsigned char first, unsigned char count, unsigned long long value)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    putBits(localCopy, g.byte(g.element(i, j), first / 8), first, count, value);
}

void BaseRawType::setBits(unsigned int i, unsigned int j, unsigned int k, unsigned char first,
    unsigned char count, unsigned long long value)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    putBits(localCopy, g.byte(g.element(i, j, k), first / 8), first, count, value);
}

// --- Integers ----------------------------------------------------------

unsigned long long BaseRawType::getInteger(unsigned int element, unsigned char offset, unsigned char count)
{
    const quint64 position = geometryOf(itemSize, dimTwo, dimThree).byte(element, offset);
    return position == noPosition ? 0 : readLittleEndian(localCopy, position, count);
}

unsigned long long BaseRawType::getInteger(
    unsigned int i, unsigned int j, unsigned char offset, unsigned char count)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    const quint64 position = g.byte(g.element(i, j), offset);
    return position == noPosition ? 0 : readLittleEndian(localCopy, position, count);
}

unsigned long long BaseRawType::getInteger(
    unsigned int i, unsigned int j, unsigned int k, unsigned char offset, unsigned char count)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    const quint64 position = g.byte(g.element(i, j, k), offset);
    return position == noPosition ? 0 : readLittleEndian(localCopy, position, count);
}

void BaseRawType::setInteger(
    unsigned int element, unsigned char offset, unsigned char count, unsigned long long value)
{
    writeLittleEndian(localCopy, geometryOf(itemSize, dimTwo, dimThree).byte(element, offset), count, value);
}

void BaseRawType::setInteger(
    unsigned int i, unsigned int j, unsigned char offset, unsigned char count, unsigned long long value)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    writeLittleEndian(localCopy, g.byte(g.element(i, j), offset), count, value);
}

void BaseRawType::setInteger(unsigned int i, unsigned int j, unsigned int k, unsigned char offset,
    unsigned char count, unsigned long long value)
{
    const Geometry g = geometryOf(itemSize, dimTwo, dimThree);
    writeLittleEndian(localCopy, g.byte(g.element(i, j, k), offset), count, value);
}

unsigned long long BaseRawType::getBitsFromData(
    unsigned char position, unsigned char count, unsigned long long data)
{
    if (count == 0 || position >= 64)
        return 0;
    return (data >> position) & lowMask(count);
}

unsigned long long BaseRawType::setBitsToData(
    unsigned char position, unsigned char count, unsigned long long data, unsigned long long value)
{
    if (count == 0 || position >= 64)
        return data;
    const unsigned long long mask = lowMask(count) << position;
    return (data & ~mask) | ((value << position) & mask);
}

QString BaseRawType::getPrettyLocalCopy() const
{
    return QString::fromLatin1(localCopy.toHex(' ').toUpper());
}

// --- SNMP values -------------------------------------------------------

QString BaseRawType::oidOf(const QString &suffix) const
{
    if (suffix.isEmpty())
        return snmpStartAddress;
    return QStringLiteral("%1.%2").arg(snmpStartAddress, suffix);
}

QString BaseRawType::oidOf(const QString &suffix, qint64 row) const
{
    return QStringLiteral("%1.%2.%3").arg(snmpStartAddress, suffix, QString::number(row));
}

void BaseRawType::updateValue(const QString &oid, const QVariant &value)
{
    // Only variables the unit has delivered can be changed.
    const auto it = snmpData.find(oid);
    if (it != snmpData.end())
        it.value() = value;
}

unsigned long long BaseRawType::fieldOf(const QString &oid, unsigned char first, unsigned char count) const
{
    const unsigned long long word = snmpData.value(oid).toUInt();
    return getBitsFromData(first, count, word);
}

void BaseRawType::updateField(
    const QString &oid, unsigned long long value, unsigned char first, unsigned char count)
{
    if (!snmpData.contains(oid))
        return;
    const unsigned long long old = snmpData.value(oid).toUInt();
    updateValue(oid, QVariant(qulonglong(setBitsToData(first, count, old, value))));
}

QVariant BaseRawType::getValue()
{
    return snmpData.value(oidOf(QStringLiteral("0")));
}

QVariant BaseRawType::getValue(QString suffix)
{
    return snmpData.value(oidOf(suffix));
}

QVariant BaseRawType::getValue(QString suffix, int index)
{
    return snmpData.value(oidOf(suffix, qint64(index) + 1));
}

QVariant BaseRawType::getValueFromZero(QString suffix, int index)
{
    return snmpData.value(oidOf(suffix, index));
}

QVariant BaseRawType::getValueNonSufix(int index)
{
    return snmpData.value(oidOf(QString::number(qint64(index) + 1)));
}

void BaseRawType::setValue(QVariant value)
{
    updateValue(oidOf(QStringLiteral("0")), value);
}

void BaseRawType::setValue(QString suffix, QVariant value)
{
    updateValue(oidOf(suffix), value);
}

void BaseRawType::setValue(QString suffix, int index, QVariant value)
{
    updateValue(oidOf(suffix, qint64(index) + 1), value);
}

void BaseRawType::setValueHard(QString suffix, int index, QVariant value)
{
    snmpData.insert(oidOf(suffix, qint64(index) + 1), value);
}

void BaseRawType::setValueNonSufix(int index, QVariant value)
{
    updateValue(oidOf(QString::number(qint64(index) + 1)), value);
}

unsigned long long BaseRawType::getValue(unsigned char first, unsigned char count)
{
    return fieldOf(oidOf(QStringLiteral("0")), first, count);
}

unsigned long long BaseRawType::getValue(QString suffix, unsigned char first, unsigned char count)
{
    return fieldOf(oidOf(suffix), first, count);
}

unsigned long long BaseRawType::getValue(QString suffix, int index, unsigned char first, unsigned char count)
{
    return fieldOf(oidOf(suffix, qint64(index) + 1), first, count);
}

unsigned long long BaseRawType::getValueFromZero(
    QString suffix, int index, unsigned char first, unsigned char count)
{
    return fieldOf(oidOf(suffix, index), first, count);
}

unsigned long long BaseRawType::getValueNonSufix(int index, unsigned char first, unsigned char count)
{
    return fieldOf(oidOf(QString::number(qint64(index) + 1)), first, count);
}

void BaseRawType::setValue(unsigned long long value, unsigned char first, unsigned char count)
{
    updateField(oidOf(QStringLiteral("0")), value, first, count);
}

void BaseRawType::setValue(QString suffix, unsigned long long value, unsigned char first, unsigned char count)
{
    updateField(oidOf(suffix), value, first, count);
}

void BaseRawType::setValue(
    QString suffix, int index, unsigned long long value, unsigned char first, unsigned char count)
{
    updateField(oidOf(suffix, qint64(index) + 1), value, first, count);
}

void BaseRawType::setValueNonSufix(
    int index, unsigned long long value, unsigned char first, unsigned char count)
{
    updateField(oidOf(QString::number(qint64(index) + 1)), value, first, count);
}
