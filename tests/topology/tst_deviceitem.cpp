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
    QColor pixel(int x, int y) { return pixelAt(renderScene(&scene, QRect(0, 0, 160, 100)), x, y); }
    void hover(QEvent::Type type)
    {
        QGraphicsSceneHoverEvent event(type);
        scene.sendEvent(item, &event);
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
    void framePen_data()
    {
        QTest::addColumn<int>("alarm");
        QTest::addColumn<bool>("highlighted");
        QTest::addColumn<QList<bool>>("phases");
        QTest::addColumn<QColor>("frame");

        const QColor gray(Qt::gray), highlight(90, 255, 90);
        QTest::newRow("healthy") << 0 << false << QList<bool> {false} << gray;
        QTest::newRow("major") << 1 << false << QList<bool> {false} << QColor(Qt::red);
        QTest::newRow("major and minor") << 3 << false << QList<bool> {false} << QColor(Qt::red);
        QTest::newRow("minor") << 2 << false << QList<bool> {false} << QColor(Qt::darkYellow);
        QTest::newRow("value 4") << 4 << false << QList<bool> {false} << QColor(Qt::black);
        QTest::newRow("major, normal phase") << 1 << false << QList<bool> {false, true} << gray;
        QTest::newRow("highlighted, normal phase") << 1 << true << QList<bool> {false, true} << highlight;
        QTest::newRow("unknown value keeps the pen") << 5 << true << QList<bool> {false} << highlight;
        QTest::newRow("highlighted healthy, alarm phase") << 0 << true << QList<bool> {false} << gray;
    }
    void framePen()
    {
        QFETCH(int, alarm);
        QFETCH(bool, highlighted);
        QFETCH(QList<bool>, phases);
        QFETCH(QColor, frame);

        Fixture f;
        if (highlighted)
            f.item->setHighLight(DeviceItem::HighLightBoth);
        f.item->setAlarm(static_cast<Core::AlarmType>(alarm));
        // Nothing shows before the next blink phase.
        QCOMPARE(f.pixel(70, 20), highlighted ? QColor(90, 255, 90) : QColor(Qt::gray));
        for (bool on : qAsConst(phases))
            f.item->showAlarm(on);
        QCOMPARE(f.pixel(70, 20), frame);
        // Only value 4 has the 8-pixel pen.
        QCOMPARE(f.pixel(70, 17) == QColor(Qt::black), frame == QColor(Qt::black));
    }
    void brushesAndSelectionMarks()
    {
        Fixture f;
        QSignalSpy entered(f.item, &DeviceItem::mouseEnter);
        const QColor white(Qt::white), group(227, 175, 147), mark(200, 0, 0);
        f.item->setGroupHighLight(true);
        QCOMPARE(f.pixel(70, 40), group);
        f.hover(QEvent::GraphicsSceneHoverEnter);
        QCOMPARE(entered.count(), 1);
        QCOMPARE(f.pixel(70, 40), QColor(70, 180, 230));
        QCOMPARE(f.pixel(70, 20), QColor(Qt::black));
        f.hover(QEvent::GraphicsSceneHoverLeave);
        QCOMPARE(f.pixel(70, 40), group);
        QCOMPARE(f.pixel(70, 20), QColor(Qt::gray));
        // A highlighted item keeps its pen under the pointer.
        f.item->setHighLight(DeviceItem::HighLightForward);
        f.hover(QEvent::GraphicsSceneHoverEnter);
        QCOMPARE(f.pixel(70, 20), QColor(90, 255, 90));

        // Brackets 5 outside each corner, arms reaching 10 past the edge line.
        QCOMPARE(f.pixel(15, 15), white);
        f.item->setSelected(true);
        for (const QPoint &p :
            {QPoint(15, 15), QPoint(28, 15), QPoint(15, 28), QPoint(112, 65), QPoint(125, 52)})
            QCOMPARE(f.pixel(p.x(), p.y()), mark);
        QCOMPARE(f.pixel(70, 15), white);
        QCOMPARE(f.pixel(15, 40), white);
    }
};

QTEST_MAIN(tst_DeviceItem)
#include "tst_deviceitem.moc"
