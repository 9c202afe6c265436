#ifndef U8ARRAY_H
#define U8ARRAY_H

#include "memory/baserawtype.h"
#include "muxcore_export.h"

// An array of bytes on the byte copy. The owner sets the count or the
// dimensions; elements past 255 are reached through getInteger/setInteger.
class MUXCORE_EXPORT U8Array : public BaseRawType
{
public:
    U8Array();
    ~U8Array() override;

    // Grows the copy when the element lies past its end.
    void set(unsigned char index, unsigned char value);
    // 0 past the end of the copy.
    unsigned char get(unsigned char index);
};

#endif // U8ARRAY_H
