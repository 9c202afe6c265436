#include "storage/devicesettings.h"

bool DeviceSettings::operator==(const DeviceSettings &other) const
{
    return deviceCode == other.deviceCode && deviceName == other.deviceName && param16 == other.param16
        && data == other.data;
}
