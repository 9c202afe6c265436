#ifndef U16ARRAY_H
#define U16ARRAY_H

#include "memory/baserawtype.h"
#include "muxcore_export.h"

// An array of 16-bit little-endian words on the byte copy. The owner sets the count or the
// dimensions; elements past 255 are reached through getInteger/setInteger.
class MUXCORE_EXPORT U16Array : public BaseRawType
{
public:
    U16Array();
    ~U16Array() override;

    // Grows the copy when the element lies past its end.
    void set(unsigned char index, unsigned short value);
    // 0 past the end of the copy.
    unsigned short get(unsigned char index);
};

#endif // U16ARRAY_H
