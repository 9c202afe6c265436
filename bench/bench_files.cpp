// Files: a device settings file of 16 MiB saved and read back, set against
// SHA-256 of the same bytes; a snapshot of a 256 MiB tree, set against md5sum
// over the same files, and its peak memory against that of a 16 MiB tree.
#include "figures.h"

#include <storage/devicesettingsex.h>
#include <storage/filesystemcheck.h>
#include <storage/savesettings.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QStringList>

namespace {

constexpr int settingsSize = 16 * 1024 * 1024;

// Bytes that no compressor or dedup shortcut can make cheap.
QByteArray noise(qint64 size, quint64 seed)
{
    QByteArray bytes(int(size), Qt::Uninitialized);
    quint64 state = seed * 0x9E3779B97F4A7C15ULL + 1;
    char *data = bytes.data();
    for (qint64 i = 0; i + 8 <= size; i += 8) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        memcpy(data + i, &state, 8);
    }
    return bytes;
}

DeviceSettingsEx settingsRecord()
{
    DeviceSettingsEx settings;
    settings.deviceCode = 12;
    settings.deviceName = QStringLiteral("Vantor-QX20");
    settings.param16 = 3;
    settings.param32 = 70000;
    settings.data = noise(settingsSize, 1);
    return settings;
}

QString settingsPath()
{
    return QDir(benchWorkDir()).filePath(QStringLiteral("bench.dvsf"));
}

void BM_SaveAndRead(benchmark::State &state)
{
    DeviceSettingsEx settings = settingsRecord();
    const QString path = settingsPath();
    DeviceSettingsEx back;
    for (auto _ : state) {
        back = DeviceSettingsEx();
        if (!SaveSettings::save(settings, path) || !SaveSettings::read(back, path)) {
            state.SkipWithError("the settings file could not be saved or read");
            break;
        }
    }
    // Checked once, outside the clock: the check is a digest of its own.
    if (back.data != settings.data || back.isCorrupted())
        state.SkipWithError("the settings file did not come back intact");
}

void BM_Save(benchmark::State &state)
{
    DeviceSettingsEx settings = settingsRecord();
    const QString path = settingsPath();
    for (auto _ : state) {
        if (!SaveSettings::save(settings, path)) {
            state.SkipWithError("save failed");
            break;
        }
    }
}

void BM_Read(benchmark::State &state)
{
    DeviceSettingsEx settings = settingsRecord();
    const QString path = settingsPath();
    SaveSettings::save(settings, path);
    for (auto _ : state) {
        DeviceSettingsEx back;
        if (!SaveSettings::read(back, path) || back.data.size() != settingsSize) {
            state.SkipWithError("read failed");
            break;
        }
    }
}

void BM_Sha256(benchmark::State &state)
{
    const QByteArray data = noise(settingsSize, 1);
    for (auto _ : state) {
        const QByteArray digest = QCryptographicHash::hash(data, QCryptographicHash::Sha256);
        benchmark::DoNotOptimize(digest.constData());
    }
}

// What any format holding the image and its digest costs at least: the
// digest, one plain write of the bytes through a safe save, one read back.
void BM_DigestWriteRead(benchmark::State &state)
{
    const QByteArray data = noise(settingsSize, 1);
    const QString path = QDir(benchWorkDir()).filePath(QStringLiteral("plain.bin"));
    for (auto _ : state) {
        const QByteArray digest = QCryptographicHash::hash(data, QCryptographicHash::Sha256);
        QSaveFile out(path);
        if (!out.open(QIODevice::WriteOnly) || out.write(digest) != digest.size()
            || out.write(data) != data.size() || !out.commit()) {
            state.SkipWithError("the plain file could not be written");
            break;
        }
        QFile in(path);
        if (!in.open(QIODevice::ReadOnly) || in.readAll().size() != data.size() + digest.size()) {
            state.SkipWithError("the plain file could not be read");
            break;
        }
    }
}

// Two folders of eight files each: 16 MiB files for the 256 MiB tree, 1 MiB
// files for the 16 MiB one. Kept between runs when already complete.
struct Tree
{
    QString root;
    QStringList files;
};

