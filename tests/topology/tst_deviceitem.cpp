#include "rendering.h"

#include <topology/deviceitem.h>

#include <QtTest>

#include <QGraphicsScene>
#include <QGraphicsSceneHoverEvent>

class tst_DeviceItem : public QObject
{
    Q_OBJECT
private slots:
    void geometry();
    void positionIsClamped_data();
    void positionIsClamped();
    void framePen_data();
    void framePen();
    void selectionMarks();
    void hoverAndGroupBrush();
};

namespace {

// A 100 × 40 panel placed at (20, 20): its top frame line is pixel row 20.
struct Fixture
{
    QGraphicsScene scene;
    DeviceItem *item = new DeviceItem;

    Fixture()
    {
        QString description = "dimension: 5x2";
        item->setParameters(description);
        scene.addItem(item);
        item->setPos(20, 20);
    }
    QImage render() { return renderScene(&scene, QRect(0, 0, 160, 100)); }
};

} // namespace

void tst_DeviceItem::geometry()
{
    DeviceItem item;
    QCOMPARE(item.type(), 65551);
    QCOMPARE(item.polygon(), QPolygonF(QRectF(0, 0, 200, 80)));

    QString description = "dimension: 5x2; tooltip:Unit 7";
    item.setParameters(description);
    item.setPos(100, 50);
    QCOMPARE(item.boundingRect(), QRectF(-7, -7, 114, 54));
    QCOMPARE(item.shape().boundingRect(), QRectF(-7, -7, 114, 54));
    QCOMPARE(item.polygon(), QPolygonF(QRectF(0, 0, 100, 40)));
    // Seven right of and below the panel's true centre, on purpose.
    QCOMPARE(item.centerPoint(), QPointF(157, 77));
    QCOMPARE(item.toolTip(), QStringLiteral("Unit 7"));

    // A bad size keeps the rectangle and drops the tooltip.
    item.updateFrontPanel("dimension: 3");
    QCOMPARE(item.polygon(), QPolygonF(QRectF(0, 0, 100, 40)));
    QCOMPARE(item.toolTip(), QString());
}

void tst_DeviceItem::positionIsClamped_data()
{
    QTest::addColumn<QPointF>("wanted");
    QTest::addColumn<QPointF>("placed");
    QTest::newRow("left of the area") << QPointF(-20, 30) << QPointF(0, 30);
    QTest::newRow("below the area") << QPointF(100, 2000) << QPointF(100, 1060);
    QTest::newRow("both outside") << QPointF(2500, -5) << QPointF(1900, 0);
    QTest::newRow("on the limits") << QPointF(1900, 1060) << QPointF(1900, 1060);
    QTest::newRow("fractions inside") << QPointF(10.5, 0.25) << QPointF(10.5, 0.25);
}

void tst_DeviceItem::positionIsClamped()
{
    QFETCH(QPointF, wanted);
    QFETCH(QPointF, placed);
    Fixture f;
    f.item->setPos(wanted);
    QCOMPARE(f.item->pos(), placed);
}

void tst_DeviceItem::framePen_data()
{
    QTest::addColumn<int>("alarm");
    QTest::addColumn<bool>("highlighted");
    QTest::addColumn<QList<bool>>("phases");
    QTest::addColumn<QColor>("frame");

    const QColor gray(Qt::gray);
    const QColor highlight(90, 255, 90);
    QTest::newRow("healthy") << 0 << false << QList<bool> {false} << gray;
    QTest::newRow("major") << 1 << false << QList<bool> {false} << QColor(Qt::red);
    QTest::newRow("major and minor") << 3 << false << QList<bool> {false} << QColor(Qt::red);
    QTest::newRow("minor") << 2 << false << QList<bool> {false} << QColor(Qt::darkYellow);
    QTest::newRow("value 4") << 4 << false << QList<bool> {false} << QColor(Qt::black);
    QTest::newRow("major, normal phase") << 1 << false << QList<bool> {false, true} << gray;
    QTest::newRow("highlighted major, normal phase") << 1 << true << QList<bool> {false, true} << highlight;
    QTest::newRow("unknown value keeps the pen") << 5 << true << QList<bool> {false} << highlight;
    QTest::newRow("highlighted healthy item, alarm phase") << 0 << true << QList<bool> {false} << gray;
}

