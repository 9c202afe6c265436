#include "storage/devicesettingsex.h"

#include <QCryptographicHash>

bool DeviceSettingsEx::isCorrupted() const
{
    return hash != QCryptographicHash::hash(data, QCryptographicHash::Sha256);
}

bool DeviceSettingsEx::operator==(const DeviceSettingsEx &other) const
{
    return deviceCode == other.deviceCode && deviceName == other.deviceName && param16 == other.param16
        && param32 == other.param32 && hash == other.hash && data == other.data;
}
