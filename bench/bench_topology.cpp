// The topology: 1,000 units with realistic front panels rendered into a
// 1920 x 1080 image, and one alarm blink tick, set against the same scene of
// plain rectangle items.
#include <topology/devicescene.h>

#include <benchmark/benchmark.h>

#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QStringList>

#include <memory>

namespace {

constexpr int unitCount = 1000;
constexpr int columns = 40;
const QRectF picture(0, 0, 1920, 1080);

QPointF unitPosition(int i)
{
    return QPointF((i % columns) * 47.0, (i / columns) * 42.0);
}

// A 160 x 40 panel in the manner of a real unit: a tinted strip, a name, the
// management interface, port LEDs, a jack, a cage, the alarm lamp, a load bar
// and a status column.
QString panelDescription(int i, int unparsable)
{
    QStringList entries;
    entries << QStringLiteral("dimension: 8x2") << QStringLiteral("0x0(background): 222,226,232,8")
            << QStringLiteral("0.2x0(text): MUX-%1,8").arg(i) << QStringLiteral("0x1(interf): %1").arg(i % 2)
            << QStringLiteral("2x1(led): 0,220,0") << QStringLiteral("3x1(led): %1,0,0").arg(i % 256)
            << QStringLiteral("4x1(rj45): 1,%1").arg(i % 2) << QStringLiteral("5x1(sfp): ")
            << QStringLiteral("6x1(alarm): 0,200,0") << QStringLiteral("4x0(progressbar): %1,3").arg(i % 100)
            << QStringLiteral("7x0(ledmat): 1,0,%1,1").arg(i % 2)
            << QStringLiteral("tooltip: Unit %1").arg(i);
    // Entries that parsing must read and drop, for the check that a blink
    // tick never parses again.
    for (int k = 0; k < unparsable; ++k)
        entries << QStringLiteral("%1x1(unknown): 1,2,3").arg(k % 8);
    return entries.join(QLatin1Char(';'));
}

std::unique_ptr<DeviceScene> deviceScene(int unparsable = 0)
{
    auto scene = std::make_unique<DeviceScene>();
    scene->setSceneRect(picture);
    QHash<unsigned short, Core::AlarmType> alarms;
    for (int i = 0; i < unitCount; ++i) {
        const auto key = static_cast<unsigned short>(i + 1);
        scene->addDeviceItem(key, panelDescription(i, unparsable), unitPosition(i), -1.0);
        const Core::AlarmType alarm = i % 13 == 0 ? Core::ALARM_MAJOR
            : i % 7 == 0                          ? Core::ALARM_MINOR
                                                  : Core::ALARM_OK;
        alarms.insert(key, alarm);
    }
    scene->setAlarmMap(alarms);
    return scene;
}

std::unique_ptr<QGraphicsScene> rectangleScene()
{
    auto scene = std::make_unique<QGraphicsScene>();
    scene->setSceneRect(picture);
    for (int i = 0; i < unitCount; ++i) {
        auto *item = scene->addRect(QRectF(0, 0, 160, 40), QPen(Qt::gray), QBrush(Qt::white));
        item->setPos(unitPosition(i));
    }
    return scene;
}

void render(QGraphicsScene &scene, QImage &image)
{
    image.fill(Qt::white);
    QPainter painter(&image);
    scene.render(&painter, picture, picture);
}

QImage target()
{
    return QImage(picture.size().toSize(), QImage::Format_ARGB32_Premultiplied);
}

void BM_RenderDevices(benchmark::State &state)
{
    auto scene = deviceScene();
    QImage image = target();
    for (auto _ : state)
        render(*scene, image);
}

void BM_RenderRectangles(benchmark::State &state)
{
    auto scene = rectangleScene();
    QImage image = target();
    for (auto _ : state)
        render(*scene, image);
}

// A tick flips every unit's pen through the scene's signal; the view then
// repaints, which the render stands for.
void BM_BlinkTickDevices(benchmark::State &state, int unparsable)
{
    auto scene = deviceScene(unparsable);
    QImage image = target();
    for (auto _ : state) {
        scene->alarmLoopTimeout();
        render(*scene, image);
    }
}

void BM_BlinkTickRectangles(benchmark::State &state)
{
    auto scene = rectangleScene();
    QImage image = target();
    const QPen pens[] = {QPen(Qt::gray), QPen(QBrush(Qt::red), 4)};
    bool phase = false;
    for (auto _ : state) {
        phase = !phase;
        const QList<QGraphicsItem *> items = scene->items();
        for (QGraphicsItem *item : items)
            static_cast<QGraphicsRectItem *>(item)->setPen(pens[phase]);
        render(*scene, image);
    }
}

} // namespace

BENCHMARK(BM_RenderDevices)->Name("topology/render_1000_panels")->UseRealTime();
BENCHMARK(BM_RenderRectangles)->Name("topology/render_1000_rectangles")->UseRealTime();
BENCHMARK_CAPTURE(BM_BlinkTickDevices, plain, 0)->Name("topology/blink_tick_1000_panels")->UseRealTime();
BENCHMARK_CAPTURE(BM_BlinkTickDevices, padded, 200)
    ->Name("topology/blink_tick_1000_panels_long_descriptions")
    ->UseRealTime();
BENCHMARK(BM_BlinkTickRectangles)->Name("topology/blink_tick_1000_rectangles")->UseRealTime();
