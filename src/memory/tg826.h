#ifndef TG826_H
#define TG826_H

#include "memory/baserawtype.h"
#include "muxcore_export.h"

#include <QString>

// The ITU-T G.826 error-performance counters of a unit's E1 ports: per port
// ten 32-bit counters, five on CRC-4 and five on the E-bit. In memory each
// family holds the counters of all ports in turn; over SNMP each family is a
// table column under the item's SNMP start address, rows counted from 1.
// The default SNMP start address lies under the enterprise number reserved
// for documentation; a host sets its vendor's with setStartAddress(QString).
class MUXCORE_EXPORT Tg826 : public BaseRawType
{
public:
    Tg826();
    ~Tg826() override;

    // Re-lays the families for count ports. Family offsets are single bytes,
    // so a count whose layout would not fit them (over 7 ports) is refused.
    void setPortCount(unsigned char count);
    // The counter of a port in the family at offset, from the byte copy.
    unsigned int getArrayItem(unsigned char offset, unsigned char port);

    unsigned int EBCrc4(unsigned char port);
    unsigned int ESCrc4(unsigned char port);
    unsigned int SESCrc4(unsigned char port);
    unsigned int AvTCrc4(unsigned char port);
    unsigned int UnavTCrc4(unsigned char port);
    unsigned int EBEbit(unsigned char port);
    unsigned int ESEbit(unsigned char port);
    unsigned int SESEbit(unsigned char port);
    unsigned int AvTEbit(unsigned char port);
    unsigned int UnavTEbit(unsigned char port);

protected:
    unsigned char portCount = 4;
    unsigned char counterSize = 4;
    unsigned char familyCount = 10;
    unsigned char familyOffsets[10] = {0, 16, 32, 48, 64, 80, 96, 112, 128, 144};
    QString familyOids[10];

private:
    unsigned int counter(int family, unsigned char port);
};

#endif // TG826_H
