// Settings files, the integrity snapshot, the trap list and SNMP start
// addresses, each used the way a host uses it. Exits 0 when every step
// behaves as the guide says, 1 otherwise.
#include <core/core.h>
#include <memory/memorymap.h>
#include <memory/u16item.h>
#include <memory/u8item.h>
#include <storage/devicesettingsex.h>
#include <storage/filesystemcheck.h>
#include <storage/savesettings.h>
#include <ui/trapvisual.h>

#include <QApplication>
#include <QFile>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

bool expect(bool ok, const char *what)
{
    if (!ok)
        QTextStream(stderr) << "failed: " << what << '\n';
    return ok;
}

bool settingsFiles(const QString &folder)
{
    const QByteArray configImage = QByteArray::fromHex("0102030405060708");
    //! [settings-save]
    DeviceSettingsEx settings;
    settings.deviceCode = 7;
    settings.deviceName = QStringLiteral("TinyMux");
    settings.data = configImage; // for example from MemoryMap::saveData()
    const QString path = folder + QStringLiteral("/site-a.dvsf");
    if (!SaveSettings::save(settings, path))
        return false; // the earlier file, if any, is left as it was
    //! [settings-save]

    //! [settings-read]
    DeviceSettingsEx loaded;
    if (!SaveSettings::read(loaded, path))
        return false; // missing, unreadable or not a settings file
    if (loaded.isCorrupted())
        return false; // damaged or altered: its image must not reach a unit
    //! [settings-read]
    if (!expect(loaded.data == configImage && loaded.deviceName == settings.deviceName, "settings read back"))
        return false;

    QFile file(path); // one byte of the image altered behind the library's back
    file.open(QIODevice::ReadWrite);
    QByteArray bytes = file.readAll();
    bytes[bytes.size() - 1] = char(bytes.at(bytes.size() - 1) ^ 0x01);
    file.seek(0);
    file.write(bytes);
    file.close();
    return expect(SaveSettings::read(loaded, path) && loaded.isCorrupted(), "an altered file is corrupted");
}

bool snapshot(const QString &folder)
{
    QFile firmware(folder + QStringLiteral("/firmware.bin"));
    firmware.open(QIODevice::WriteOnly);
    firmware.write("image");
    firmware.close();

    //! [snapshot]
    FileSystemCheck check;
    check.addIgnoredFileTypes({QStringLiteral("log")});
    check.setPath(folder);
    const QString stored = check.toString(); // keep it where the checked files are not

    FileSystemCheck later;
    later.fromString(stored);
    const QString report = later.compare(folder); // "BAD HASH:<path>" and "NOT EXIST:<path>" lines
    //! [snapshot]
    if (!expect(report.isEmpty(), "an untouched tree is intact"))
        return false;
    firmware.open(QIODevice::Append);
    firmware.write("!");
    firmware.close();
    return expect(later.compare(folder).startsWith(QLatin1String("BAD HASH:")), "a changed file is reported");
}

bool trapList()
{
    //! [traps]
    TrapVisual traps;
    QTableView trapView;
    trapView.setModel(traps.getModel()); // owned by traps
    traps.showColors(true);

    TrapVisualUnit trap; // filled by the host's trap receiver
    trap.identifier = 3;
    trap.deviceName = QStringLiteral("TinyMux 3");
    trap.alarm = Core::ALARM_MAJOR;
    trap.variables.insert(QStringLiteral(".1.3.6.1.6.3.1.1.4.1.0"), QStringLiteral("linkDown"));
    traps.setTrap(trap);
    //! [traps]
    return expect(traps.getModel()->rowCount() == 1, "the trap is listed");
}

bool snmpAddresses()
{
    //! [snmp-addresses]
    // An item takes every variable whose OID contains its start address, so
    // ".1.1" would also take the variables of ".1.10": use arcs of one width.
    MemoryMap status;
    auto *mode = new U8Item;
    mode->setStartAddress(QStringLiteral(".1.3.6.1.4.1.32473.1.11"));
    auto *speed = new U16Item;
    speed->setStartAddress(QStringLiteral(".1.3.6.1.4.1.32473.1.12"));
    status.addItem(QStringLiteral("mode"), mode);
    status.addItem(QStringLiteral("speed"), speed);

    QHash<QString, QVariant> received; // from the host's SNMP session
    received.insert(QStringLiteral(".1.3.6.1.4.1.32473.1.11.0"), 3);
    received.insert(QStringLiteral(".1.3.6.1.4.1.32473.1.12.0"), 2048);
    status.loadData(&received);
    //! [snmp-addresses]
    return expect(mode->get() == 2 && speed->get() == 2048 && mode->getSnmpData().size() == 1,
        "each item takes its own variables");
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QTemporaryDir dir;
    const bool ok
        = dir.isValid() && settingsFiles(dir.path()) && snapshot(dir.path()) && trapList() && snmpAddresses();
    return ok ? 0 : 1;
}
