#ifndef BASERAWTYPE_H
#define BASERAWTYPE_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVariant>

class QJsonObject;

/**
 * A typed run of bytes in a unit's memory image, seen as an array of up to
 * three dimensions of equal-sized elements.
 *
 * The item keeps its own copy of the bytes (the local copy, filled from a
 * whole image at its start address) and, for units reached over SNMP, its own
 * subset of a variable set (the SNMP data, picked by its SNMP start address);
 * getMode() tells which of the two holds the current values. Device models
 * build items once, add them to a MemoryMap, which owns them, and then only
 * move data.
 *
 * Byte order: multi-byte integers are little-endian; bit 0 is the least
 * significant bit of a byte and bit numbers above 7 run on into the
 * element's following bytes. Element indices: (i, j) is element
 * i × d2 + j, (i, j, k) is element (i × d2 + j) × d3 + k; indices are not
 * checked against the dimensions. Reads past the copy give 0 or false.
 *
 * SNMP values are addressed by OID suffix, S being the SNMP start address:
 * getValue() is S.0, getValue(n) is S.n (S itself for an empty n),
 * getValue(n, i) is S.n.(i+1) since table rows count from 1,
 * getValueFromZero(n, i) is S.n.i and getValueNonSufix(i) is S.(i+1). Absent
 * values read as an invalid QVariant (0 in the bit-field forms).
 *
 * @warning A received variable is taken when its OID *contains* S, not only
 * when it starts with it: S = 1.2.3.4 also takes 1.2.3.44.2. Choose SNMP start
 * addresses that are not prefixes of each other.
 */
class MUXCORE_EXPORT BaseRawType
{
public:
    /// The JSON key under which the library's items keep their value ("baserawtype").
    static const QString name;
    /// The local copy never grows past this many bytes, whatever index a caller passes.
    static const unsigned int maxCopySize = 16 * 1024 * 1024;

    /// An empty item: no bytes, no SNMP data, all geometry zero, mode 0.
    BaseRawType();
    /// Virtual, since memory maps delete items through this base.
    virtual ~BaseRawType();

    /**
     * Copies the item's getTotalSize() bytes from @p image at the start address and sets mode 0.
     * @return false, touching nothing, when the image is too short.
     */
    virtual bool readData(QByteArray *image);
    /**
     * Puts the local copy into @p image at the start address; the image is never grown.
     * @return false, touching nothing, when the image is too short.
     */
    virtual bool writeData(QByteArray *image);
    /**
     * Takes every variable whose OID contains the SNMP start address into the SNMP data and sets mode 1.
     *
     * Variables held from earlier reads stay; with an empty start address
     * nothing is taken. Always true.
     */
    virtual bool readData(QHash<QString, QVariant> *variables);
    /// Empties the SNMP data, for example before a full reload; always true.
    virtual bool clearSnmpData();
    /**
     * Adds to @p toSend every SNMP variable that differs from @p lastSent, and records it there.
     *
     * The caller keeps @p lastSent per unit and clears it to force a full write. Always true.
     */
    virtual bool writeData(QHash<QString, QVariant> *toSend, QHash<QString, QVariant> &lastSent);
    /// Writes the item's value into @p object; does nothing here.
    virtual void serialise(QJsonObject &object);
    /// Reads the item's value from @p object; false here, and for an object without the item's key.
    virtual bool deserialise(const QJsonObject &object);

    /// Sets the byte offset of the item within the memory image.
    void setStartAddress(unsigned int address);
    /// The byte offset of the item within the memory image.
    unsigned int getStartAddress();
    /// Sets the OID prefix of the item's SNMP variables (see the warning above).
    void setStartAddress(QString address);
    /// The OID prefix of the item's SNMP variables.
    const QString &getSnmpStartAddress() const;
    /// Sets the bytes per element.
    void setItemSize(unsigned int size);
    /// Bytes per element.
    unsigned int getItemSize() const;
    /// Sets the number of elements; only the count changes, the dimensions stay.
    void setItemsCount(unsigned int count);
    /// The number of elements.
    unsigned int getItemCount();
    /// Two dimensions: the count becomes d1 × d2; dimension three is left as it was.
    void setDimension(unsigned int d1, unsigned int d2);
    /// Three dimensions: the count becomes d1 × d2 × d3.
    void setDimension(unsigned int d1, unsigned int d2, unsigned int d3);
    /// Item size × item count, in bytes.
    unsigned int getTotalSize() const;
    /// 0 while the byte copy holds the values, 1 while the SNMP data does.
    unsigned int getMode() const;
    /// The item's bytes; element e begins at byte e × item size.
    const QByteArray &getLocalCopy() const;
    /// The item's own variables, by full OID.
    const QHash<QString, QVariant> &getSnmpData() const;

