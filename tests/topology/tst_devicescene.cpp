#include "rendering.h"

#include <topology/devicegraphicsview.h>
#include <topology/devicescene.h>
#include <topology/linkarrow.h>

#include <QtTest>

#include <QContextMenuEvent>
#include <QTimer>

using LinkList = QList<QPair<unsigned short, unsigned short>>;

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
        view.resize(840, 640);
        view.show();
    }
    QWidget *viewport() { return view.viewport(); }
    QPoint at(QPointF scenePos) { return view.mapFromScene(scenePos); }
    // Sent directly: QTest moves carry no buttons on widgets, and QTest warns
    // about presses on empty space that nothing accepts. The scene finds
    // items through the global position.
    void send(QEvent::Type type, QPointF scenePos, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, at(scenePos), viewport()->mapToGlobal(at(scenePos)), button, buttons, {});
        QApplication::sendEvent(viewport(), &event);
    }
    void drag(QPointF from, QPointF to, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, from, button, button);
        send(QEvent::MouseMove, to, Qt::NoButton, button);
        send(QEvent::MouseButtonRelease, to, button, Qt::NoButton);
    }
    void contextMenuAt(QPointF scenePos)
    {
        QContextMenuEvent event(
            QContextMenuEvent::Mouse, at(scenePos), viewport()->mapToGlobal(at(scenePos)));
        QApplication::sendEvent(viewport(), &event);
    }
    DeviceItem *unit(unsigned short key) { return scene.getDeviceItem(key); }
    QList<int> highlights()
    {
        return {unit(1)->getHighLightMode(), unit(2)->getHighLightMode(), unit(3)->getHighLightMode()};
    }
};

int countOfType(const QGraphicsScene &scene, int type)
{
    const QList<QGraphicsItem *> items = scene.items();
    return int(
        std::count_if(items.cbegin(), items.cend(), [type](QGraphicsItem *i) { return i->type() == type; }));
}

} // namespace

