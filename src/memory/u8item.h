#ifndef U8ITEM_H
#define U8ITEM_H

#include "memory/baserawtype.h"
#include "muxcore_export.h"

/**
 * A one-byte number, on the byte copy in mode 0 and on the SNMP variable S.0 in mode 1.
 *
 * Over SNMP the unit counts its codes from 1 where the memory counts from 0,
 * so the SNMP value is kept one higher; an absent variable therefore reads as 255.
 */
class MUXCORE_EXPORT U8Item : public BaseRawType
{
public:
    /// Item size 1, count 1.
    U8Item();
    /// Frees the item.
    ~U8Item() override;

    /// Writes get() under BaseRawType::name.
    void serialise(QJsonObject &object) override;
    /// Passes the value under BaseRawType::name, cut to 8 bits, to set(); false, changing nothing, without
    /// that key.
    bool deserialise(const QJsonObject &object) override;
    /// Writes the value into the store of the current mode; over SNMP only a delivered variable changes.
    virtual void set(unsigned char value);
    /// The value from the store of the current mode; 0 in an unknown mode.
    virtual unsigned char get();
};

#endif // U8ITEM_H
