#ifndef PERIPHCFG_H
#define PERIPHCFG_H

#include "muxcore_export.h"

#include <QByteArray>

/**
 * Reads and writes the configuration block of one line board in place, in a
 * memory image owned elsewhere.
 *
 * Unlike the memory items it keeps no copy. Positions are block offsets from
 * the start address; multi-byte numbers are little-endian. Nothing here reads
 * or writes outside the image: out-of-range reads give 0 and such writes are
 * dropped. Set the image and the start address first.
 */
class MUXCORE_EXPORT PeriphCfg
{
public:
    /// How the board frames its E1 line; stored in the board mode byte as is.
    enum BoardMode : unsigned char {
        BM_OFF = 0, ///< The line is switched off.
        BM_UNFRAMED = 1, ///< Unframed 2048 kbit/s.
        BM_PCM31 = 2, ///< Framed, 31 time slots (no channel-associated signalling).
        BM_PCM31_CRC4 = 3, ///< Framed, 31 time slots, with CRC-4 multiframe.
        BM_PCM30 = 4, ///< Framed, 30 time slots, time slot 16 carries signalling.
        BM_PCM30_CRC4 = 5 ///< Framed, 30 time slots, with CRC-4 multiframe.
    };

    /// No image, start address 0; first and last time slot at block offsets 130 and 131.
    PeriphCfg();

    /// Sets the image worked on; not owned, it must outlive its use here.
    void setByteArray(QByteArray *image);
    /// Sets the offset of the block within the image.
    void setStartAddress(unsigned int address);

    /// Sets the board mode byte.
    void boardMode(BoardMode mode);
    /// The board mode byte; 0 for an empty image.
    BoardMode boardMode();
    /// Sets the first time slot in use (0 to 31).
    void firstTimeSlot(unsigned char slot);
    /// The first time slot in use.
    unsigned char firstTimeSlot();
    /// Sets the last time slot in use (0 to 31).
    void lastTimeSlot(unsigned char slot);
    /// The last time slot in use.
    unsigned char lastTimeSlot();

    /// Element @p index of an array of min(size, 8)-byte elements from block offset @p base.
    unsigned long long getArrayItem(unsigned char base, unsigned char index, unsigned char size);
    /// Writes element @p index of an array of min(size, 8)-byte elements from block offset @p base.
    void setArrayItem(unsigned char base, unsigned char index, unsigned char size, unsigned long long value);
    /// Element (row, column) of a rows × columns array of @p size-byte elements, stored row by row.
    unsigned long long getArrayItem(unsigned char base, unsigned char rows, unsigned char columns,
        unsigned char row, unsigned char column, unsigned char size);
    /// Writes element (row, column) of a rows × columns array, stored row by row.
    void setArrayItem(unsigned char base, unsigned char rows, unsigned char columns, unsigned char row,
        unsigned char column, unsigned char size, unsigned long long value);

    /// The image position of a block offset: start address + @p offset.
    unsigned int toGlobalAddres(unsigned int offset);

    /// @p data with bit @p bit set or cleared.
    static unsigned long long setBit(unsigned long long data, unsigned char bit, bool value);
    /// Bit @p bit of @p data.
    static bool getBit(unsigned long long data, unsigned char bit);
    /// The @p count bits of @p data from @p position; count 0 gives 0.
    static unsigned long long getBits(unsigned long long data, unsigned char position, unsigned char count);
    /// @p data with @p count bits from @p position replaced; the value is not masked to the field: pass
    /// values that fit.
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
