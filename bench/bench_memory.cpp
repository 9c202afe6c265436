// Memory image exchange: a 64 KiB image through a map of 1,000 items, set
// against one memcpy of the same bytes.
#include <memory/memorymap.h>
#include <memory/u8array.h>

#include <benchmark/benchmark.h>

#include <QByteArray>

#include <cstring>

namespace {

constexpr int imageSize = 64 * 1024;
constexpr int itemCount = 1000;

QByteArray patternImage()
{
    QByteArray image(imageSize, Qt::Uninitialized);
    for (int i = 0; i < imageSize; ++i)
        image[i] = char((i * 131 + 7) & 0xFF);
    return image;
}

// Items of 65 or 66 bytes side by side, covering the image without a gap.
void fillImageMap(MemoryMap &map)
{
    for (int i = 0; i < itemCount; ++i) {
        const unsigned int begin = unsigned(qint64(i) * imageSize / itemCount);
        const unsigned int end = unsigned(qint64(i + 1) * imageSize / itemCount);
        auto *item = new U8Array;
        item->setStartAddress(begin);
        item->setItemsCount(end - begin);
        map.addItem(QStringLiteral("item%1").arg(i), item);
    }
}

void BM_ImageLoad(benchmark::State &state)
{
    MemoryMap map;
    fillImageMap(map);
    QByteArray image = patternImage();
    for (auto _ : state) {
        const bool ok = map.loadData(&image);
        benchmark::DoNotOptimize(ok);
    }
    if (!map.loadData(&image))
        state.SkipWithError("loadData refused the image");
}

void BM_ImageSave(benchmark::State &state)
{
    MemoryMap map;
    fillImageMap(map);
    const QByteArray source = patternImage();
    QByteArray image = source;
    map.loadData(&image);
    QByteArray target(imageSize, '\0');
    for (auto _ : state) {
        const bool ok = map.saveData(&target);
        benchmark::DoNotOptimize(ok);
        benchmark::ClobberMemory();
    }
    if (target != source)
        state.SkipWithError("saveData did not give the image back");
}

void BM_ImageMemcpy(benchmark::State &state)
{
    const QByteArray source = patternImage();
    QByteArray target(imageSize, '\0');
    char *data = target.data();
    for (auto _ : state) {
        std::memcpy(data, source.constData(), imageSize);
        benchmark::DoNotOptimize(data);
        benchmark::ClobberMemory();
    }
}

// The same bytes in the items' pieces: what is left above this is the map's
// own work per item.
void BM_PiecesMemcpy(benchmark::State &state)
{
    const QByteArray source = patternImage();
    QByteArray target(imageSize, '\0');
    char *data = target.data();
    for (auto _ : state) {
        for (int i = 0; i < itemCount; ++i) {
            const int begin = int(qint64(i) * imageSize / itemCount);
            const int end = int(qint64(i + 1) * imageSize / itemCount);
            std::memcpy(data + begin, source.constData() + begin, size_t(end - begin));
            benchmark::ClobberMemory();
        }
        benchmark::DoNotOptimize(data);
    }
}

} // namespace

BENCHMARK(BM_ImageLoad)->Name("memory/loadData_64KiB_1000items")->UseRealTime();
BENCHMARK(BM_ImageSave)->Name("memory/saveData_64KiB_1000items")->UseRealTime();
BENCHMARK(BM_ImageMemcpy)->Name("memory/memcpy_64KiB")->UseRealTime();
BENCHMARK(BM_PiecesMemcpy)->Name("memory/memcpy_1000_pieces")->UseRealTime();
