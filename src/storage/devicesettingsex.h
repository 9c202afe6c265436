#ifndef DEVICESETTINGSEX_H
#define DEVICESETTINGSEX_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QString>

/**
 * The content of one device settings file: a unit's configuration image with
 * the identity of the model it was taken from.
 *
 * A plain value, copied freely. Written and read by SaveSettings.
 */
struct MUXCORE_EXPORT DeviceSettingsEx
{
    qint16 deviceCode = 0; ///< Numeric model code.
    QString deviceName; ///< Model name, as in SaveSettings::deviceCodes.
    qint16 param16 = 0; ///< Carried for the host, returned unchanged.
    qint32 param32 = 0; ///< Carried for the host, returned unchanged.
    QByteArray hash; ///< SHA-256 digest of data, as stored in the file; SaveSettings::save() sets it.
    QByteArray data; ///< The configuration image.

    /**
     * True when the stored digest does not match the image: the file was
     * damaged or altered and its image must not reach a device.
     */
    bool isCorrupted() const;

    /// Field by field.
    bool operator==(const DeviceSettingsEx &other) const;
    /// Field by field.
    bool operator!=(const DeviceSettingsEx &other) const { return !(*this == other); }
};

#endif // DEVICESETTINGSEX_H