void tst_DeviceItem::framePen()
{
    QFETCH(int, alarm);
    QFETCH(bool, highlighted);
    QFETCH(QList<bool>, phases);
    QFETCH(QColor, frame);

    Fixture f;
    if (highlighted)
        f.item->setHighLight(DeviceItem::HighLightBoth);
    f.item->setAlarm(static_cast<Core::AlarmType>(alarm));
    // Nothing changes before the next blink phase.
    QCOMPARE(pixelAt(f.render(), 70, 20), highlighted ? QColor(90, 255, 90) : QColor(Qt::gray));
    for (bool on : qAsConst(phases))
        f.item->showAlarm(on);
    const QImage image = f.render();
    QCOMPARE(pixelAt(image, 70, 20), frame);
    // Only value 4 has the 8-pixel pen.
    QCOMPARE(pixelAt(image, 70, 17) == QColor(Qt::black), frame == QColor(Qt::black));
}

void tst_DeviceItem::selectionMarks()
{
    Fixture f;
    const QColor mark(200, 0, 0);
    QCOMPARE(pixelAt(f.render(), 15, 15), QColor(Qt::white));
    f.item->setSelected(true);
    const QImage image = f.render();
    // Brackets 5 outside each corner, arms reaching 10 past the edge line.
    QCOMPARE(pixelAt(image, 15, 15), mark);
    QCOMPARE(pixelAt(image, 28, 15), mark);
    QCOMPARE(pixelAt(image, 15, 28), mark);
    QCOMPARE(pixelAt(image, 125, 15), mark);
    QCOMPARE(pixelAt(image, 112, 65), mark);
    QCOMPARE(pixelAt(image, 125, 52), mark);
    QCOMPARE(pixelAt(image, 70, 15), QColor(Qt::white));
    QCOMPARE(pixelAt(image, 15, 40), QColor(Qt::white));
}

void tst_DeviceItem::hoverAndGroupBrush()
{
    Fixture f;
    QSignalSpy entered(f.item, &DeviceItem::mouseEnter);
    QSignalSpy left(f.item, &DeviceItem::mouseLeave);
    const QColor white(Qt::white);
    const QColor group(227, 175, 147);
    const QColor hover(70, 180, 230);
    auto hoverOn = [&f](QEvent::Type type) {
        QGraphicsSceneHoverEvent event(type);
        f.scene.sendEvent(f.item, &event);
    };

    QCOMPARE(pixelAt(f.render(), 70, 40), white);
    f.item->setGroupHighLight(true);
    QCOMPARE(pixelAt(f.render(), 70, 40), group);

    hoverOn(QEvent::GraphicsSceneHoverEnter);
    QCOMPARE(entered.count(), 1);
    QImage image = f.render();
    QCOMPARE(pixelAt(image, 70, 40), hover);
    QCOMPARE(pixelAt(image, 70, 20), QColor(Qt::black));

    hoverOn(QEvent::GraphicsSceneHoverLeave);
    QCOMPARE(left.count(), 1);
    image = f.render();
    QCOMPARE(pixelAt(image, 70, 40), group);
    QCOMPARE(pixelAt(image, 70, 20), QColor(Qt::gray));

    // A highlighted item keeps its pen under the pointer.
    f.item->setGroupHighLight(false);
    f.item->setHighLight(DeviceItem::HighLightForward);
    hoverOn(QEvent::GraphicsSceneHoverEnter);
    QCOMPARE(pixelAt(f.render(), 70, 20), QColor(90, 255, 90));
    hoverOn(QEvent::GraphicsSceneHoverLeave);
    image = f.render();
    QCOMPARE(pixelAt(image, 70, 20), QColor(90, 255, 90));
    QCOMPARE(pixelAt(image, 70, 40), white);
}

QTEST_MAIN(tst_DeviceItem)
#include "tst_deviceitem.moc"
