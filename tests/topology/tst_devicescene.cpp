#include "rendering.h"

#include <topology/devicegraphicsview.h>
#include <topology/devicescene.h>
#include <topology/linkarrow.h>

#include <QtTest>

#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QTimer>

using LinkList = QList<QPair<unsigned short, unsigned short>>;

class tst_DeviceScene : public QObject
{
    Q_OBJECT
private slots:
    void addAndLookUp();
    void stacking_data();
    void stacking();
    void linkDrawing_data();
    void linkDrawing();
    void dragMovesWithinTheArea();
    void linkListFollowsDeletions();
    void alarmBlinking();
    void highlightFollowsSelection();
    void contextMenuAndDoubleClick();
};

namespace {

// Units 1, 2 and 3 of 100 × 40 at (50, 50), (300, 50) and (50, 300), shown
// 1:1 in a view whose origin is the scene's.
struct Fixture
{
    DeviceScene scene;
    DeviceGraphicsView view {&scene};

    Fixture()
    {
        scene.setSceneRect(0, 0, 800, 600);
        scene.addDeviceItem(1, "dimension: 5x2", QPointF(50, 50), -1.0);
        scene.addDeviceItem(2, "dimension: 5x2", QPointF(300, 50), -1.0);
        scene.addDeviceItem(3, "dimension: 5x2", QPointF(50, 300), -1.0);
        view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.resize(840, 640);
        view.show();
    }
    QWidget *viewport() { return view.viewport(); }
    QPoint at(qreal x, qreal y) { return view.mapFromScene(QPointF(x, y)); }
    void drag(QPointF from, QPointF to, Qt::MouseButton button = Qt::LeftButton)
    {
        // Sent directly: QTest moves carry no buttons on widgets, and it
        // warns about presses on empty space that nothing accepts.
        send(QEvent::MouseButtonPress, from, button, button);
        send(QEvent::MouseMove, to, Qt::NoButton, button);
        send(QEvent::MouseButtonRelease, to, button, Qt::NoButton);
    }
    void send(QEvent::Type type, QPointF scenePos, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        // The scene finds items through the global position.
        const QPoint pos = at(scenePos.x(), scenePos.y());
        QMouseEvent event(type, pos, viewport()->mapToGlobal(pos), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(viewport(), &event);
    }
    void clickEmptySpace()
    {
        send(QEvent::MouseButtonPress, QPointF(600, 500), Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, QPointF(600, 500), Qt::LeftButton, Qt::NoButton);
    }
    void contextMenuAt(qreal x, qreal y)
    {
        QContextMenuEvent event(QContextMenuEvent::Mouse, at(x, y), viewport()->mapToGlobal(at(x, y)));
        QApplication::sendEvent(viewport(), &event);
    }
    DeviceItem *unit(unsigned short key) { return scene.getDeviceItem(key); }
};

int countOfType(const QGraphicsScene &scene, int type)
{
    const QList<QGraphicsItem *> items = scene.items();
    return int(
        std::count_if(items.cbegin(), items.cend(), [type](QGraphicsItem *i) { return i->type() == type; }));
}

} // namespace

void tst_DeviceScene::addAndLookUp()
{
    Fixture f;
    QCOMPARE(f.scene.getItemPos(2), QPointF(300, 50));
    QCOMPARE(f.scene.getItemZ(2), 0.0);
    QCOMPARE(f.scene.getItemPos(99), QPointF(0, 0));
    QCOMPARE(f.scene.getItemZ(99), 0.0);

    f.scene.addDeviceItem(4, "dimension: 2x2", QPointF(500, 400), -0.999);
    QCOMPARE(f.scene.getItemZ(4), -0.999);
    QCOMPARE(f.unit(4)->polygon(), QPolygonF(QRectF(0, 0, 40, 40)));

    // A second item under a key hides the first, which stays on the scene.
    DeviceItem *first = f.unit(4);
    f.scene.addDeviceItem(4, "dimension: 3x3", QPointF(600, 400), 2.0);
    QCOMPARE(countOfType(f.scene, 65551), 5);
    QVERIFY(f.unit(4) != first);
    QCOMPARE(f.scene.getItemPos(4), QPointF(600, 400));
    QCOMPARE(first->scene(), &f.scene);

    f.scene.setFrontPanel(1, "dimension: 4x1; tooltip: new");
    QCOMPARE(f.unit(1)->polygon(), QPolygonF(QRectF(0, 0, 80, 20)));
    QCOMPARE(f.unit(1)->toolTip(), QStringLiteral(" new"));
    f.scene.setFrontPanel(99, "dimension: 1x1");
    f.scene.removeDeviceItem(99);
    QCOMPARE(countOfType(f.scene, 65551), 5);
    f.scene.removeDeviceItem(4);
    QCOMPARE(countOfType(f.scene, 65551), 4);
    QCOMPARE(f.unit(4), nullptr);
}

void tst_DeviceScene::stacking_data()
{
    QTest::addColumn<QList<double>>("others"); // z of devices overlapping unit 1
    QTest::addColumn<double>("start");
    QTest::addColumn<bool>("front");
    QTest::addColumn<double>("expected");

    QTest::newRow("front over nothing") << QList<double>() << 5.0 << true << 0.0;
    QTest::newRow("front over 0.0 and 0.5") << QList<double> {0.0, 0.5} << 0.0 << true << 0.6;
    QTest::newRow("front over lower ones") << QList<double> {-3.0} << -5.0 << true << 0.0;
    QTest::newRow("back under nothing") << QList<double>() << -2.0 << false << 0.0;
    QTest::newRow("back under 0.0 and -0.3") << QList<double> {0.0, -0.3} << 1.0 << false << -0.4;
    QTest::newRow("back under higher ones") << QList<double> {2.0} << 4.0 << false << 0.0;
}

void tst_DeviceScene::stacking()
{
    QFETCH(QList<double>, others);
    QFETCH(double, start);
    QFETCH(bool, front);
    QFETCH(double, expected);

    Fixture f;
    // A link under unit 1 (z -1000) must not count.
    f.scene.addArrowLink(1, 3);
    unsigned short key = 10;
    for (double z : qAsConst(others))
        f.scene.addDeviceItem(key++, "dimension: 2x2", QPointF(80, 60), z);
    f.unit(1)->setZValue(start);

    // Nothing selected: nothing changes.
    front ? f.scene.bringToFront() : f.scene.sendToBack();
    QCOMPARE(f.scene.getItemZ(1), start);

    f.scene.setSelected(1);
    front ? f.scene.bringToFront() : f.scene.sendToBack();
    QVERIFY2(qFuzzyCompare(1 + f.scene.getItemZ(1), 1 + expected),
        qPrintable(QString::number(f.scene.getItemZ(1))));
}

void tst_DeviceScene::linkDrawing_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<LinkList>("links");
    QTest::addColumn<int>("button");

