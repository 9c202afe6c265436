#ifndef SAVESETTINGS_H
#define SAVESETTINGS_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QMap>
#include <QString>

struct DeviceSettingsEx;

/**
 * Writes and reads device settings files ("*.dvsf"), which carry a
 * DeviceSettingsEx.
 *
 * All operations are static. The byte layout never changes: people keep
 * these files for years, and hosts of every release exchange them. Numbers
 * in the file are big-endian.
 */
class MUXCORE_EXPORT SaveSettings
{
public:
    /// Not needed: every operation is static.
    SaveSettings() = default;

    /**
     * Writes a settings file.
     *
     * Digests the record's data into its hash (the caller's record is updated
     * too), then replaces the file in one step: a failure part-way leaves the
     * earlier file as it was. @return false when the file could not be written.
     */
    static bool save(DeviceSettingsEx &settings, QString path);
    /**
     * Reads a settings file of either generation.
     *
     * @return false, with the record untouched, when the file is missing, not
     * a regular file, not named "*.dvsf" or unreadable; true otherwise.
     * Damaged content is reported by DeviceSettingsEx::isCorrupted(): check it
     * before the image goes to a unit.
     */
    static bool read(DeviceSettingsEx &settings, QString path);

    /// The four bytes that open a current-generation file ("AAAA").
    static QByteArray exFileFormatIdentifier;
    /// Model code to current model name; the host fills it before reading, so
    /// that files of the older generation get the code of their model.
    static QMap<short, QString> deviceCodes;
    /// Older model names to current ones, applied to every file read.
    static QMap<QString, QString> oldVersionNames;
};

#endif // SAVESETTINGS_H
