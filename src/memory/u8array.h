#ifndef U8ARRAY_H
#define U8ARRAY_H

#include "memory/baserawtype.h"
#include "muxcore_export.h"

/**
 * An array of bytes on the byte copy only.
 *
 * The owner sets the count or the dimensions. Indices are single bytes:
 * elements past 255 are reached through getInteger() and setInteger().
 */
class MUXCORE_EXPORT U8Array : public BaseRawType
{
public:
    /// Item size 1; the count is left to the owner.
    U8Array();
    /// Frees the item.
    ~U8Array() override;

    /// Writes element @p index; grows the copy when it lies past its end.
    void set(unsigned char index, unsigned char value);
    /// Element @p index; 0 past the end of the copy.
    unsigned char get(unsigned char index);
};

#endif // U8ARRAY_H
