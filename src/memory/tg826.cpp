#include "memory/tg826.h"

#include <QtGlobal>

namespace {

// IANA's private-enterprise number reserved for documentation (RFC 5612).
constexpr unsigned int enterpriseNumber = 32473;

const char *const familySuffixes[10]
    = {"1.2", "1.3", "1.4", "1.5", "1.6", "1.7", "1.8", "1.9", "1.10", "1.11"};

} // namespace

Tg826::Tg826()
{
    for (int k = 0; k < 10; ++k)
        familyOids[k] = QString::fromLatin1(familySuffixes[k]);
    itemSize = 160;
    itemsCount = 1;
    startAddress = 0;
    const QString enterprise = QStringLiteral(".1.3.6.1.4.1.") + QString::number(enterpriseNumber);
    snmpStartAddress = QStringLiteral("%1.2.21.1.3.2.2").arg(enterprise);
}

Tg826::~Tg826() = default;

void Tg826::setPortCount(unsigned char count)
{
    const unsigned int familySize = unsigned(count) * counterSize;
    const unsigned int families = qBound(1u, unsigned(familyCount), 10u);
    if (familySize * (families - 1u) > 255u)
        return;
    portCount = count;
    for (unsigned int k = 0; k < 10; ++k)
        familyOffsets[k] = static_cast<unsigned char>(k < families ? k * familySize : 0);
    itemSize = familySize * familyCount;
}

unsigned int Tg826::getArrayItem(unsigned char offset, unsigned char port)
{
    // The check is on the port number, not its byte position; bytes past
    // the end of the copy read as 0.
    if (localCopy.size() <= int(offset) + port)
        return 0;
    const int first = int(offset) + int(port) * counterSize;
    unsigned int value = 0;
    for (int k = 0; k < counterSize && k < 4 && first + k < localCopy.size(); ++k)
        value |= unsigned(static_cast<unsigned char>(localCopy.at(first + k))) << (8 * k);
    return value;
}

unsigned int Tg826::counter(int family, unsigned char port)
{
    if (port >= portCount)
        return 0;
    if (mode == 0)
        return getArrayItem(familyOffsets[family], port);
    if (mode == 1)
        return getValue(familyOids[family], int(port)).toUInt();
    return 0;
}

unsigned int Tg826::EBCrc4(unsigned char port)
{
    return counter(0, port);
}

unsigned int Tg826::ESCrc4(unsigned char port)
{
    return counter(1, port);
}

unsigned int Tg826::SESCrc4(unsigned char port)
{
    return counter(2, port);
}

unsigned int Tg826::AvTCrc4(unsigned char port)
{
    return counter(3, port);
}

unsigned int Tg826::UnavTCrc4(unsigned char port)
{
    return counter(4, port);
}

unsigned int Tg826::EBEbit(unsigned char port)
{
    return counter(5, port);
}

unsigned int Tg826::ESEbit(unsigned char port)
{
    return counter(6, port);
}

unsigned int Tg826::SESEbit(unsigned char port)
{
    return counter(7, port);
}

unsigned int Tg826::AvTEbit(unsigned char port)
{
    return counter(8, port);
}

unsigned int Tg826::UnavTEbit(unsigned char port)
{
    return counter(9, port);
}