class tst_DeviceScene : public QObject
{
    Q_OBJECT
private slots:
    void addAndLookUp()
    {
        Fixture f;
        QCOMPARE(f.scene.getItemZ(2), 0.0); // -1.0 keeps the default
        QCOMPARE(f.scene.getItemPos(99), QPointF(0, 0));
        f.scene.addDeviceItem(4, "dimension: 2x2", QPointF(500, 400), -0.999);
        QCOMPARE(f.scene.getItemZ(4), -0.999);
        // A second item under a key hides the first, which stays on the scene.
        f.scene.addDeviceItem(4, "dimension: 3x3", QPointF(600, 400), 2.0);
        QCOMPARE(countOfType(f.scene, 65551), 5);
        QCOMPARE(f.scene.getItemPos(4), QPointF(600, 400));
        f.scene.setFrontPanel(1, "dimension: 4x1");
        QCOMPARE(f.unit(1)->polygon(), QPolygonF(QRectF(0, 0, 80, 20)));
        f.scene.removeDeviceItem(99);
        f.scene.removeDeviceItem(4);
        QCOMPARE(countOfType(f.scene, 65551), 4);
    }
    void stacking_data()
    {
        QTest::addColumn<QList<double>>("others"); // z of devices overlapping unit 1
        QTest::addColumn<double>("start");
        QTest::addColumn<bool>("front");
        QTest::addColumn<double>("expected");

        QTest::newRow("front over nothing") << QList<double>() << 5.0 << true << 0.0;
        QTest::newRow("front over 0.0 and 0.5") << QList<double> {0.0, 0.5} << 0.0 << true << 0.6;
        QTest::newRow("back under nothing") << QList<double>() << -2.0 << false << 0.0;
        QTest::newRow("back under 0.0 and -0.3") << QList<double> {0.0, -0.3} << 1.0 << false << -0.4;
    }
    void stacking()
    {
        QFETCH(QList<double>, others);
        QFETCH(double, start);
        QFETCH(bool, front);
        QFETCH(double, expected);

        Fixture f;
        f.scene.addArrowLink(1, 3); // a link under unit 1 (z -1000) must not count
        unsigned short key = 10;
        for (double z : qAsConst(others))
            f.scene.addDeviceItem(key++, "dimension: 2x2", QPointF(80, 60), z);
        f.unit(1)->setZValue(start);

        front ? f.scene.bringToFront() : f.scene.sendToBack();
        QCOMPARE(f.scene.getItemZ(1), start); // nothing selected
        f.scene.setSelected(1);
        front ? f.scene.bringToFront() : f.scene.sendToBack();
        QVERIFY(qFuzzyCompare(1 + f.scene.getItemZ(1), 1 + expected));
    }
    void linkDrawing_data()
    {
        QTest::addColumn<QPointF>("from");
        QTest::addColumn<QPointF>("to");
        QTest::addColumn<int>("button");
        QTest::addColumn<LinkList>("links");

        const int left = Qt::LeftButton;
        QTest::newRow("between two units")
            << QPointF(100, 70) << QPointF(350, 80) << left << LinkList {{1, 2}};
        // The press handler takes any button.
        QTest::newRow("middle button")
            << QPointF(100, 70) << QPointF(350, 80) << int(Qt::MiddleButton) << LinkList {{1, 2}};
        QTest::newRow("within one unit") << QPointF(60, 60) << QPointF(140, 80) << left << LinkList();
        QTest::newRow("unit to empty space") << QPointF(100, 70) << QPointF(600, 500) << left << LinkList();
        QTest::newRow("empty space to unit") << QPointF(600, 500) << QPointF(100, 70) << left << LinkList();
    }
    void linkDrawing()
    {
        QFETCH(QPointF, from);
        QFETCH(QPointF, to);
        QFETCH(int, button);
        QFETCH(LinkList, links);

        Fixture f;
        f.scene.setInsertMode(DeviceScene::LinkMode);
        const int itemCount = f.scene.items().size();
        f.drag(from, to, Qt::MouseButton(button));
        QCOMPARE(f.scene.getArrowLinkList(), links);
        // No unit was dragged along, and the rubber band is gone.
        QCOMPARE(f.scene.getItemPos(1), QPointF(50, 50));
        QCOMPARE(f.scene.items().size(), itemCount + links.size());
        if (links == LinkList {{1, 2}}) {
            // Beneath both units: hidden by unit 1's panel, visible between them.
            const QImage image = renderScene(&f.scene, QRect(0, 0, 400, 100));
            QCOMPARE(pixelAt(image, 200, 77), QColor(Qt::black));
            QCOMPARE(pixelAt(image, 130, 77), QColor(Qt::white));
        }
    }
    void dragMovesWithinTheArea()
    {
        Fixture f;
        QSignalSpy selected(f.unit(1), &DeviceItem::selected);
        f.drag(QPointF(60, 60), QPointF(90, 80));
        QCOMPARE(f.scene.getItemPos(1), QPointF(80, 70));
        QCOMPARE(selected.count(), 1);
        f.drag(QPointF(90, 80), QPointF(5, 80));
        QCOMPARE(f.scene.getItemPos(1), QPointF(0, 70));
    }
    void clearDuringLinkDrag()
    {
        Fixture f;
        f.scene.setInsertMode(DeviceScene::LinkMode);
        f.send(QEvent::MouseButtonPress, QPointF(60, 60), Qt::LeftButton, Qt::LeftButton);
        f.scene.clear(); // deletes the band under the scene's feet
        f.send(QEvent::MouseMove, QPointF(310, 60), Qt::NoButton, Qt::LeftButton);
        f.send(QEvent::MouseButtonRelease, QPointF(310, 60), Qt::LeftButton, Qt::NoButton);
        QVERIFY(f.scene.items().isEmpty());
        QVERIFY(f.scene.getArrowLinkList().isEmpty());
    }
    void linkListFollowsDeletions()
    {
        Fixture f;
        f.scene.addArrowLink(1, 2);
        f.scene.addArrowLink(2, 3);
        f.scene.addArrowLink(1, 99);
        f.scene.addArrowLink(1, 3);
        f.scene.addArrowLink(1, 3); // no check for an existing link
        QCOMPARE(f.scene.getArrowLinkList(), (LinkList {{1, 2}, {2, 3}, {1, 3}, {1, 3}}));

        f.scene.removeDeviceItem(2);
        QCOMPARE(f.scene.getArrowLinkList(), (LinkList {{1, 3}, {1, 3}}));
        QCOMPARE(countOfType(f.scene, 65540), 2);
        f.unit(1)->getArrows().first()->setSelected(true);
        f.unit(1)->setSelected(true);
        f.scene.removeSelectedArrows();
        QCOMPARE(f.scene.getArrowLinkList(), (LinkList {{1, 3}}));
        QCOMPARE(f.unit(3)->getArrows().size(), 1);

        // A unit deleted behind the scene's back takes its key and links along.
        delete f.unit(3);
        QCOMPARE(f.scene.getArrowLinkList(), LinkList());
        QCOMPARE(f.unit(3), nullptr);
        QVERIFY(f.unit(1)->getArrows().isEmpty());
    }
    void alarmBlinking()
    {
        Fixture f;
        QSignalSpy toggled(&f.scene, &DeviceScene::togleAlarm);
        const QTimer *timer = f.scene.findChild<QTimer *>();
        auto frame = [&f]() { return pixelAt(renderScene(&f.scene, QRect(0, 0, 400, 100)), 100, 50); };

        QHash<unsigned short, Core::AlarmType> alarms {{1, Core::ALARM_OK}, {2, Core::ALARM_OK}};
        f.scene.setAlarmMap(alarms);
        QCOMPARE(toggled.takeFirst().at(0).toBool(), true);
        QVERIFY(!timer->isActive());

        alarms[1] = Core::ALARM_MINOR;
        alarms[99] = Core::ALARM_MAJOR; // unknown keys are skipped
        f.scene.setAlarmMap(alarms);
        QCOMPARE(timer->interval(), 500);
        QCOMPARE(frame(), QColor(Qt::gray)); // shown only from the next phase on
        QVERIFY(toggled.wait(2000));
        QCOMPARE(toggled.takeFirst().at(0).toBool(), true);
        QVERIFY(toggled.wait(2000));
        QCOMPARE(toggled.takeFirst().at(0).toBool(), false);
        QCOMPARE(frame(), QColor(Qt::darkYellow));

        alarms[1] = Core::ALARM_OK;
        alarms.remove(99);
        f.scene.setAlarmMap(alarms);
        QVERIFY(!timer->isActive());
        QCOMPARE(frame(), QColor(Qt::gray));
    }
    void highlightFollowsSelection()
    {
        Fixture f;
        f.scene.addArrowLink(1, 2);
        f.scene.addArrowLink(2, 3);

        // Stored without a selection, so the next selection is not highlighted.
        f.scene.setHighlight(DeviceItem::HighLightOff);
        f.scene.setSelected(1);
        QCOMPARE(f.highlights(), (QList<int> {3, 3, 3}));
        f.scene.setHighlight(DeviceItem::HighLightForward);
        QCOMPARE(f.highlights(), (QList<int> {0, 0, 0}));
        f.scene.setSelected(3);
        QCOMPARE(f.highlights(), (QList<int> {3, 3, 0}));
        // Off clears what was applied but keeps the mode for the next selection.
        f.scene.setHighlightOff();
        f.scene.setSelected(2);
        QCOMPARE(f.highlights(), (QList<int> {3, 0, 0}));
        // A press on empty space clears selection and highlight.
        f.send(QEvent::MouseButtonPress, QPointF(600, 500), Qt::LeftButton, Qt::LeftButton);
        QCOMPARE(f.highlights(), (QList<int> {3, 3, 3}));

        f.scene.setHighlightGroup({1, 99}, true);
        QCOMPARE(pixelAt(renderScene(&f.scene, QRect(0, 0, 400, 100)), 100, 70), QColor(227, 175, 147));
    }
    void contextMenuAndDoubleClick()
    {
        Fixture f;
        f.scene.addArrowLink(1, 2);
        QSignalSpy menu(&f.scene, &DeviceScene::contextMenu);
        QSignalSpy linkMenu(&f.scene, &DeviceScene::contextMenuLink);
        QSignalSpy doubleClick(&f.scene, &DeviceScene::doubleClick);

        f.unit(1)->setSelected(true);
        f.contextMenuAt(QPointF(320, 60));
        QCOMPARE(menu.value(0), (QList<QVariant> {QPointF(320, 60), QVariant::fromValue<unsigned short>(2)}));
        QCOMPARE(f.scene.getSelectedDevices(), QList<unsigned short> {2});

        f.contextMenuAt(QPointF(220, 77));
        QCOMPARE(linkMenu.value(0),
            (QList<QVariant> {QPointF(220, 77), QVariant::fromValue<unsigned short>(1),
                QVariant::fromValue<unsigned short>(2)}));
        QCOMPARE(f.scene.getSelectedDevices(), QList<unsigned short>());

        // On empty space with nothing selected, both are swallowed.
        f.send(QEvent::MouseButtonPress, QPointF(600, 500), Qt::LeftButton, Qt::LeftButton);
        f.contextMenuAt(QPointF(600, 500));
        f.send(QEvent::MouseButtonDblClick, QPointF(600, 500), Qt::LeftButton, Qt::LeftButton);
        QCOMPARE(menu.count() + linkMenu.count() + doubleClick.count(), 2);

        QTest::mouseClick(f.viewport(), Qt::LeftButton, {}, f.at(QPointF(60, 310)));
        QTest::mouseDClick(f.viewport(), Qt::LeftButton, {}, f.at(QPointF(60, 310)));
        QCOMPARE(doubleClick.count(), 1);
        QCOMPARE(doubleClick.at(0).at(0).value<unsigned short>(), 3);
    }
};

QTEST_MAIN(tst_DeviceScene)
#include "tst_devicescene.moc"
