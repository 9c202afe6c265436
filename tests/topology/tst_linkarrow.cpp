#include "rendering.h"

#include <topology/deviceitem.h>
#include <topology/linkarrow.h>

#include <QtTest>

#include <QGraphicsScene>

namespace {

// Units of 100 × 40 (centre points at pos + (57, 27)) in a chain
// u[0] → u[1] → ... joined by links l[0], l[1], ...
struct Chain
{
    QGraphicsScene scene;
    QList<DeviceItem *> u;
    QList<LinkArrow *> l;

    explicit Chain(const QList<QPointF> &positions)
    {
        for (const QPointF &pos : positions) {
            auto *item = new DeviceItem;
            item->updateFrontPanel("dimension: 5x2");
            scene.addItem(item);
            item->setPos(pos);
            if (!u.isEmpty()) {
                auto *arrow = new LinkArrow(u.last(), item);
                u.last()->addArrow(arrow);
                item->addArrow(arrow);
                scene.addItem(arrow);
                arrow->updatePosition();
                l << arrow;
            }
            u << item;
        }
    }
    QImage render() { return renderScene(&scene, QRect(0, 0, 420, 60)); }
};

} // namespace

class tst_LinkArrow : public QObject
{
    Q_OBJECT
private slots:
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
    void followsItsEnds()
    {
        Chain c({QPointF(0, 0), QPointF(300, 0)});
        // From (57, 27) to (357, 127) the line enters the left edge at y = 27 + 100 * 243 / 300.
        c.u[1]->setPos(300, 100);
        QCOMPARE(c.l[0]->line(), QLineF(QPointF(300, 108), QPointF(57, 27)));
        c.u[0]->setPos(0, 100);
        c.u[0]->updateFrontPanel("dimension: 10x2");
        QCOMPARE(c.l[0]->line(), QLineF(QPointF(300, 127), QPointF(107, 127)));
        // From (107, 127) to (77, 137) the line stays inside the end panel: no head.
        c.u[1]->setPos(20, 110);
        QVERIFY(c.l[0]->getArrowHead().isEmpty());
    }
    void bounds()
    {
        // Tip at x = 157, start centre at x = 57: a horizontal line of 100.
        Chain near({QPointF(0, 0), QPointF(157, 0)});
        near.u[0]->setHighLight(DeviceItem::HighLightForward);
        QCOMPARE(near.l[0]->boundingRect(), QRectF(57 - 11.5, 27 - 11.5, 123, 23));
        // The head is part of the clickable shape.
        QVERIFY(near.l[0]->shape().contains(QPointF(150, 29)));
        QVERIFY(!near.l[0]->shape().contains(QPointF(100, 34)));
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
    void looks()
    {
        // Plain: the head spreads beyond the 3-pixel line just before the tip.
        // Selected: dotted.
        Chain c({QPointF(0, 0), QPointF(300, 0)});
        QList<QImage> tiles {c.render()};
        c.l[0]->setSelected(true);
        tiles << c.render();
        c.l[0]->setSelected(false);
        // Met from its end by a forward highlight: the mode is stored, nothing
        // lit. So the same mode from the start returns at once and the link
        // stays black; both directions light it.
        c.u[1]->setHighLight(DeviceItem::HighLightForward);
        QCOMPARE(c.l[0]->getHighLightMode(), DeviceItem::HighLightForward);
        c.u[0]->setHighLight(DeviceItem::HighLightForward);
        tiles << c.render();
        c.u[0]->setHighLight(DeviceItem::HighLightBoth);
        tiles << c.render();
        QVERIFY(matchesReference(tiles, "linkarrow"));

        // A unit set to the mode it holds leaves its links alone.
        c.l[0]->setHighLight(nullptr, DeviceItem::HighLightBackward);
        c.u[0]->setHighLight(DeviceItem::HighLightBoth);
        QCOMPARE(c.l[0]->getHighLightMode(), DeviceItem::HighLightBackward);
    }
};

QTEST_MAIN(tst_LinkArrow)
#include "tst_linkarrow.moc"
