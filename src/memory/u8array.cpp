#include "memory/u8array.h"

U8Array::U8Array()
{
    itemSize = 1;
}

U8Array::~U8Array() = default;

void U8Array::set(unsigned char index, unsigned char value)
{
    setInteger(index, 0, static_cast<unsigned char>(itemSize), value);
}

unsigned char U8Array::get(unsigned char index)
{
    return static_cast<unsigned char>(getInteger(index, 0, static_cast<unsigned char>(itemSize)));
}
