#include "rendering.h"

#include <topology/deviceitem.h>

#include <QtTest>

#include <QGraphicsScene>
#include <QGraphicsSceneHoverEvent>

namespace {

// A 100 × 40 panel at (20, 20): its top frame line is pixel row 20.
struct Fixture
{
    QGraphicsScene scene;
    DeviceItem *item = new DeviceItem;

    Fixture()
    {
        item->updateFrontPanel("dimension: 5x2");
        scene.addItem(item);
        item->setPos(20, 20);
    }
    QImage render() { return renderScene(&scene, QRect(0, 0, 160, 100)); }
    QImage hover(QEvent::Type type)
    {
        QGraphicsSceneHoverEvent event(type);
        scene.sendEvent(item, &event);
        return render();
    }
};

} // namespace

class tst_DeviceItem : public QObject
{
    Q_OBJECT
private slots:
    void geometry()
    {
        Fixture f;
        QCOMPARE(f.item->type(), 65551);
        f.item->updateFrontPanel("dimension: 5x2; tooltip:Unit 7");
        f.item->setPos(100, 50);
        QCOMPARE(f.item->boundingRect(), QRectF(-7, -7, 114, 54));
        // Seven right of and below the panel's true centre, on purpose.
        QCOMPARE(f.item->centerPoint(), QPointF(157, 77));
        QCOMPARE(f.item->toolTip(), QStringLiteral("Unit 7"));
        // A bad size keeps the rectangle and drops the tooltip.
        f.item->updateFrontPanel("dimension: 3");
        QCOMPARE(f.item->polygon(), QPolygonF(QRectF(0, 0, 100, 40)));
        QCOMPARE(f.item->toolTip(), QString());

        // The origin stays inside 1900 × 1060.
        f.item->setPos(-20, 2000);
        QCOMPARE(f.item->pos(), QPointF(0, 1060));
        f.item->setPos(2500, 1060);
        QCOMPARE(f.item->pos(), QPointF(1900, 1060));
    }
    void looks()
    {
        QList<QImage> tiles;
        // Alarm, highlighted, blink phases shown: the frame before and after
        // the phases, as nothing shows before the next one. The frame is
        // gray when healthy, red for major (1 and 3), dark yellow for minor,
        // black and 8 pixels wide for value 4; an unknown value keeps the
        // pen, and the normal phase shows gray or the highlight.
        const QList<std::tuple<int, bool, QList<bool>>> alarms {{0, false, {false}}, {1, false, {false}},
            {3, false, {false}}, {2, false, {false}}, {4, false, {false}}, {1, false, {false, true}},
            {1, true, {false, true}}, {5, true, {false}}, {0, true, {false}}};
        for (const auto &[alarm, highlighted, phases] : alarms) {
            Fixture f;
            if (highlighted)
                f.item->setHighLight(DeviceItem::HighLightBoth);
            f.item->setAlarm(static_cast<Core::AlarmType>(alarm));
            tiles << f.render();
            for (bool on : phases)
                f.item->showAlarm(on);
            tiles << f.render();
        }
        // Group brush, the pointer's brush and black pen, which a highlighted
        // item does not take, then the selection's brackets.
        Fixture f;
        QSignalSpy entered(f.item, &DeviceItem::mouseEnter);
        f.item->setGroupHighLight(true);
        tiles << f.render() << f.hover(QEvent::GraphicsSceneHoverEnter);
        tiles << f.hover(QEvent::GraphicsSceneHoverLeave);
        QCOMPARE(entered.count(), 1);
        f.item->setHighLight(DeviceItem::HighLightForward);
        tiles << f.hover(QEvent::GraphicsSceneHoverEnter);
        f.item->setSelected(true);
        tiles << f.render();
        QVERIFY(matchesReference(tiles, "deviceitem"));
    }
};

QTEST_MAIN(tst_DeviceItem)
#include "tst_deviceitem.moc"