Tree fileTree(const QString &name, qint64 fileSize)
{
    Tree tree;
    tree.root = QDir(benchWorkDir()).filePath(name);
    for (const QString &folder : {QStringLiteral("a"), QStringLiteral("b")}) {
        const QString dir = QDir(tree.root).filePath(folder);
        QDir().mkpath(dir);
        for (int i = 0; i < 8; ++i) {
            const QString path = QDir(dir).filePath(QStringLiteral("%1.bin").arg(i));
            tree.files << path;
            if (QFileInfo(path).size() == fileSize)
                continue;
            QFile file(path);
            if (file.open(QIODevice::WriteOnly))
                file.write(noise(fileSize, quint64(tree.files.size())));
        }
    }
    return tree;
}

const Tree &largeTree()
{
    static const Tree tree = fileTree(QStringLiteral("tree256"), 16 * 1024 * 1024);
    return tree;
}

const Tree &smallTree()
{
    static const Tree tree = fileTree(QStringLiteral("tree16"), 1024 * 1024);
    return tree;
}

void BM_Snapshot(benchmark::State &state)
{
    const Tree &tree = largeTree();
    for (auto _ : state) {
        FileSystemCheck check;
        FSItem snapshot;
        check.calcFileInfo(QFileInfo(tree.root), &snapshot);
        if (snapshot.children.size() != 2) {
            state.SkipWithError("the snapshot missed the tree");
            break;
        }
    }
}

void BM_Md5sum(benchmark::State &state)
{
    const Tree &tree = largeTree();
    for (auto _ : state) {
        QProcess md5sum;
        md5sum.setStandardOutputFile(QProcess::nullDevice());
        md5sum.start(QStringLiteral("md5sum"), tree.files);
        if (!md5sum.waitForFinished(-1) || md5sum.exitStatus() != QProcess::NormalExit
            || md5sum.exitCode() != 0) {
            state.SkipWithError("md5sum failed");
            break;
        }
    }
}

// Peak memory is taken in a fresh process of this program, so that nothing
// the other benchmarks allocated hides it.
void BM_SnapshotPeakMemory(benchmark::State &state, bool large)
{
    const Tree &tree = large ? largeTree() : smallTree();
    for (auto _ : state) {
        QProcess child;
        child.start(
            QCoreApplication::applicationFilePath(), {QStringLiteral("--snapshot-peak=%1").arg(tree.root)});
        if (!child.waitForFinished(-1) || child.exitCode() != 0) {
            state.SkipWithError("the snapshot process failed");
            break;
        }
        const QList<QByteArray> values = child.readAllStandardOutput().trimmed().split(' ');
        if (values.size() != 2) {
            state.SkipWithError("the snapshot process gave no peak");
            break;
        }
        state.counters["peak_kib"] = values.at(1).toDouble();
        state.counters["growth_kib"] = values.at(1).toDouble() - values.at(0).toDouble();
    }
}

} // namespace

// Entered from main() with --snapshot-peak=PATH: prints the peak resident
// memory before and after one snapshot, in KiB.
int snapshotPeakMain(const QString &path)
{
    const long before = peakResidentKiB();
    FileSystemCheck check;
    FSItem snapshot;
    check.calcFileInfo(QFileInfo(path), &snapshot);
    const long after = peakResidentKiB();
    printf("%ld %ld\n", before, after);
    return snapshot.children.isEmpty() ? 1 : 0;
}

BENCHMARK(BM_SaveAndRead)->Name("files/save_and_read_16MiB")->UseRealTime();
BENCHMARK(BM_Save)->Name("files/save_16MiB")->UseRealTime();
BENCHMARK(BM_Read)->Name("files/read_16MiB")->UseRealTime();
BENCHMARK(BM_Sha256)->Name("files/sha256_16MiB")->UseRealTime();
BENCHMARK(BM_DigestWriteRead)->Name("files/sha256_write_read_16MiB")->UseRealTime();
BENCHMARK(BM_Snapshot)->Name("files/snapshot_256MiB")->UseRealTime()->Iterations(2);
BENCHMARK(BM_Md5sum)->Name("files/md5sum_256MiB")->UseRealTime()->Iterations(2);
BENCHMARK_CAPTURE(BM_SnapshotPeakMemory, large, true)
    ->Name("files/snapshot_peak_256MiB")
    ->UseRealTime()
    ->Iterations(1);
BENCHMARK_CAPTURE(BM_SnapshotPeakMemory, small, false)
    ->Name("files/snapshot_peak_16MiB")
    ->UseRealTime()
    ->Iterations(1);
