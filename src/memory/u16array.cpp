#include "memory/u16array.h"

U16Array::U16Array()
{
    itemSize = 2;
}

U16Array::~U16Array() = default;

void U16Array::set(unsigned char index, unsigned short value)
{
    setInteger(index, 0, static_cast<unsigned char>(itemSize), value);
}

unsigned short U16Array::get(unsigned char index)
{
    return static_cast<unsigned short>(getInteger(index, 0, static_cast<unsigned char>(itemSize)));
}