    QTest::newRow("between two units")
        << QPointF(100, 70) << QPointF(350, 80) << LinkList {{1, 2}} << int(Qt::LeftButton);
    QTest::newRow("backwards") << QPointF(350, 80) << QPointF(60, 310) << LinkList {{2, 3}}
                               << int(Qt::LeftButton);
    // The press handler takes any button, so other drags link as well.
    QTest::newRow("middle button") << QPointF(100, 70) << QPointF(350, 80) << LinkList {{1, 2}}
                                   << int(Qt::MiddleButton);
    QTest::newRow("within one unit") << QPointF(60, 60) << QPointF(140, 80) << LinkList()
                                     << int(Qt::LeftButton);
    QTest::newRow("unit to empty space")
        << QPointF(100, 70) << QPointF(600, 500) << LinkList() << int(Qt::LeftButton);
    QTest::newRow("empty space to unit")
        << QPointF(600, 500) << QPointF(100, 70) << LinkList() << int(Qt::LeftButton);
}

void tst_DeviceScene::linkDrawing()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(LinkList, links);
    QFETCH(int, button);

    Fixture f;
    f.scene.setInsertMode(DeviceScene::LinkMode);
    const int itemCount = f.scene.items().size();
    f.drag(from, to, Qt::MouseButton(button));
    QCOMPARE(f.scene.getArrowLinkList(), links);
    // No unit was dragged along, and the rubber band is gone.
    QCOMPARE(f.scene.getItemPos(1), QPointF(50, 50));
    QCOMPARE(f.scene.getItemPos(2), QPointF(300, 50));
    QCOMPARE(f.scene.items().size(), itemCount + links.size());

    if (links == LinkList {{1, 2}}) {
        // Beneath both units: hidden by unit 1's panel, visible between them.
        const QImage image = renderScene(&f.scene, QRect(0, 0, 800, 600));
        QCOMPARE(pixelAt(image, 200, 77), QColor(Qt::black));
        QCOMPARE(pixelAt(image, 130, 77), QColor(Qt::white));
    }
}

