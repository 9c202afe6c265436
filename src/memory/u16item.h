#ifndef U16ITEM_H
#define U16ITEM_H

#include "memory/baserawtype.h"
#include "muxcore_export.h"

/**
 * A 16-bit little-endian number, on the byte copy in mode 0 and on the SNMP variable S.0 in mode 1.
 *
 * The number is the same in both stores; an absent variable reads as 0.
 */
class MUXCORE_EXPORT U16Item : public BaseRawType
{
public:
    /// Item size 2, count 1.
    U16Item();
    /// Frees the item.
    ~U16Item() override;

    /// Writes get() under BaseRawType::name.
    void serialise(QJsonObject &object) override;
    /// Passes the value under BaseRawType::name, cut to 16 bits, to set(); false, changing nothing, without
    /// that key.
    bool deserialise(const QJsonObject &object) override;
    /// Writes the value into the store of the current mode; over SNMP only a delivered variable changes.
    virtual void set(unsigned short value);
    /// The value from the store of the current mode; 0 in an unknown mode.
    virtual unsigned short get();
};

#endif // U16ITEM_H
