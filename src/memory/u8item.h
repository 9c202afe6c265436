#ifndef U8ITEM_H
#define U8ITEM_H

#include "memory/baserawtype.h"
#include "muxcore_export.h"

// A one-byte number. Over SNMP the unit counts its codes from 1 where the memory counts from 0, so the SNMP
// value is kept one higher. Works on the byte copy in mode 0 and on the SNMP variable S.0 in mode 1.
class MUXCORE_EXPORT U8Item : public BaseRawType
{
public:
    U8Item();
    ~U8Item() override;

    // Writes the value under BaseRawType::name.
    void serialise(QJsonObject &object) override;
    // False, changing nothing, when the object has no BaseRawType::name key.
    bool deserialise(const QJsonObject &object) override;
    virtual void set(unsigned char value);
    virtual unsigned char get();
};

#endif // U8ITEM_H
