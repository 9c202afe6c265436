#include "memory/periphcfg.h"

#include "memory/baserawtype.h"

#include <QtGlobal>

PeriphCfg::PeriphCfg() = default;

void PeriphCfg::setByteArray(QByteArray *image)
{
    this->image = image;
}

void PeriphCfg::setStartAddress(unsigned int address)
{
    startAddress = address;
}

unsigned long long PeriphCfg::read(qint64 position, unsigned int count) const
{
    if (!image || position < 0)
        return 0;
    unsigned long long value = 0;
    for (unsigned int k = 0; k < count && k < 8 && position + k < image->size(); ++k)
        value |= static_cast<unsigned long long>(static_cast<unsigned char>(image->at(int(position + k))))
            << (8 * k);
    return value;
}

void PeriphCfg::write(qint64 position, unsigned int count, unsigned long long value)
{
    if (!image || position < 0)
        return;
    // The image belongs to someone else: never grow it.
    for (unsigned int k = 0; k < count && k < 8 && position + k < image->size(); ++k)
        (*image)[int(position + k)] = char((value >> (8 * k)) & 0xFF);
}

unsigned char PeriphCfg::byteAt(unsigned char offset) const
{
    return static_cast<unsigned char>(read(qint64(startAddress) + offset, 1));
}

void PeriphCfg::setByteAt(unsigned char offset, unsigned char value)
{
    write(qint64(startAddress) + offset, 1, value);
}

void PeriphCfg::boardMode(BoardMode mode)
{
    setByteAt(boardModeOffset, mode);
}

PeriphCfg::BoardMode PeriphCfg::boardMode()
{
    return static_cast<BoardMode>(byteAt(boardModeOffset));
}

void PeriphCfg::firstTimeSlot(unsigned char slot)
{
    setByteAt(firstTimeSlotOffset, slot);
}

unsigned char PeriphCfg::firstTimeSlot()
{
    return byteAt(firstTimeSlotOffset);
}

void PeriphCfg::lastTimeSlot(unsigned char slot)
{
    setByteAt(lastTimeSlotOffset, slot);
}

unsigned char PeriphCfg::lastTimeSlot()
{
    return byteAt(lastTimeSlotOffset);
}

namespace {

unsigned int elementBytes(unsigned char size)
{
    return qMin<unsigned int>(size, 8);
}

} // namespace

// The checks here look at the index and the array's extent only, as device
// models expect; read() and write() keep every byte inside the image.
unsigned long long PeriphCfg::getArrayItem(unsigned char base, unsigned char index, unsigned char size)
{
    const qint64 position = qint64(startAddress) + base;
    if (!image || image->size() <= position + index)
        return 0;
    return read(position + qint64(index) * elementBytes(size), elementBytes(size));
}

void PeriphCfg::setArrayItem(
    unsigned char base, unsigned char index, unsigned char size, unsigned long long value)
{
    const qint64 position = qint64(startAddress) + base;
    if (!image || image->size() <= position + index)
        return;
    write(position + qint64(index) * elementBytes(size), elementBytes(size), value);
}

unsigned long long PeriphCfg::getArrayItem(unsigned char base, unsigned char rows, unsigned char columns,
    unsigned char row, unsigned char column, unsigned char size)
{
    if (!image || image->size() <= qint64(rows) * columns * size + startAddress)
        return 0;
    const qint64 position = qint64(startAddress) + base + (qint64(row) * columns + column) * size;
    return read(position, elementBytes(size));
}

void PeriphCfg::setArrayItem(unsigned char base, unsigned char rows, unsigned char columns, unsigned char row,
    unsigned char column, unsigned char size, unsigned long long value)
{
    if (!image || image->size() <= qint64(rows) * columns * size + startAddress)
        return;
    const qint64 position = qint64(startAddress) + base + (qint64(row) * columns + column) * size;
    write(position, elementBytes(size), value);
}

unsigned int PeriphCfg::toGlobalAddres(unsigned int offset)
{
    return startAddress + offset;
}

unsigned long long PeriphCfg::setBit(unsigned long long data, unsigned char bit, bool value)
{
    if (bit >= 64)
        return data;
    const unsigned long long mask = 1ULL << bit;
    return value ? data | mask : data & ~mask;
}

bool PeriphCfg::getBit(unsigned long long data, unsigned char bit)
{
    return bit < 64 && ((data >> bit) & 1);
}

unsigned long long PeriphCfg::getBits(unsigned long long data, unsigned char position, unsigned char count)
{
    return BaseRawType::getBitsFromData(position, count, data);
}

unsigned long long PeriphCfg::setBits(
    unsigned long long data, unsigned char position, unsigned char count, unsigned long long value)
{
    if (count == 0 || position >= 64)
        return data;
    const unsigned long long mask = count >= 64 ? ~0ULL : (1ULL << count) - 1;
    return (data & ~(mask << position)) | (value << position);
}
