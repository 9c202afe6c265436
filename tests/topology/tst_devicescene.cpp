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
        for (unsigned short key : {1, 2, 3})
            scene.addDeviceItem(key, "dimension: 5x2", QPointF(key == 2 ? 300 : 50, key == 3 ? 300 : 50), -1);
        view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
        view.resize(840, 640);
        view.show();
    }
    QPoint at(QPointF scenePos) { return view.mapFromScene(scenePos); }
    // Sent directly: QTest moves carry no buttons on widgets, and QTest warns
    // about presses on empty space that nothing accepts. The scene finds
    // items through the global position.
    void send(QEvent::Type type, QPointF pos, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        const QPoint global = view.viewport()->mapToGlobal(at(pos));
        QMouseEvent mouse(type, at(pos), global, button, buttons, {});
        QContextMenuEvent menu(QContextMenuEvent::Mouse, at(pos), global);
        QApplication::sendEvent(
            view.viewport(), type == QEvent::ContextMenu ? static_cast<QEvent *>(&menu) : &mouse);
    }
    void press(QPointF pos) { send(QEvent::MouseButtonPress, pos, Qt::LeftButton, Qt::LeftButton); }
    DeviceItem *unit(unsigned short key) { return scene.getDeviceItem(key); }
    QList<int> highlights()
    {
        return {unit(1)->getHighLightMode(), unit(2)->getHighLightMode(), unit(3)->getHighLightMode()};
    }
    int count(int type)
    {
        const QList<QGraphicsItem *> items = scene.items();
        return int(
            std::count_if(items.cbegin(), items.cend(), [type](auto *i) { return i->type() == type; }));
    }
    QColor pixel(int x, int y) { return pixelAt(renderScene(&scene, QRect(0, 0, 400, 100)), x, y); }
};

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
        QCOMPARE(f.count(65551), 5);
        QCOMPARE(f.scene.getItemPos(4), QPointF(600, 400));
        f.scene.setFrontPanel(1, "dimension: 4x1");
        QCOMPARE(f.unit(1)->polygon(), QPolygonF(QRectF(0, 0, 80, 20)));
        f.scene.removeDeviceItem(99);
        f.scene.removeDeviceItem(4);
        QCOMPARE(f.count(65551), 4);
    }
    void stacking_data()
    {
        QTest::addColumn<QList<double>>("others"); // z of devices overlapping unit 1
        QTest::addColumn<double>("start");
        QTest::addColumn<bool>("front");
        QTest::addColumn<double>("expected");
        QTest::newRow("front over 0.0 and 0.5") << QList<double> {0.0, 0.5} << 0.0 << true << 0.6;
        QTest::newRow("back under 0.0 and -0.3") << QList<double> {0.0, -0.3} << 1.0 << false << -0.4;
    }
    void stacking()
    {
        QFETCH(QList<double>, others);
        QFETCH(double, start);
        QFETCH(bool, front);
        Fixture f;
        f.scene.addArrowLink(1, 3); // a link under unit 1 (z -1000) must not count
        unsigned short key = 10;
        for (double z : qAsConst(others))
            f.scene.addDeviceItem(key++, "dimension: 2x2", QPointF(80, 60), z);
        f.unit(1)->setZValue(start);
        for (bool selected : {false, true}) { // nothing happens without a selection
            if (selected)
                f.scene.setSelected(1);
            front ? f.scene.bringToFront() : f.scene.sendToBack();
        }
        QFETCH(double, expected);
        QVERIFY(qFuzzyCompare(1 + f.scene.getItemZ(1), 1 + expected));
    }
    void dragging_data()
    {
        QTest::addColumn<bool>("linkMode");
        QTest::addColumn<QPointF>("from");
        QTest::addColumn<QPointF>("to");
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("outcome"); // unit 1's position, then the links

        const int left = Qt::LeftButton;
        const QPointF from(100, 70), none(600, 500);
        QTest::newRow("link between two units") << true << from << QPointF(350, 80) << left << "50,50 1>2";
        QTest::newRow("link within one unit") << true << from << QPointF(140, 80) << left << "50,50";
        QTest::newRow("link to empty space") << true << from << none << left << "50,50";
        QTest::newRow("link from empty space") << true << none << from << left << "50,50";
        QTest::newRow("move") << false << from << QPointF(130, 90) << left << "80,70";
        QTest::newRow("move stops at the edge") << false << from << QPointF(45, 90) << left << "0,70";
    }
    void dragging()
    {
        QFETCH(bool, linkMode);
        QFETCH(int, button);
        Fixture f;
        QSignalSpy selected(f.unit(1), &DeviceItem::selected);
        f.scene.setInsertMode(linkMode ? DeviceScene::LinkMode : DeviceScene::SelectMode);
        const int itemCount = f.scene.items().size();
        const auto pressed = Qt::MouseButton(button);
        QFETCH(QPointF, from);
        QFETCH(QPointF, to);
        f.send(QEvent::MouseButtonPress, from, pressed, pressed);
        f.send(QEvent::MouseMove, to, Qt::NoButton, pressed);
        f.send(QEvent::MouseButtonRelease, to, pressed, Qt::NoButton);
        QString outcome = QString("%1,%2").arg(f.scene.getItemPos(1).x()).arg(f.scene.getItemPos(1).y());
        for (auto link : f.scene.getArrowLinkList())
            outcome += QString(" %1>%2").arg(link.first).arg(link.second);
        QTEST(outcome, "outcome");
        // The rubber band is gone.
        QCOMPARE(f.scene.items().size() - itemCount, f.scene.getArrowLinkList().size());
        if (!linkMode)
            QCOMPARE(selected.count(), 1);
        // Beneath both units: hidden by unit 1's panel, visible between them.
        if (!f.scene.getArrowLinkList().isEmpty())
            QCOMPARE(
                QList<QColor>({f.pixel(200, 77), f.pixel(130, 77)}), QList<QColor>({Qt::black, Qt::white}));
    }
    void clearDuringLinkDrag()
    {
        Fixture f;
        f.scene.setInsertMode(DeviceScene::LinkMode);
        f.press(QPointF(60, 60));
        f.scene.clear(); // deletes the band under the scene's feet
        f.send(QEvent::MouseMove, QPointF(310, 60), Qt::NoButton, Qt::LeftButton);
        f.send(QEvent::MouseButtonRelease, QPointF(310, 60), Qt::LeftButton, Qt::NoButton);
        QVERIFY(f.scene.items().isEmpty());
        QVERIFY(f.scene.getArrowLinkList().isEmpty());
    }
    void linkListFollowsDeletions()
    {
        Fixture f;
        // 99 is unknown; no check for an existing link.
        for (auto link : LinkList {{1, 2}, {2, 3}, {1, 99}, {1, 3}, {1, 3}})
            f.scene.addArrowLink(link.first, link.second);
        QCOMPARE(f.scene.getArrowLinkList(), (LinkList {{1, 2}, {2, 3}, {1, 3}, {1, 3}}));
        f.scene.removeDeviceItem(2);
        QCOMPARE(f.scene.getArrowLinkList(), (LinkList {{1, 3}, {1, 3}}));
        QCOMPARE(f.count(65540), 2);
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
        QHash<unsigned short, Core::AlarmType> alarms {{1, Core::ALARM_OK}, {2, Core::ALARM_OK}};
        f.scene.setAlarmMap(alarms);
        QCOMPARE(toggled.takeFirst().at(0).toBool(), true);
        QVERIFY(!timer->isActive());

        alarms[1] = Core::ALARM_MINOR;
        alarms[99] = Core::ALARM_MAJOR; // unknown keys are skipped
        f.scene.setAlarmMap(alarms);
        QCOMPARE(timer->interval(), 500);
        QCOMPARE(f.pixel(100, 50), QColor(Qt::gray)); // shown only from the next phase on
        QVERIFY(toggled.wait(2000) && toggled.wait(2000));
        QCOMPARE(QList<QVariantList>(toggled), (QList<QVariantList> {{true}, {false}}));
        QCOMPARE(f.pixel(100, 50), QColor(Qt::darkYellow));

        alarms[1] = Core::ALARM_OK;
        alarms.remove(99);
        f.scene.setAlarmMap(alarms);
        QVERIFY(!timer->isActive());
        QCOMPARE(f.pixel(100, 50), QColor(Qt::gray));
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
        f.press(QPointF(600, 500));
        QCOMPARE(f.highlights(), (QList<int> {3, 3, 3}));
        f.scene.setHighlightGroup({1, 99}, true);
        QCOMPARE(f.pixel(100, 70), QColor(227, 175, 147));
    }
    void contextMenuAndDoubleClick()
    {
        Fixture f;
        f.scene.addArrowLink(1, 2);
        QSignalSpy menu(&f.scene, &DeviceScene::contextMenu);
        QSignalSpy linkMenu(&f.scene, &DeviceScene::contextMenuLink);
        QSignalSpy doubleClick(&f.scene, &DeviceScene::doubleClick);
        using Key = unsigned short;

        f.unit(1)->setSelected(true);
        f.send(QEvent::ContextMenu, QPointF(320, 60), Qt::NoButton, Qt::NoButton);
        QCOMPARE(menu.value(0), (QVariantList {QPointF(320, 60), QVariant::fromValue<Key>(2)}));
        QCOMPARE(f.scene.getSelectedDevices(), QList<Key> {2});
        f.send(QEvent::ContextMenu, QPointF(220, 77), Qt::NoButton, Qt::NoButton);
        QCOMPARE(linkMenu.value(0),
            (QVariantList {QPointF(220, 77), QVariant::fromValue<Key>(1), QVariant::fromValue<Key>(2)}));
        QCOMPARE(f.scene.getSelectedDevices(), QList<Key>());

        // On empty space with nothing selected, both are swallowed.
        f.press(QPointF(600, 500));
        f.send(QEvent::ContextMenu, QPointF(600, 500), Qt::NoButton, Qt::NoButton);
        f.send(QEvent::MouseButtonDblClick, QPointF(600, 500), Qt::LeftButton, Qt::LeftButton);
        QCOMPARE(menu.count() + linkMenu.count() + doubleClick.count(), 2);

        QTest::mouseClick(f.view.viewport(), Qt::LeftButton, {}, f.at(QPointF(60, 310)));
        QTest::mouseDClick(f.view.viewport(), Qt::LeftButton, {}, f.at(QPointF(60, 310)));
        QCOMPARE(doubleClick.count(), 1);
        QCOMPARE(doubleClick.value(0).value(0).value<Key>(), Key(3));
    }
};

QTEST_MAIN(tst_DeviceScene)
#include "tst_devicescene.moc"
