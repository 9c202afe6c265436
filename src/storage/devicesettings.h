#ifndef DEVICESETTINGS_H
#define DEVICESETTINGS_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QString>

// The record of the older settings file generation, which had neither a
// format identifier nor a digest. Kept only so that such files still load.
struct MUXCORE_EXPORT DeviceSettings
{
    qint16 deviceCode = 0;
    QString deviceName;
    qint16 param16 = 0;
    QByteArray data;

    bool operator==(const DeviceSettings &other) const;
    bool operator!=(const DeviceSettings &other) const { return !(*this == other); }
};

#endif // DEVICESETTINGS_H
