#ifndef BASERAWTYPE_H
#define BASERAWTYPE_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVariant>

class QJsonObject;

// A typed run of bytes in a unit's memory image, seen as an array of up to
// three dimensions of equal-sized elements. The item keeps its own copy of
// the bytes and, for units reached over SNMP, its own subset of a variable
// set; the mode tells which of the two holds the current values.
class MUXCORE_EXPORT BaseRawType
{
public:
    // The JSON key under which the library's items keep their value.
    static const QString name;
    // The local copy never grows past this, whatever index a caller passes.
    static const unsigned int maxCopySize = 16 * 1024 * 1024;

    BaseRawType();
    virtual ~BaseRawType();

    // Image exchange: false, touching nothing, when the image is too short.
    virtual bool readData(QByteArray *image);
    virtual bool writeData(QByteArray *image);
    // Takes every variable whose OID contains the SNMP start address.
    virtual bool readData(QHash<QString, QVariant> *variables);
    virtual bool clearSnmpData();
    // Adds to toSend what differs from lastSent, and records it there.
    virtual bool writeData(QHash<QString, QVariant> *toSend, QHash<QString, QVariant> &lastSent);
    virtual void serialise(QJsonObject &object);
    virtual bool deserialise(const QJsonObject &object);

    void setStartAddress(unsigned int address);
    unsigned int getStartAddress();
    // The OID prefix of the item's SNMP variables.
    void setStartAddress(QString address);
    const QString &getSnmpStartAddress() const;
    void setItemSize(unsigned int size);
    unsigned int getItemSize() const;
    // Only the count changes; the dimensions stay.
    void setItemsCount(unsigned int count);
    unsigned int getItemCount();
    // The count becomes d1 x d2; dimension three is left as it was.
    void setDimension(unsigned int d1, unsigned int d2);
    void setDimension(unsigned int d1, unsigned int d2, unsigned int d3);
    unsigned int getTotalSize() const;
    // 0 while the byte copy holds the values, 1 while the SNMP data does.
    unsigned int getMode() const;
    const QByteArray &getLocalCopy() const;
    const QHash<QString, QVariant> &getSnmpData() const;

    // Element access. Bit numbers above 7 run on into the element's following
    // bytes; integers are little-endian. Reads past the copy give 0 / false.
    bool getBit(unsigned int element, unsigned char bit);
    bool getBit(unsigned int i, unsigned int j, unsigned char bit);
    bool getBit(unsigned int i, unsigned int j, unsigned int k, unsigned char bit);
    // Never grows the copy: a bit past its end is not written.
    void setBit(unsigned int element, unsigned char bit, bool value);
    void setBit(unsigned int i, unsigned int j, unsigned char bit, bool value);
    void setBit(unsigned int i, unsigned int j, unsigned int k, unsigned char bit, bool value);
    unsigned long long getBits(unsigned int element, unsigned char first, unsigned char count);
    unsigned long long getBits(unsigned int i, unsigned int j, unsigned char first, unsigned char count);
    unsigned long long getBits(
        unsigned int i, unsigned int j, unsigned int k, unsigned char first, unsigned char count);
    // The value is not masked to the field: callers pass values that fit.
    // Grows the copy, zero-filled, when the field lies past its end (up to
    // maxCopySize bytes; a field beyond that is not written).
    void setBits(unsigned int element, unsigned char first, unsigned char count, unsigned long long value);
    void setBits(
        unsigned int i, unsigned int j, unsigned char first, unsigned char count, unsigned long long value);
    void setBits(unsigned int i, unsigned int j, unsigned int k, unsigned char first, unsigned char count,
        unsigned long long value);
    unsigned long long getInteger(unsigned int element, unsigned char offset, unsigned char count);
    unsigned long long getInteger(unsigned int i, unsigned int j, unsigned char offset, unsigned char count);
    unsigned long long getInteger(
        unsigned int i, unsigned int j, unsigned int k, unsigned char offset, unsigned char count);
    // Grows the copy like setBits; counts above 8 write zero bytes.
    void setInteger(
        unsigned int element, unsigned char offset, unsigned char count, unsigned long long value);
    void setInteger(
        unsigned int i, unsigned int j, unsigned char offset, unsigned char count, unsigned long long value);
    void setInteger(unsigned int i, unsigned int j, unsigned int k, unsigned char offset, unsigned char count,
        unsigned long long value);

    static unsigned long long getBitsFromData(
        unsigned char position, unsigned char count, unsigned long long data);
    static unsigned long long setBitsToData(
        unsigned char position, unsigned char count, unsigned long long data, unsigned long long value);

    // The copy as upper-case hex bytes separated by blanks, e.g. "0A FF 01".
    QString getPrettyLocalCopy() const;

    // SNMP values by OID suffix, S being the SNMP start address: getValue()
    // is S.0, getValue(n) is S.n (S itself for an empty n), getValue(n, i) is
    // S.n.(i+1) since table rows count from 1, getValueFromZero(n, i) is
    // S.n.i and getValueNonSufix(i) is S.(i+1). Absent values are invalid.
    QVariant getValue();
    QVariant getValue(QString suffix);
    QVariant getValue(QString suffix, int index);
    QVariant getValueFromZero(QString suffix, int index);
    QVariant getValueNonSufix(int index);

    // Setters only update a variable the unit has delivered; setValueHard
    // also inserts it.
    void setValue(QVariant value);
    void setValue(QString suffix, QVariant value);
    void setValue(QString suffix, int index, QVariant value);
    void setValueHard(QString suffix, int index, QVariant value);
    void setValueNonSufix(int index, QVariant value);

    // Bit fields of SNMP values taken as unsigned 32-bit numbers.
    unsigned long long getValue(unsigned char first, unsigned char count);
    unsigned long long getValue(QString suffix, unsigned char first, unsigned char count);
    unsigned long long getValue(QString suffix, int index, unsigned char first, unsigned char count);
    unsigned long long getValueFromZero(QString suffix, int index, unsigned char first, unsigned char count);
    unsigned long long getValueNonSufix(int index, unsigned char first, unsigned char count);

    // Unlike setBits, the value is masked to the field here.
    void setValue(unsigned long long value, unsigned char first, unsigned char count);
    void setValue(QString suffix, unsigned long long value, unsigned char first, unsigned char count);
    void setValue(
        QString suffix, int index, unsigned long long value, unsigned char first, unsigned char count);
    void setValueNonSufix(int index, unsigned long long value, unsigned char first, unsigned char count);

protected:
    QByteArray localCopy;
    unsigned int startAddress = 0;
    unsigned int itemSize = 0;
    unsigned int itemsCount = 0;
    unsigned int dimOne = 0;
    unsigned int dimTwo = 0;
    unsigned int dimThree = 0;
    QHash<QString, QVariant> snmpData;
    unsigned int mode = 0;
    QString snmpStartAddress;
    QString dimOneJson = QStringLiteral("dimOneJson");
    QString dimTwoJson = QStringLiteral("dimTwoJson");
    QString dimThreeJson = QStringLiteral("dimThreeJson");

private:
    QString oidOf(const QString &suffix) const;
    QString oidOf(const QString &suffix, qint64 row) const;
    void updateValue(const QString &oid, const QVariant &value);
    unsigned long long fieldOf(const QString &oid, unsigned char first, unsigned char count) const;
    void updateField(const QString &oid, unsigned long long value, unsigned char first, unsigned char count);
};

#endif // BASERAWTYPE_H
