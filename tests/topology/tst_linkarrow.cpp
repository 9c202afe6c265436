#include "rendering.h"

#include <topology/deviceitem.h>
#include <topology/linkarrow.h>

#include <QtTest>

#include <QGraphicsScene>

class tst_LinkArrow : public QObject
{
    Q_OBJECT
private slots:
    void headOnPanelEdge_data();
    void headOnPanelEdge();
    void followsMovesAndResizes();
    void boundingRectAndShape();
    void paintsHeadAndSelection();
    void highlightPropagation_data();
    void highlightPropagation();
    void againstDirectionStopsTheWalk();
};

namespace {

// Units of 100 × 40 (centre points at pos + (57, 27)) joined in a chain
// u[0] → u[1] → ... by links l[0], l[1], ...
struct Chain
{
    QGraphicsScene scene;
    QList<DeviceItem *> u;
    QList<LinkArrow *> l;

    explicit Chain(const QList<QPointF> &positions)
    {
        for (const QPointF &pos : positions) {
            auto *item = new DeviceItem;
            QString description = "dimension: 5x2";
            item->setParameters(description);
            scene.addItem(item);
            item->setPos(pos);
            if (!u.isEmpty())
                link(u.last(), item);
            u << item;
        }
    }
    LinkArrow *link(DeviceItem *from, DeviceItem *to)
    {
        auto *arrow = new LinkArrow(from, to);
        from->addArrow(arrow);
        to->addArrow(arrow);
        scene.addItem(arrow);
        arrow->updatePosition();
        l << arrow;
        return arrow;
    }
};

void compareHead(const QPolygonF &head, const QPolygonF &expected)
{
    QCOMPARE(head.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QVERIFY2(QLineF(head.at(i), expected.at(i)).length() < 1e-3,
            qPrintable(QStringLiteral("point %1: %2, %3").arg(i).arg(head.at(i).x()).arg(head.at(i).y())));
    }
}

} // namespace

void tst_LinkArrow::headOnPanelEdge_data()
{
    QTest::addColumn<QPointF>("endPos");
    QTest::addColumn<QPolygonF>("head");

    // Worked out by hand from the rounded angle constants.
    QTest::newRow("end to the right") << QPointF(
        300, 0) << QPolygonF({QPointF(300, 27), QPointF(290.50132, 23.87350), QPointF(290.47672, 30.05076)});
    QTest::newRow("end below") << QPointF(
        0, 200) << QPolygonF({QPointF(57, 200), QPointF(60.09623, 190.49141), QPointF(53.91892, 190.48649)});
}

void tst_LinkArrow::headOnPanelEdge()
{
    QFETCH(QPointF, endPos);
    QFETCH(QPolygonF, head);
    Chain c({QPointF(0, 0), endPos});
    QCOMPARE(c.l[0]->type(), 65540);
    // The line runs from the tip back to the start's centre point.
    QCOMPARE(c.l[0]->line(), QLineF(head.first(), QPointF(57, 27)));
    compareHead(c.l[0]->getArrowHead(), head);
}

void tst_LinkArrow::followsMovesAndResizes()
{
    Chain c({QPointF(0, 0), QPointF(300, 0)});
    c.u[1]->setPos(300, 100);
    QCOMPARE(c.l[0]->line().p2(), QPointF(57, 27));
    // The centre line from (57, 27) to (357, 127) enters through the left
    // edge at y = 27 + 100 * 243 / 300.
    QCOMPARE(c.l[0]->line().p1(), QPointF(300, 108));
    c.u[0]->setPos(0, 100);
    QCOMPARE(c.l[0]->line(), QLineF(QPointF(300, 127), QPointF(57, 127)));

    QString wider = "dimension: 10x2";
    c.u[0]->setParameters(wider);
    QCOMPARE(c.l[0]->line().p2(), QPointF(107, 127));

    // The centre line (107, 127) to (77, 137) lies wholly inside the end
    // panel: no edge is crossed, so no head.
    c.u[1]->setPos(20, 110);
    QVERIFY(c.l[0]->getArrowHead().isEmpty());
}

void tst_LinkArrow::boundingRectAndShape()
{
    // Tip at x = 157, start centre at x = 57: a horizontal line of 100.
    Chain c({QPointF(0, 0), QPointF(157, 0)});
    QCOMPARE(c.l[0]->line().length(), 100.0);
    QCOMPARE(c.l[0]->boundingRect(), QRectF(57 - 11.5, 27 - 11.5, 123, 23));
    // Highlighting does not change it.
    c.u[0]->setHighLight(DeviceItem::HighLightForward);
    QCOMPARE(c.l[0]->boundingRect(), QRectF(57 - 11.5, 27 - 11.5, 123, 23));
    // The head is part of the clickable shape, not just the line.
    QVERIFY(c.l[0]->shape().contains(QPointF(150, 29)));
    QVERIFY(!c.l[0]->shape().contains(QPointF(100, 34)));
}