    /**
     * @name Element access in the local copy
     * Bit numbers above 7 run on into the element's following bytes; integers
     * are little-endian. Reads past the copy give 0 or false.
     */
    ///@{
    /// A bit of an element; false past the copy.
    bool getBit(unsigned int element, unsigned char bit);
    /// A bit of element (i, j).
    bool getBit(unsigned int i, unsigned int j, unsigned char bit);
    /// A bit of element (i, j, k).
    bool getBit(unsigned int i, unsigned int j, unsigned int k, unsigned char bit);
    /// Sets or clears a bit; never grows the copy: a bit past its end is not written.
    void setBit(unsigned int element, unsigned char bit, bool value);
    /// setBit() of element (i, j).
    void setBit(unsigned int i, unsigned int j, unsigned char bit, bool value);
    /// setBit() of element (i, j, k).
    void setBit(unsigned int i, unsigned int j, unsigned int k, unsigned char bit, bool value);
    /// @p count bits from bit @p first of an element; at most 8 bytes are read, count 0 gives 0.
    unsigned long long getBits(unsigned int element, unsigned char first, unsigned char count);
    /// getBits() of element (i, j).
    unsigned long long getBits(unsigned int i, unsigned int j, unsigned char first, unsigned char count);
    /// getBits() of element (i, j, k).
    unsigned long long getBits(
        unsigned int i, unsigned int j, unsigned int k, unsigned char first, unsigned char count);
    /**
     * Writes @p value into @p count bits from bit @p first of an element.
     *
     * The value is not masked to the field: callers pass values that fit.
     * Grows the copy, zero-filled, when the field lies past its end (up to
     * #maxCopySize bytes; a field beyond that is not written).
     */
    void setBits(unsigned int element, unsigned char first, unsigned char count, unsigned long long value);
    /// setBits() of element (i, j).
    void setBits(
        unsigned int i, unsigned int j, unsigned char first, unsigned char count, unsigned long long value);
    /// setBits() of element (i, j, k).
    void setBits(unsigned int i, unsigned int j, unsigned int k, unsigned char first, unsigned char count,
        unsigned long long value);
    /// The little-endian integer of @p count bytes (up to 8) from byte @p offset of an element; missing bytes
    /// read 0.
    unsigned long long getInteger(unsigned int element, unsigned char offset, unsigned char count);
    /// getInteger() of element (i, j).
    unsigned long long getInteger(unsigned int i, unsigned int j, unsigned char offset, unsigned char count);
    /// getInteger() of element (i, j, k).
    unsigned long long getInteger(
        unsigned int i, unsigned int j, unsigned int k, unsigned char offset, unsigned char count);
    /// Writes a little-endian integer of @p count bytes; grows the copy like setBits(), counts above 8 write
    /// zero bytes.
    void setInteger(
        unsigned int element, unsigned char offset, unsigned char count, unsigned long long value);
    /// setInteger() of element (i, j).
    void setInteger(
        unsigned int i, unsigned int j, unsigned char offset, unsigned char count, unsigned long long value);
    /// setInteger() of element (i, j, k).
    void setInteger(unsigned int i, unsigned int j, unsigned int k, unsigned char offset, unsigned char count,
        unsigned long long value);
    ///@}

    /// The @p count bits of @p data from bit @p position; count 0 gives 0.
    static unsigned long long getBitsFromData(
        unsigned char position, unsigned char count, unsigned long long data);
    /// @p data with its @p count bits from @p position replaced by the low bits of @p value.
    static unsigned long long setBitsToData(
        unsigned char position, unsigned char count, unsigned long long data, unsigned long long value);

    /// The copy as upper-case hex bytes separated by blanks, e.g. "0A FF 01"; empty for an empty copy.
    QString getPrettyLocalCopy() const;

