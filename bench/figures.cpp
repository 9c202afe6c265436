#include "figures.h"

#include <QDir>
#include <QFile>

namespace {
QString workDir;
}

const std::vector<Figure> &figures()
{
    // clang-format off
    static const std::vector<Figure> table = {
        {"1. Memory image", "`loadData`, 64 KiB image through 1,000 items",
         "memory/loadData_64KiB_1000items", "memory/memcpy_64KiB", "`memcpy` of 64 KiB", 1, 1, 4, {}},
        {"1. Memory image", "`loadData`, 64 KiB image through 1,000 items",
         "memory/loadData_64KiB_1000items", "memory/memcpy_1000_pieces", "1,000 `memcpy` calls of the same pieces", 1, 1, 0, {}},
        {"1. Memory image", "`saveData`, 64 KiB image through 1,000 items",
         "memory/saveData_64KiB_1000items", "memory/memcpy_64KiB", "`memcpy` of 64 KiB", 1, 1, 4, {}},
        {"2. SNMP", "`loadData`, 10,000 OIDs into 1,000 items",
         "snmp/loadData_1000items_10000oids", "snmp/copy_10000oids", "deep copy of the 10,000-OID set", 1, 1, 5, {}},
        {"2. SNMP", "`saveData` after one change, 1,000 items",
         "snmp/saveData_after_one_change", "snmp/copy_10000oids", "deep copy of the 10,000-OID set", 1, 1, 1.5, {}},
        {"2. SNMP", "growth: `loadData` per OID, 10,000 OIDs into 1,000 items against 100 items",
         "snmp/loadData_1000items_10000oids", "snmp/loadData_100items_10000oids", "the same set into 100 items", 1, 1, 1.5, {}},
        {"2. SNMP", "growth: `loadData` per OID, 1,000 items, 10,000 OIDs against 1,000",
         "snmp/loadData_1000items_10000oids", "snmp/loadData_1000items_1000oids", "the same at 1,000 OIDs", 10, 1, 2, {}},
        {"3. Map", "adding 10,000 units",
         "map/add_10000", "map/queued_round_trips_10000", "10,000 queued signal round trips", 1, 1, 0, {}},
        {"3. Map", "one scan pass over 10,000 units",
         "map/scan_10000", "map/queued_round_trips_10000", "10,000 queued signal round trips", 1, 1, 3, {}},
        {"3. Map", "removing 10,000 units one by one, newest first (deferred deletions included)",
         "map/remove_10000", "map/queued_round_trips_10000", "10,000 queued signal round trips", 1, 1, 0, {}},
        {"3. Map", "removing 10,000 units one by one, oldest first",
         "map/remove_10000_oldest_first", "map/queued_round_trips_10000", "10,000 queued signal round trips", 1, 1, 0, {}},
        {"3. Map", "linearity in instructions: adding, per unit, 10,000 against 1,000",
         "map/instructions_10000", "map/instructions_1000", "the same at 1,000 units", 1, 1, 1.1, "add_ir_per_unit"},
        {"3. Map", "linearity in instructions: removing, per unit, 10,000 against 1,000",
         "map/instructions_10000", "map/instructions_1000", "the same at 1,000 units", 1, 1, 1.1, "remove_ir_per_unit"},
        {"3. Map", "linearity in time: adding, per unit, 10,000 against 1,000",
         "map/add_10000", "map/add_1000", "adding 1,000 units", 10, 1, 1.5, {}},
        {"3. Map", "linearity in time: removing newest first, per unit, 10,000 against 1,000",
         "map/remove_10000", "map/remove_1000", "removing 1,000 units", 10, 1, 1.5, {}},
        {"3. Map", "linearity in time: removing oldest first, per unit, 10,000 against 1,000",
         "map/remove_10000_oldest_first", "map/remove_1000_oldest_first", "removing 1,000 units", 10, 1, 1.5, {}},
        {"4. Topology", "rendering 1,000 front panels into 1920 x 1080",
         "topology/render_1000_panels", "topology/render_1000_rectangles", "the same scene of rectangle items", 1, 1, 3, {}},
        {"4. Topology", "one blink tick with its repaint, 1,000 panels",
         "topology/blink_tick_1000_panels", "topology/blink_tick_1000_rectangles", "a pen change and repaint of the rectangle scene", 1, 1, 3, {}},
        {"4. Topology", "no parsing in a tick: descriptions with 200 extra entries",
         "topology/blink_tick_1000_panels_long_descriptions", "topology/blink_tick_1000_panels", "the tick with plain descriptions", 1, 1, 1.2, {}},
        {"5. Files", "`SaveSettings::save` + `read`, 16 MiB image",
         "files/save_and_read_16MiB", "files/sha256_16MiB", "SHA-256 of 16 MiB", 1, 1, 1.3, {}},
        {"5. Files", "`SaveSettings::save` + `read`, 16 MiB image",
         "files/save_and_read_16MiB", "files/sha256_write_read_16MiB", "SHA-256 + a plain safe write and read of the bytes", 1, 1, 1.1, {}},
        {"5. Files", "`SaveSettings::save` alone",
         "files/save_16MiB", "files/sha256_16MiB", "SHA-256 of 16 MiB", 1, 1, 0, {}},
        {"5. Files", "`SaveSettings::read` alone",
         "files/read_16MiB", "files/sha256_16MiB", "SHA-256 of 16 MiB", 1, 1, 0, {}},
        {"5. Files", "`FileSystemCheck` snapshot of a 256 MiB tree (16 files)",
         "files/snapshot_256MiB", "files/md5sum_256MiB", "`md5sum` over the same files", 1, 1, 1.3, {}},
        {"5. Files", "snapshot peak memory (KiB), 256 MiB tree against 16 MiB tree",
         "files/snapshot_peak_256MiB", "files/snapshot_peak_16MiB", "the same files 16 times smaller", 1, 1, 1.1, "peak_kib"},
        {"6. SNMP over loopback", "walk of 10,000 OIDs from `demoagent` with `SnmpClient` (GETBULK of 20)",
         "wires/client_walk_10000oids", "wires/snmpbulkwalk_10000oids", "`snmpbulkwalk -Cr20` of the same subtree", 1, 1, 1.5, {}},
        {"6. SNMP over loopback", "one scan pass over 200 SNMP units of `demoagent`, one client each",
         "wires/scan_pass_200units", "wires/200_polls_of_one_unit", "200 polls of one unit with one client", 1, 1, 0, {}},
    };
    // clang-format on
    return table;
}

QString benchWorkDir()
{
    return workDir.isEmpty() ? QDir::tempPath() : workDir;
}

void setBenchWorkDir(const QString &path)
{
    workDir = path;
    if (!workDir.isEmpty())
        QDir().mkpath(workDir);
}

long peakResidentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLong();
    }
    return 0;
}
