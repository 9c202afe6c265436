#ifndef U16ITEM_H
#define U16ITEM_H

#include "memory/baserawtype.h"
#include "muxcore_export.h"

// A 16-bit little-endian number, the same in both stores.
// Works on the byte copy in mode 0 and on the SNMP variable S.0 in mode 1.
class MUXCORE_EXPORT U16Item : public BaseRawType
{
public:
    U16Item();
    ~U16Item() override;

    // Writes the value under BaseRawType::name.
    void serialise(QJsonObject &object) override;
    // False, changing nothing, when the object has no BaseRawType::name key.
    bool deserialise(const QJsonObject &object) override;
    virtual void set(unsigned short value);
    virtual unsigned short get();
};

#endif // U16ITEM_H
