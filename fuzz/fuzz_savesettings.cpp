// Device settings files of any content, read from disk as a host reads them;
// whatever reads must save and read back unchanged.

#include "fuzzinput.h"

#include <storage/devicesettingsex.h>
#include <storage/savesettings.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>

namespace {

QTemporaryDir *folder = nullptr;

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication *app = new QCoreApplication(*argc, *argv);
    Q_UNUSED(app)
    static QTemporaryDir dir;
    folder = &dir;
    // Models a host registers before it reads files, old names among them.
    SaveSettings::deviceCodes.insert(7, QStringLiteral("Vantor-RT-T20"));
    SaveSettings::deviceCodes.insert(3, QStringLiteral("Vantor-QX10"));
    SaveSettings::deviceCodes.insert(12, QStringLiteral("Vantor-QX10"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = folder->filePath(QStringLiteral("input.dvsf"));
    const QString copy = folder->filePath(QStringLiteral("copy.dvsf"));
    if (!writeFile(path, QByteArray(reinterpret_cast<const char *>(data), int(size))))
        return 0;

    DeviceSettingsEx settings;
    settings.param32 = 0x5A5A5A5A;
    FUZZ_CHECK(SaveSettings::read(settings, path));
    const bool corrupted = settings.isCorrupted();
    FUZZ_CHECK(
        corrupted == (settings.hash != QCryptographicHash::hash(settings.data, QCryptographicHash::Sha256)));

    // A second read of the same bytes gives the same record.
    DeviceSettingsEx again;
    again.param32 = 0x5A5A5A5A;
    FUZZ_CHECK(SaveSettings::read(again, path));
    FUZZ_CHECK(settings == again);

    // Saving what was read and reading it back changes nothing but the digest.
    DeviceSettingsEx saved = settings;
    FUZZ_CHECK(SaveSettings::save(saved, copy));
    FUZZ_CHECK(!saved.isCorrupted());
    DeviceSettingsEx back;
    FUZZ_CHECK(SaveSettings::read(back, copy));
    FUZZ_CHECK(saved == back);
    return 0;
}