void tst_DeviceScene::dragMovesWithinTheArea()
{
    Fixture f;
    QSignalSpy selected(f.unit(1), &DeviceItem::selected);
    f.drag(QPointF(60, 60), QPointF(90, 80));
    QCOMPARE(f.scene.getItemPos(1), QPointF(80, 70));
    QCOMPARE(selected.count(), 1);
    QCOMPARE(f.scene.getSelectedDevices(), QList<unsigned short> {1});
    f.drag(QPointF(90, 80), QPointF(5, 80));
    QCOMPARE(f.scene.getItemPos(1), QPointF(0, 70));
}

void tst_DeviceScene::linkListFollowsDeletions()
{
    Fixture f;
    f.scene.addArrowLink(1, 2);
    f.scene.addArrowLink(2, 3);
    f.scene.addArrowLink(1, 3);
    f.scene.addArrowLink(1, 99);
    f.scene.addArrowLink(1, 3); // no check for an existing link
    QCOMPARE(f.scene.getArrowLinkList(), (LinkList {{1, 2}, {2, 3}, {1, 3}, {1, 3}}));
    QCOMPARE(countOfType(f.scene, 65540), 4);

    f.scene.removeDeviceItem(2);
    QCOMPARE(f.scene.getArrowLinkList(), (LinkList {{1, 3}, {1, 3}}));
    QCOMPARE(countOfType(f.scene, 65540), 2);
    QCOMPARE(f.unit(1)->getArrows().size(), 2);

    LinkArrow *link = f.unit(1)->getArrows().first();
    link->setSelected(true);
    f.unit(1)->setSelected(true);
    f.scene.removeSelectedArrows();
    QCOMPARE(f.scene.getArrowLinkList(), (LinkList {{1, 3}}));
    QCOMPARE(f.unit(3)->getArrows().size(), 1);
    QCOMPARE(f.scene.getSelectedDevices(), QList<unsigned short> {1});

    // A unit deleted behind the scene's back takes its key and links along.
    delete f.unit(3);
    QCOMPARE(f.scene.getArrowLinkList(), LinkList());
    QCOMPARE(f.unit(3), nullptr);
    QVERIFY(f.unit(1)->getArrows().isEmpty());
}

void tst_DeviceScene::alarmBlinking()
{
    Fixture f;
    QSignalSpy toggled(&f.scene, &DeviceScene::togleAlarm);
    auto *timer = f.scene.findChild<QTimer *>();
    QVERIFY(timer);
    auto frame = [&f]() { return pixelAt(renderScene(&f.scene, QRect(0, 0, 400, 100)), 100, 50); };

    QHash<unsigned short, Core::AlarmType> alarms {{1, Core::ALARM_OK}, {2, Core::ALARM_OK}};
    f.scene.setAlarmMap(alarms);
    QCOMPARE(toggled.count(), 1);
    QCOMPARE(toggled.takeFirst().at(0).toBool(), true);
    QVERIFY(!timer->isActive());

    alarms[1] = Core::ALARM_MINOR;
    alarms[99] = Core::ALARM_MAJOR; // unknown keys are skipped
    QElapsedTimer clock;
    clock.start();
    f.scene.setAlarmMap(alarms);
    QCOMPARE(f.unit(1)->getAlarm(), Core::ALARM_MINOR);
    QVERIFY(timer->isActive());
    QCOMPARE(toggled.count(), 0);
    QCOMPARE(frame(), QColor(Qt::gray)); // shown only from the next phase on

    QVERIFY(toggled.wait(2000));
    QVERIFY(clock.elapsed() >= 450);
    QCOMPARE(toggled.takeFirst().at(0).toBool(), true);
    QCOMPARE(frame(), QColor(Qt::gray));
    QVERIFY(toggled.wait(2000));
    QCOMPARE(toggled.takeFirst().at(0).toBool(), false);
    QCOMPARE(frame(), QColor(Qt::darkYellow));

    alarms[1] = Core::ALARM_OK;
    alarms.remove(99);
    f.scene.setAlarmMap(alarms);
    QVERIFY(!timer->isActive());
    QCOMPARE(toggled.takeFirst().at(0).toBool(), true);
    QCOMPARE(frame(), QColor(Qt::gray));
}

