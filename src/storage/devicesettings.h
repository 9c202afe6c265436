#ifndef DEVICESETTINGS_H
#define DEVICESETTINGS_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QString>

/**
 * The record of the older settings file generation, which had neither a
 * format identifier nor a digest.
 *
 * Kept only so that such files still load: SaveSettings::read() turns them
 * into a DeviceSettingsEx.
 */
struct MUXCORE_EXPORT DeviceSettings
{
    qint16 deviceCode = 0; ///< Numeric model code.
    QString deviceName; ///< Model name.
    qint16 param16 = 0; ///< Carried for the host.
    QByteArray data; ///< The configuration image.

    /// Field by field.
    bool operator==(const DeviceSettings &other) const;
    /// Field by field.
    bool operator!=(const DeviceSettings &other) const { return !(*this == other); }
};

#endif // DEVICESETTINGS_H
