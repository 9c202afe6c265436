#include "rendering.h"

#include <topology/deviceitem.h>
#include <topology/linkarrow.h>

#include <QtTest>

#include <QGraphicsScene>
#include <QGraphicsSceneHoverEvent>

namespace {

// Units of 100 × 40 (centre points at pos + (57, 27)) in a chain
// u[0] → u[1] → ... joined by links l[0], l[1], ...
struct Chain
{
    QGraphicsScene scene;
    QList<DeviceItem *> u;
    QList<LinkArrow *> l;
    DeviceItem *item = nullptr; // the first unit

    explicit Chain(const QList<QPointF> &positions)
    {
        for (const QPointF &pos : positions) {
            auto *unit = new DeviceItem;
            unit->updateFrontPanel("dimension: 5x2");
            scene.addItem(unit);
            unit->setPos(pos);
            if (!u.isEmpty()) {
                auto *arrow = new LinkArrow(u.last(), unit);
                u.last()->addArrow(arrow);
                unit->addArrow(arrow);
                scene.addItem(arrow);
                arrow->updatePosition();
                l << arrow;
            }
            u << unit;
        }
        item = u.first();
    }
    QImage render(const QRect &area) { return renderScene(&scene, area); }
    QImage hover(QEvent::Type type, const QRect &area)
    {
        QGraphicsSceneHoverEvent event(type);
        scene.sendEvent(item, &event);
        return render(area);
    }
};

// A unit at (20, 20) has its top frame line on pixel row 20.
const QRect itemArea(0, 0, 160, 100);
const QRect linkArea(0, 0, 420, 60);

} // namespace

class tst_DeviceItem : public QObject
{
    Q_OBJECT
private slots:
    void geometry()
    {
        Chain f({QPointF(100, 50)});
        QCOMPARE(f.item->type(), 65551);
        f.item->updateFrontPanel("dimension: 5x2; tooltip:Unit 7");
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
    void itemLooks()
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
            Chain f({QPointF(20, 20)});
            if (highlighted)
                f.item->setHighLight(DeviceItem::HighLightBoth);
            f.item->setAlarm(static_cast<Core::AlarmType>(alarm));
            tiles << f.render(itemArea);
            for (bool on : phases)
                f.item->showAlarm(on);
            tiles << f.render(itemArea);
        }
        // Group brush, the pointer's brush and black pen, which a highlighted
        // item does not take, then the selection's brackets.
        Chain f({QPointF(20, 20)});
        QSignalSpy entered(f.item, &DeviceItem::mouseEnter);
        f.item->setGroupHighLight(true);
        tiles << f.render(itemArea) << f.hover(QEvent::GraphicsSceneHoverEnter, itemArea);
        tiles << f.hover(QEvent::GraphicsSceneHoverLeave, itemArea);
        QCOMPARE(entered.count(), 1);
        f.item->setHighLight(DeviceItem::HighLightForward);
        tiles << f.hover(QEvent::GraphicsSceneHoverEnter, itemArea);
        f.item->setSelected(true);
        tiles << f.render(itemArea);
        QVERIFY(matchesReference(tiles, "deviceitem"));
    }
    void headOnPanelEdge_data()
    {
        QTest::addColumn<QPointF>("endPos");
        QTest::addColumn<QPolygonF>("head");
        // Worked out by hand with the rounded angle constants.
        QTest::newRow("end to the right")
            << QPointF(300, 0) << QPolygonF({{300, 27}, {290.50132, 23.87350}, {290.47672, 30.05076}});
        QTest::newRow("end below") << QPointF(0, 200)
                                   << QPolygonF({{57, 200}, {60.09623, 190.49141}, {53.91892, 190.48649}});
    }
    void headOnPanelEdge()
    {
        QFETCH(QPointF, endPos);
        QFETCH(QPolygonF, head);
        Chain c({QPointF(0, 0), endPos});
        // The line runs from the tip back to the start's centre point.
        QCOMPARE(c.l[0]->line(), QLineF(head.first(), QPointF(57, 27)));
        const QPolygonF drawn = c.l[0]->getArrowHead();
        QCOMPARE(drawn.size(), 3);
        for (int i = 0; i < 3; ++i)
            QVERIFY(QLineF(drawn.at(i), head.at(i)).length() < 1e-3);
    }
    void highlightPropagation_data()
    {
        QTest::addColumn<int>("unit");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QList<int>>("modes"); // units 0 to 2, then links 0 and 1

        QTest::newRow("forward from the head") << 0 << 0 << QList<int> {0, 0, 0, 0, 0};
        QTest::newRow("forward from the middle") << 1 << 0 << QList<int> {3, 0, 0, 0, 0};
        QTest::newRow("forward from the tail") << 2 << 0 << QList<int> {3, 3, 0, 3, 0};
        QTest::newRow("backward from the tail") << 2 << 1 << QList<int> {1, 1, 1, 1, 1};
        QTest::newRow("backward from the head") << 0 << 1 << QList<int> {1, 3, 3, 1, 3};
        QTest::newRow("both from the middle") << 1 << 2 << QList<int> {2, 2, 2, 2, 2};
    }
    void highlightPropagation()
    {
        QFETCH(int, unit);
        QFETCH(int, mode);
        QFETCH(QList<int>, modes);

        Chain c({QPointF(0, 0), QPointF(300, 0), QPointF(600, 0)});
        auto current = [&c]() {
            QList<int> modes;
            for (int i = 0; i < 5; ++i)
                modes << (i < 3 ? c.u[i]->getHighLightMode() : c.l[i - 3]->getHighLightMode());
            return modes;
        };
        c.u[unit]->setHighLight(static_cast<DeviceItem::HighLightMode>(mode));
        QCOMPARE(current(), modes);
        // Switching off the units clears everything they reached.
        c.u[2 - unit]->setHighLight(DeviceItem::HighLightOff);
        c.u[unit]->setHighLight(DeviceItem::HighLightOff);
        QCOMPARE(current(), (QList<int> {3, 3, 3, 3, 3}));
    }
    void linkLooks()
    {
        // Plain: the head spreads beyond the 3-pixel line just before the tip.
        // Selected: dotted.
        Chain c({QPointF(0, 0), QPointF(300, 0)});
        QList<QImage> tiles {c.render(linkArea)};
        c.l[0]->setSelected(true);
        tiles << c.render(linkArea);
        c.l[0]->setSelected(false);
        // Met from its end by a forward highlight: the mode is stored, nothing
        // lit. So the same mode from the start returns at once and the link
        // stays black; both directions light it.
        c.u[1]->setHighLight(DeviceItem::HighLightForward);
        QCOMPARE(c.l[0]->getHighLightMode(), DeviceItem::HighLightForward);
        c.u[0]->setHighLight(DeviceItem::HighLightForward);
        tiles << c.render(linkArea);
        c.u[0]->setHighLight(DeviceItem::HighLightBoth);
        tiles << c.render(linkArea);
        QVERIFY(matchesReference(tiles, "linkarrow"));

        // A unit set to the mode it holds leaves its links alone.
        c.l[0]->setHighLight(nullptr, DeviceItem::HighLightBackward);
        c.u[0]->setHighLight(DeviceItem::HighLightBoth);
        QCOMPARE(c.l[0]->getHighLightMode(), DeviceItem::HighLightBackward);
    }
};

QTEST_MAIN(tst_DeviceItem)
#include "tst_deviceitem.moc"