void tst_DeviceScene::highlightFollowsSelection()
{
    Fixture f;
    f.scene.addArrowLink(1, 2);
    f.scene.addArrowLink(2, 3);
    auto modes = [&f]() {
        return QList<int> {
            f.unit(1)->getHighLightMode(), f.unit(2)->getHighLightMode(), f.unit(3)->getHighLightMode()};
    };

    // Stored without a selection, so the next selection is not highlighted.
    f.scene.setHighlight(DeviceItem::HighLightOff);
    f.scene.setSelected(1);
    QCOMPARE(modes(), (QList<int> {3, 3, 3}));

    f.scene.setHighlight(DeviceItem::HighLightForward);
    QCOMPARE(modes(), (QList<int> {0, 0, 0}));
    f.scene.setSelected(3);
    QCOMPARE(modes(), (QList<int> {3, 3, 0}));

    // Off clears what was applied but keeps the mode for the next selection.
    f.scene.setHighlightOff();
    QCOMPARE(modes(), (QList<int> {3, 3, 3}));
    f.scene.setSelected(2);
    QCOMPARE(modes(), (QList<int> {3, 0, 0}));

    // A click on empty space clears selection and highlight.
    f.clickEmptySpace();
    QVERIFY(f.scene.selectedItems().isEmpty());
    QCOMPARE(modes(), (QList<int> {3, 3, 3}));

    f.scene.setHighlightGroup({1, 99}, true);
    QVERIFY(f.unit(1)->isGroupHighLighted());
    QVERIFY(!f.unit(2)->isGroupHighLighted());
    QCOMPARE(pixelAt(renderScene(&f.scene, QRect(0, 0, 400, 100)), 100, 70), QColor(227, 175, 147));
    f.scene.setHighlightGroup({1}, false);
    QVERIFY(!f.unit(1)->isGroupHighLighted());
}

void tst_DeviceScene::contextMenuAndDoubleClick()
{
    Fixture f;
    f.scene.addArrowLink(1, 2);
    QSignalSpy menu(&f.scene, &DeviceScene::contextMenu);
    QSignalSpy linkMenu(&f.scene, &DeviceScene::contextMenuLink);
    QSignalSpy doubleClick(&f.scene, &DeviceScene::doubleClick);

    f.unit(1)->setSelected(true);
    f.contextMenuAt(320, 60);
    QCOMPARE(menu.count(), 1);
    QCOMPARE(menu.at(0).at(0).toPointF(), QPointF(320, 60));
    QCOMPARE(menu.at(0).at(1).value<unsigned short>(), 2);
    QCOMPARE(f.scene.getSelectedDevices(), QList<unsigned short> {2});

    f.contextMenuAt(220, 77);
    QCOMPARE(linkMenu.count(), 1);
    QCOMPARE(linkMenu.at(0).at(0).toPointF(), QPointF(220, 77));
    QCOMPARE(linkMenu.at(0).at(1).value<unsigned short>(), 1);
    QCOMPARE(linkMenu.at(0).at(2).value<unsigned short>(), 2);
    QCOMPARE(f.scene.getSelectedDevices(), QList<unsigned short>());

    f.clickEmptySpace();
    f.contextMenuAt(600, 500);
    f.send(QEvent::MouseButtonDblClick, QPointF(600, 500), Qt::LeftButton, Qt::LeftButton);
    QCOMPARE(menu.count() + linkMenu.count() + doubleClick.count(), 2);

    QTest::mouseClick(f.viewport(), Qt::LeftButton, {}, f.at(60, 310));
    QTest::mouseDClick(f.viewport(), Qt::LeftButton, {}, f.at(60, 310));
    QCOMPARE(doubleClick.count(), 1);
    QCOMPARE(doubleClick.at(0).at(0).value<unsigned short>(), 3);
}

QTEST_MAIN(tst_DeviceScene)
#include "tst_devicescene.moc"
