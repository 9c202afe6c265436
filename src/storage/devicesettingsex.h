#ifndef DEVICESETTINGSEX_H
#define DEVICESETTINGSEX_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QString>

// The content of one device settings file: a unit's configuration image with
// the identity of the model it was taken from. A plain value, copied freely.
struct MUXCORE_EXPORT DeviceSettingsEx
{
    qint16 deviceCode = 0;
    QString deviceName;
    // Carried for the host, returned unchanged.
    qint16 param16 = 0;
    qint32 param32 = 0;
    // SHA-256 digest of data, as stored in the file.
    QByteArray hash;
    QByteArray data;

    // True when the stored digest does not match the image: the file was
    // damaged or altered and its image must not reach a device.
    bool isCorrupted() const;

    bool operator==(const DeviceSettingsEx &other) const;
    bool operator!=(const DeviceSettingsEx &other) const { return !(*this == other); }
};

#endif // DEVICESETTINGSEX_H
