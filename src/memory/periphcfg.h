#ifndef PERIPHCFG_H
#define PERIPHCFG_H

#include "muxcore_export.h"

#include <QByteArray>

// Reads and writes the configuration block of one line board in place, in a
// memory image owned elsewhere. Positions are block offsets from the start
// address; multi-byte numbers are little-endian. Nothing here reads or
// writes outside the image: out-of-range reads give 0 and such writes are
// dropped.
class MUXCORE_EXPORT PeriphCfg
{
public:
    // How the board frames its E1 line; stored in the board mode byte as is.
    enum BoardMode : unsigned char {
        BM_OFF = 0,
        BM_UNFRAMED = 1,
        BM_PCM31 = 2,
        BM_PCM31_CRC4 = 3,
        BM_PCM30 = 4,
        BM_PCM30_CRC4 = 5
    };

    PeriphCfg();

    // The image is not owned; it must outlive its use here.
    void setByteArray(QByteArray *image);
    void setStartAddress(unsigned int address);

    void boardMode(BoardMode mode);
    BoardMode boardMode();
    void firstTimeSlot(unsigned char slot);
    unsigned char firstTimeSlot();
    void lastTimeSlot(unsigned char slot);
    unsigned char lastTimeSlot();

    // Element index of min(size, 8) bytes from block offset base.
    unsigned long long getArrayItem(unsigned char base, unsigned char index, unsigned char size);
    void setArrayItem(unsigned char base, unsigned char index, unsigned char size, unsigned long long value);
    // Element (row, column) of a rows x columns array stored row by row.
    unsigned long long getArrayItem(unsigned char base, unsigned char rows, unsigned char columns,
        unsigned char row, unsigned char column, unsigned char size);
    void setArrayItem(unsigned char base, unsigned char rows, unsigned char columns, unsigned char row,
        unsigned char column, unsigned char size, unsigned long long value);

    // The image position of a block offset.
    unsigned int toGlobalAddres(unsigned int offset);

    static unsigned long long setBit(unsigned long long data, unsigned char bit, bool value);
    static bool getBit(unsigned long long data, unsigned char bit);
    static unsigned long long getBits(unsigned long long data, unsigned char position, unsigned char count);
    // The value is not masked to the field: callers pass values that fit.
    static unsigned long long setBits(
        unsigned long long data, unsigned char position, unsigned char count, unsigned long long value);

private:
    unsigned char byteAt(unsigned char offset) const;
    void setByteAt(unsigned char offset, unsigned char value);
    unsigned long long read(qint64 position, unsigned int count) const;
    void write(qint64 position, unsigned int count, unsigned long long value);

    QByteArray *image = nullptr;
    unsigned int startAddress = 0;
    unsigned char boardModeOffset = 0;
    unsigned char firstTimeSlotOffset = 130;
    unsigned char lastTimeSlotOffset = 131;
};

#endif // PERIPHCFG_H
