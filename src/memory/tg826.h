#ifndef TG826_H
#define TG826_H

#include "memory/baserawtype.h"
#include "muxcore_export.h"

#include <QString>

/**
 * The ITU-T G.826 error-performance counters of a unit's E1 ports.
 *
 * Per port ten 32-bit counters, five on CRC-4 and five on the E-bit: errored
 * blocks (EB), errored seconds (ES), severely errored seconds (SES),
 * available time (AvT) and unavailable time (UnavT). In memory each family
 * holds the counters of all ports in turn, little-endian; over SNMP each
 * family is a table column (suffixes 1.2 to 1.11) under the item's SNMP start
 * address, rows counted from 1.
 *
 * The default SNMP start address lies under the enterprise number reserved
 * for documentation; a host sets its vendor's with setStartAddress(QString).
 * Every getter returns 0 for a port at or past the port count.
 */
class MUXCORE_EXPORT Tg826 : public BaseRawType
{
public:
    /// Four ports: item size 160, count 1.
    Tg826();
    /// Frees the item.
    ~Tg826() override;

    /**
     * Re-lays the families for @p count ports: item size becomes 40 × count.
     *
     * Family offsets are single bytes, so a count whose layout would not fit
     * them (over 7 ports) is refused.
     */
    void setPortCount(unsigned char count);
    /// The counter of a port in the family at byte @p offset, from the byte copy; 0 past its end.
    unsigned int getArrayItem(unsigned char offset, unsigned char port);

    unsigned int EBCrc4(unsigned char port); ///< Errored blocks on CRC-4 (SNMP suffix 1.2).
    unsigned int ESCrc4(unsigned char port); ///< Errored seconds on CRC-4 (1.3).
    unsigned int SESCrc4(unsigned char port); ///< Severely errored seconds on CRC-4 (1.4).
    unsigned int AvTCrc4(unsigned char port); ///< Available time in seconds on CRC-4 (1.5).
    unsigned int UnavTCrc4(unsigned char port); ///< Unavailable time in seconds on CRC-4 (1.6).
    unsigned int EBEbit(unsigned char port); ///< Errored blocks on the E-bit (1.7).
    unsigned int ESEbit(unsigned char port); ///< Errored seconds on the E-bit (1.8).
    unsigned int SESEbit(unsigned char port); ///< Severely errored seconds on the E-bit (1.9).
    unsigned int AvTEbit(unsigned char port); ///< Available time in seconds on the E-bit (1.10).
    unsigned int UnavTEbit(unsigned char port); ///< Unavailable time in seconds on the E-bit (1.11).

protected:
    unsigned char portCount = 4; ///< Number of E1 ports.
    unsigned char counterSize = 4; ///< Bytes per counter.
    unsigned char familyCount = 10; ///< Number of counter families.
    unsigned char familyOffsets[10]
        = {0, 16, 32, 48, 64, 80, 96, 112, 128, 144}; ///< Byte offset of each family.
    QString familyOids[10]; ///< OID suffix of each family's table column.

private:
    unsigned int counter(int family, unsigned char port);
};

#endif // TG826_H