    /**
     * @name SNMP values by OID suffix
     * S is the SNMP start address; absent values are invalid (0 in the
     * bit-field forms, which take the value as an unsigned 32-bit number).
     * Setters only update a variable the unit has delivered; setValueHard()
     * also inserts it.
     */
    ///@{
    /// The value of S.0.
    QVariant getValue();
    /// The value of S.@p suffix; S itself for an empty suffix.
    QVariant getValue(QString suffix);
    /// The value of S.@p suffix.(@p index + 1): table rows count from 1.
    QVariant getValue(QString suffix, int index);
    /// The value of S.@p suffix.@p index, for tables whose rows count from 0.
    QVariant getValueFromZero(QString suffix, int index);
    /// The value of S.(@p index + 1).
    QVariant getValueNonSufix(int index);

    /// Updates S.0 if the unit delivered it.
    void setValue(QVariant value);
    /// Updates S.@p suffix if the unit delivered it.
    void setValue(QString suffix, QVariant value);
    /// Updates S.@p suffix.(@p index + 1) if the unit delivered it.
    void setValue(QString suffix, int index, QVariant value);
    /// Sets S.@p suffix.(@p index + 1), inserting it when absent.
    void setValueHard(QString suffix, int index, QVariant value);
    /// Updates S.(@p index + 1) if the unit delivered it.
    void setValueNonSufix(int index, QVariant value);

    /// @p count bits from bit @p first of S.0.
    unsigned long long getValue(unsigned char first, unsigned char count);
    /// @p count bits from bit @p first of S.@p suffix.
    unsigned long long getValue(QString suffix, unsigned char first, unsigned char count);
    /// @p count bits from bit @p first of S.@p suffix.(@p index + 1).
    unsigned long long getValue(QString suffix, int index, unsigned char first, unsigned char count);
    /// @p count bits from bit @p first of S.@p suffix.@p index.
    unsigned long long getValueFromZero(QString suffix, int index, unsigned char first, unsigned char count);
    /// @p count bits from bit @p first of S.(@p index + 1).
    unsigned long long getValueNonSufix(int index, unsigned char first, unsigned char count);

    /// Writes a bit field of S.0; unlike setBits(), the value is masked to the field.
    void setValue(unsigned long long value, unsigned char first, unsigned char count);
    /// Writes a bit field of S.@p suffix, masked to the field.
    void setValue(QString suffix, unsigned long long value, unsigned char first, unsigned char count);
    /// Writes a bit field of S.@p suffix.(@p index + 1), masked to the field.
    void setValue(
        QString suffix, int index, unsigned long long value, unsigned char first, unsigned char count);
    /// Writes a bit field of S.(@p index + 1), masked to the field.
    void setValueNonSufix(int index, unsigned long long value, unsigned char first, unsigned char count);
    ///@}

protected:
    QByteArray localCopy; ///< See getLocalCopy().
    unsigned int startAddress = 0; ///< See getStartAddress().
    unsigned int itemSize = 0; ///< See getItemSize().
    unsigned int itemsCount = 0; ///< See getItemCount().
    unsigned int dimOne = 0; ///< First extent; not used in addressing.
    unsigned int dimTwo = 0; ///< Second extent.
    unsigned int dimThree = 0; ///< Third extent.
    QHash<QString, QVariant> snmpData; ///< See getSnmpData().
    unsigned int mode = 0; ///< See getMode().
    QString snmpStartAddress; ///< See getSnmpStartAddress().
    QString dimOneJson = QStringLiteral("dimOneJson"); ///< JSON key of the first extent.
    QString dimTwoJson = QStringLiteral("dimTwoJson"); ///< JSON key of the second extent.
    QString dimThreeJson = QStringLiteral("dimThreeJson"); ///< JSON key of the third extent.

private:
    QString oidOf(const QString &suffix) const;
    QString oidOf(const QString &suffix, qint64 row) const;
    void updateValue(const QString &oid, const QVariant &value);
    unsigned long long fieldOf(const QString &oid, unsigned char first, unsigned char count) const;
    void updateField(const QString &oid, unsigned long long value, unsigned char first, unsigned char count);
};

#endif // BASERAWTYPE_H
