#ifndef U16ARRAY_H
#define U16ARRAY_H

#include "memory/baserawtype.h"
#include "muxcore_export.h"

/**
 * An array of 16-bit little-endian words on the byte copy only.
 *
 * The owner sets the count or the dimensions. Indices are single bytes:
 * elements past 255 are reached through getInteger() and setInteger().
 */
class MUXCORE_EXPORT U16Array : public BaseRawType
{
public:
    /// Item size 2; the count is left to the owner.
    U16Array();
    /// Frees the item.
    ~U16Array() override;

    /// Writes element @p index; grows the copy when it lies past its end.
    void set(unsigned char index, unsigned short value);
    /// Element @p index; 0 past the end of the copy.
    unsigned short get(unsigned char index);
};

#endif // U16ARRAY_H