void tst_LinkArrow::paintsHeadAndSelection()
{
    Chain c({QPointF(0, 0), QPointF(300, 0)});
    const QRect area(0, 0, 420, 60);
    QImage image = renderScene(&c.scene, area);
    QCOMPARE(pixelAt(image, 200, 27), QColor(Qt::black));
    // The head spreads beyond the 3-pixel line just before the tip.
    QCOMPARE(pixelAt(image, 292, 24), QColor(Qt::black));
    QCOMPARE(pixelAt(image, 292, 29), QColor(Qt::black));
    QCOMPARE(pixelAt(image, 200, 24), QColor(Qt::white));
    QCOMPARE(pixelAt(image, 200, 29), QColor(Qt::white));
    QCOMPARE(pixelAt(image, 303, 27), QColor(Qt::white)); // nothing inside the end panel

    c.l[0]->setSelected(true);
    image = renderScene(&c.scene, area);
    int overlay = 0;
    for (int x = 160; x < 280; ++x)
        overlay += pixelAt(image, x, 27) == QColor(200, 0, 0);
    // A dotted line: about half of it red.
    QVERIFY2(overlay > 30 && overlay < 90, qPrintable(QString::number(overlay)));

    c.u[0]->setHighLight(DeviceItem::HighLightForward);
    c.l[0]->setSelected(false);
    QCOMPARE(pixelAt(renderScene(&c.scene, area), 200, 28), QColor(90, 255, 90));
}

void tst_LinkArrow::highlightPropagation_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QList<int>>("units");
    QTest::addColumn<QList<int>>("links");

    QTest::newRow("forward from the head") << 0 << 0 << QList<int> {0, 0, 0} << QList<int> {0, 0};
    QTest::newRow("forward from the middle") << 1 << 0 << QList<int> {3, 0, 0} << QList<int> {0, 0};
    QTest::newRow("forward from the tail") << 2 << 0 << QList<int> {3, 3, 0} << QList<int> {3, 0};
    QTest::newRow("backward from the tail") << 2 << 1 << QList<int> {1, 1, 1} << QList<int> {1, 1};
    QTest::newRow("backward from the head") << 0 << 1 << QList<int> {1, 3, 3} << QList<int> {1, 3};
    QTest::newRow("both from the middle") << 1 << 2 << QList<int> {2, 2, 2} << QList<int> {2, 2};
}

void tst_LinkArrow::highlightPropagation()
{
    QFETCH(int, unit);
    QFETCH(int, mode);
    QFETCH(QList<int>, units);
    QFETCH(QList<int>, links);

    Chain c({QPointF(0, 0), QPointF(300, 0), QPointF(600, 0)});
    c.u[unit]->setHighLight(static_cast<DeviceItem::HighLightMode>(mode));
    for (int i = 0; i < 3; ++i)
        QCOMPARE(int(c.u[i]->getHighLightMode()), units[i]);
    for (int i = 0; i < 2; ++i)
        QCOMPARE(int(c.l[i]->getHighLightMode()), links[i]);

    // Switching off any unit of the chain clears everything it reached.
    c.u[2 - unit]->setHighLight(DeviceItem::HighLightOff);
    c.u[unit]->setHighLight(DeviceItem::HighLightOff);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(c.u[i]->getHighLightMode(), DeviceItem::HighLightOff);
    for (int i = 0; i < 2; ++i)
        QCOMPARE(c.l[i]->getHighLightMode(), DeviceItem::HighLightOff);
}

void tst_LinkArrow::againstDirectionStopsTheWalk()
{
    Chain c({QPointF(0, 0), QPointF(300, 0)});
    // Touched from its end with a forward highlight: the mode is stored,
    // nothing is highlighted.
    c.u[1]->setHighLight(DeviceItem::HighLightForward);
    QCOMPARE(c.l[0]->getHighLightMode(), DeviceItem::HighLightForward);
    const QRect area(0, 0, 420, 60);
    QCOMPARE(pixelAt(renderScene(&c.scene, area), 200, 27), QColor(Qt::black));

    // Now the same mode from the start returns at once: the link stays
    // black, though the start unit itself is highlighted.
    c.u[0]->setHighLight(DeviceItem::HighLightForward);
    QCOMPARE(c.u[0]->getHighLightMode(), DeviceItem::HighLightForward);
    QCOMPARE(pixelAt(renderScene(&c.scene, area), 200, 27), QColor(Qt::black));

    // A unit set to the mode it holds does not touch its links.
    c.l[0]->setHighLight(nullptr, DeviceItem::HighLightBoth);
    c.u[0]->setHighLight(DeviceItem::HighLightForward);
    QCOMPARE(c.l[0]->getHighLightMode(), DeviceItem::HighLightBoth);
}

QTEST_MAIN(tst_LinkArrow)
#include "tst_linkarrow.moc"
