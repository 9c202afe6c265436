#include "testdevice.h"

#include <device/devicemapitem.h>
#include <device/map.h>
#include <device/mapserialise.h>

#include <QElapsedTimer>
#include <QItemSelectionModel>
#include <QMetaMethod>
#include <QPointer>
#include <QStandardItem>
#include <QStandardItemModel>
#include <QtTest>

#include <ctime>

using KeyList = QList<unsigned short>;

Q_DECLARE_METATYPE(KeyList)

namespace {
constexpr int KeyRole = Qt::UserRole + 1;

void flushDeletions()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QStringList rowTexts(QStandardItem *parent)
{
    QStringList texts;
    for (int row = 0; row < parent->rowCount(); ++row)
        texts << parent->child(row)->text();
    return texts;
}

// Processor time of this thread: the machine is shared, so wall time says
// more about the neighbours than about the map.
class CpuClock
{
public:
    void start() { begin = now(); }
    qint64 restart()
    {
        const qint64 t = now();
        const qint64 elapsed = t - begin;
        begin = t;
        return elapsed;
    }

private:
    static qint64 now()
    {
#if defined(Q_OS_UNIX)
        timespec ts {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
        return qint64(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
#else
        return QDateTime::currentMSecsSinceEpoch();
#endif
    }
    qint64 begin = 0;
};

#if defined(__SANITIZE_ADDRESS__)
constexpr int TimeBudgetMs = 5000;
#else
constexpr int TimeBudgetMs = 1000;
#endif
} // namespace

class tst_Map : public QObject
{
    Q_OBJECT
private slots:
    void keysCountUpAndWrap();
    void explicitKeyTakesOver();
    void refusesNullAndRepeatedDescriptor();
    void unitNeverUnderUnit();
    void groupFromSelection();
    void findItemCutsToSixteenBits();
    void renameItem();
    void removeGroupWithNestedUnits();
    void deleteDevice();
    void containsAddress_data();
    void containsAddress();
    void containsWithName();
    void requestRoundTrip();
    void answerRunsOnlyFromEventLoop();
    void answerForRemovedUnitIsDropped();
    void relays_data();
    void relays();
    void removedUnitIsNoLongerRelayed();
    void addressCheckCycle();
    void scanEmptyMap();
    void scanThreeUnits();
    void scanEndsAtBusyKey();
    void scanEndsAtDepartedKey();
    void stopScan();
    void alarms();
    void serialStateRouted();
    void metaObjects();
    void scale();
};

void tst_Map::keysCountUpAndWrap()
{
    Map map;
    QSignalSpy count(&map, &Map::activeDeviceCountChanged);
    QList<TestDevice *> devices;
    for (int i = 0; i < 6; ++i)
        devices << new TestDevice;
    QCOMPARE(map.addItem(QModelIndex(), devices[0], {}), (unsigned short)1);
    QCOMPARE(map.addItem(QModelIndex(), devices[1], {}), (unsigned short)2);
    QCOMPARE(count.count(), 2);
    QCOMPARE(count.at(1).at(0).toUInt(), 2u);

    QCOMPARE(map.addItem(QModelIndex(), devices[2], 65535, {}), (unsigned short)65535);
    QCOMPARE(map.addItem(QModelIndex(), devices[3], {}), (unsigned short)0);
    QCOMPARE(map.addItem(QModelIndex(), devices[4], {}), (unsigned short)1);
    // Key 1 was taken over: four units, five rows.
    QCOMPARE(map.getDeviceCount(), 4);
    QCOMPARE(map.getModel()->rowCount(), 5);

    const QVector<QString> strings {QStringLiteral("a"), QStringLiteral("b")};
    const unsigned short key = map.addItem(QModelIndex(), devices[5], strings);
    QCOMPARE(map.getMapItem(key)->getStrings(), strings);
    QCOMPARE(map.getMapItem(key)->getKey(), uint(key));
    QCOMPARE(map.getMapItem(key)->getFirstNumber(), 0.0);
    QCOMPARE(map.getMapItem(key)->getSecondNumber(), 0.0);
    QCOMPARE(map.getMapItem(key)->parent(), &map);
    QCOMPARE(map.getDevice(1), devices[4]);
    qDeleteAll(devices);
}

void tst_Map::explicitKeyTakesOver()
{
    Map map;
    auto *hundred = new TestDevice;
    auto *forty = new TestDevice;
    map.addItem(QModelIndex(), hundred, 100, {});
    map.addItem(QModelIndex(), forty, 40, {});
    auto *next = new TestDevice;
    QCOMPARE(map.addItem(QModelIndex(), next, {}), (unsigned short)41);

    auto *replacement = new TestDevice;
    QCOMPARE(map.addItem(QModelIndex(), replacement, 100, {}), (unsigned short)100);
    QCOMPARE(map.getDevice(100), replacement);
    QCOMPARE(map.getDeviceCount(), 3);
    QCOMPARE(map.getModel()->rowCount(), 4);
    QCOMPARE(map.getModel()->item(0)->data(KeyRole).toInt(), 100);
    QCOMPARE(map.getModel()->item(3)->data(KeyRole).toInt(), 100);
    // The first row with the key is the one found.
    QCOMPARE(map.getItemIndex(100).row(), 0);

    delete hundred;
    delete forty;
    delete next;
    delete replacement;
}

void tst_Map::refusesNullAndRepeatedDescriptor()
{
    Map map;
    QCOMPARE(map.addItem(QModelIndex(), nullptr, {}), (unsigned short)0);
    auto *device = new TestDevice;
    QCOMPARE(map.addItem(QModelIndex(), device, {}), (unsigned short)1);
    QCOMPARE(map.addItem(QModelIndex(), device, {}), (unsigned short)0);
    QCOMPARE(map.getDeviceCount(), 1);
    QCOMPARE(map.getModel()->rowCount(), 1);
    delete device;
}

void tst_Map::unitNeverUnderUnit()
{
    Map map;
    auto *first = new TestDevice;
    first->setParameter(DeviceDescriptor::DP_NAME, QStringLiteral("First"));
    map.addItem(QModelIndex(), first, {});
    QStandardItem *group = map.addGroup(QModelIndex(), QStringLiteral("Site A"));
    QCOMPARE(group->data(KeyRole).toInt(), -1);
    QVERIFY(!group->icon().isNull());

    auto *inside = new TestDevice;
    inside->setParameter(DeviceDescriptor::DP_NAME, QStringLiteral("Inside"));
    const unsigned short insideKey = map.addItem(group->index(), inside, {});
    // With a unit selected the new unit and group go beside it.
    auto *beside = new TestDevice;
    beside->setParameter(DeviceDescriptor::DP_NAME, QStringLiteral("Beside"));
    map.addItem(map.getItemIndex(insideKey), beside, {});
    map.addGroup(map.getItemIndex(insideKey), QStringLiteral("Sub"));
    // A top-level unit's siblings are at the top level.
    auto *top = new TestDevice;
    top->setParameter(DeviceDescriptor::DP_NAME, QStringLiteral("Top"));
    map.addItem(map.getItemIndex(1), top, {});

    QStandardItem *root = map.getModel()->invisibleRootItem();
    QCOMPARE(rowTexts(root), (QStringList {"First", "Site A", "Top"}));
    QCOMPARE(rowTexts(group), (QStringList {"Inside", "Beside", "Sub"}));
    QCOMPARE(root->child(0)->data(KeyRole).toInt(), 1);
    QCOMPARE(root->child(0)->rowCount(), 0);
    QVERIFY(!root->child(0)->icon().isNull());

    for (unsigned short k : map.getDeviceIdList())
        delete map.getDevice(k);
}

void tst_Map::groupFromSelection()
{
    Map map;
    QItemSelectionModel selection(map.getModel());
    QStandardItem *group = map.addGroup(QModelIndex(), QStringLiteral("G"));
    map.addItem(group->index(), new TestDevice, 7, {});

    QCOMPARE(map.addItem(&selection, QStringLiteral("Top")), (unsigned short)7);
    selection.setCurrentIndex(group->index(), QItemSelectionModel::ClearAndSelect);
    map.addItem(&selection, QStringLiteral("In G"));
    selection.setCurrentIndex(map.getItemIndex(7), QItemSelectionModel::ClearAndSelect);
    map.addItem(&selection, QStringLiteral("Beside 7"));
    map.addItem(nullptr, QStringLiteral("No selection model"));

    QCOMPARE(rowTexts(map.getModel()->invisibleRootItem()), (QStringList {"G", "Top", "No selection model"}));
    QCOMPARE(rowTexts(group), (QStringList {"No Name", "In G", "Beside 7"}));
    QCOMPARE(map.getDeviceCount(), 1);
    delete map.getDevice(7);
}

void tst_Map::findItemCutsToSixteenBits()
{
    Map map;
    QStandardItem *root = map.getModel()->invisibleRootItem();
    auto *device = new TestDevice;
    map.addItem(QModelIndex(), device, 3, {});
    QStandardItem *outer = map.addGroup(QModelIndex(), QStringLiteral("Outer"));
    QStandardItem *inner = map.addGroup(outer->index(), QStringLiteral("Inner"));
    map.addGroup(QModelIndex(), QStringLiteral("Later"));

    QCOMPARE(map.findItem(root, 65535), outer);
    QCOMPARE(map.findItem(outer, 65535), outer);
    QCOMPARE(map.findItem(inner, 65535), inner);
    QCOMPARE(map.findItem(root, 0), root);
    QCOMPARE(map.findItem(root, 3), root->child(0));
    QCOMPARE(map.findItem(root, 4), nullptr);
    QCOMPARE(map.findItem(nullptr, 3), nullptr);
    QCOMPARE(map.getItemIndex(65535), outer->index());
    QVERIFY(!map.getItemIndex(0).isValid());
    QVERIFY(!map.getItemIndex(4).isValid());

    KeyList keys;
    map.getGroupItemList(QModelIndex(), keys);
    QVERIFY(keys.isEmpty());
    map.getGroupItemList(outer->index(), keys);
    QVERIFY(keys.isEmpty());
    delete device;
}

void tst_Map::renameItem()
{
    Map map;
    auto *device = new TestDevice;
    map.addItem(QModelIndex(), device, 9, {});
    QStandardItem *group = map.addGroup(QModelIndex(), QStringLiteral("G"));

    map.renameItem(map.getItemIndex(9), QStringLiteral("Exchange 9"));
    QCOMPARE(map.getModel()->item(0)->text(), QStringLiteral("Exchange 9"));
    QCOMPARE(device->getParameter(DeviceDescriptor::DP_NAME).toString(), QStringLiteral("Exchange 9"));

    map.renameItem(group->index(), QStringLiteral("Region"));
    QCOMPARE(group->text(), QStringLiteral("Region"));
    QCOMPARE(device->getParameter(DeviceDescriptor::DP_NAME).toString(), QStringLiteral("Exchange 9"));

    map.renameItem(QModelIndex(), QStringLiteral("ignored"));
    delete device;
}

void tst_Map::removeGroupWithNestedUnits()
{
    Map map;
    // G { 1, H { 2, 3 }, 4 }, 5 beside G
    QStandardItem *g = map.addGroup(QModelIndex(), QStringLiteral("G"));
    QList<QPointer<TestDevice>> devices;
    for (int i = 0; i < 5; ++i)
        devices << new TestDevice;
    map.addItem(g->index(), devices[0], {});
    QStandardItem *h = map.addGroup(g->index(), QStringLiteral("H"));
    map.addItem(h->index(), devices[1], {});
    map.addItem(h->index(), devices[2], {});
    map.addItem(g->index(), devices[3], {});
    map.addItem(QModelIndex(), devices[4], {});

    KeyList listed;
    map.getGroupItemList(g->index(), listed);
    QCOMPARE(listed, (KeyList {1, 2, 3, 4}));

    QSignalSpy count(&map, &Map::activeDeviceCountChanged);
    const KeyList removed = map.remove(g->index());
    QCOMPARE(removed, (KeyList {1, 2, 3, 4}));
    QCOMPARE(count.count(), 4);
    QCOMPARE(count.at(0).at(0).toUInt(), 4u);
    QCOMPARE(count.at(3).at(0).toUInt(), 1u);
    QCOMPARE(map.getModel()->rowCount(), 1);
    QCOMPARE(map.getDeviceIdList(), KeyList {5});
    QVERIFY(!map.getDevice(2));

    // Deleted later, not at once.
    QVERIFY(devices[0] && devices[3]);
    flushDeletions();
    for (int i = 0; i < 4; ++i)
        QVERIFY(!devices[i]);
    QVERIFY(devices[4]);
    QVERIFY(map.remove(QModelIndex()).isEmpty());
    delete devices[4];
}

void tst_Map::deleteDevice()
{
    Map map;
    QStandardItem *group = map.addGroup(QModelIndex(), QStringLiteral("G"));
    QPointer<TestDevice> device = new TestDevice;
    map.addItem(group->index(), device, {});

    QVERIFY(!map.deleteDevice(2));
    // 65535 names the first group only through the key role's cut.
    QVERIFY(!map.deleteDevice(65535));
    QCOMPARE(group->rowCount(), 1);

    QVERIFY(map.deleteDevice(1));
    QCOMPARE(group->rowCount(), 0);
    QVERIFY(!map.contains((unsigned short)1));
    flushDeletions();
    QVERIFY(!device);
    QVERIFY(!map.deleteDevice(1));
}

void tst_Map::containsAddress_data()
{
    QTest::addColumn<QString>("unitAddress");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<bool>("found");

    QTest::newRow("leading zeros") << "005"
                                   << "5" << true;
    QTest::newRow("same number") << "5"
                                 << "5" << true;
    QTest::newRow("asked with zeros") << "5"
                                      << "05" << true;
    QTest::newRow("other number") << "6"
                                  << "5" << false;
    QTest::newRow("four characters are exact") << "5"
                                               << "0005" << false;
    QTest::newRow("ip exact") << "10.0.0.1"
                              << "10.0.0.1" << true;
    QTest::newRow("ip differs") << "10.0.0.1"
                                << "10.0.0.2" << false;
    QTest::newRow("ip zero-padded") << "10.0.0.1"
                                    << "10.0.0.01" << false;
    QTest::newRow("unparsable asked counts as 0") << "0"
                                                  << "abc" << true;
    QTest::newRow("unparsable unit never matches") << "abc"
                                                   << "abc" << false;
    QTest::newRow("empty asked counts as 0") << "000"
                                             << "" << true;
    QTest::newRow("empty unit") << ""
                                << "0" << false;
}

void tst_Map::containsAddress()
{
    QFETCH(QString, unitAddress);
    QFETCH(QString, asked);
    QFETCH(bool, found);

    Map map;
    QVERIFY(!map.contains(asked));
    auto *device = new TestDevice;
    device->setParameter(DeviceDescriptor::DP_ADDRESS, unitAddress);
    map.addItem(QModelIndex(), device, {});
    QCOMPARE(map.contains(asked), found);
    QCOMPARE(map.contains(asked, unitAddress), false);
    QCOMPARE(map.contains(unitAddress, unitAddress), false);
    delete device;
}

void tst_Map::containsWithName()
{
    Map map;
    auto *device = new TestDevice(QStringLiteral("12"));
    device->setDeviceTypeCode(0x2A);
    map.addItem(QModelIndex(), device, {});
    QVERIFY(map.containsWithName(QStringLiteral("012"), 0x2A));
    QVERIFY(!map.containsWithName(QStringLiteral("12"), 0x2B));
    QVERIFY(!map.containsWithName(QStringLiteral("13"), 0x2A));
    delete device;
}

void tst_Map::requestRoundTrip()
{
    Map map;
    auto *device = new TestDevice;
    const unsigned short key = map.addItem(QModelIndex(), device, {});
    QSignalSpy requests(&map, &Map::request);

    const QByteArray bytes("\x01\x03\x00\x10\x00\x02", 6);
    device->sendRequest(bytes);
    QCOMPARE(requests.count(), 0);
    QVERIFY(requests.wait(1000));
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.at(0).at(0).toInt(), int(key));
    QCOMPARE(requests.at(0).at(1).toByteArray(), bytes);

    const QByteArray reply("\x01\x03\x04\x00\x2A\x00\x00", 7);
    map.answer(key, reply);
    QTRY_COMPARE(device->answers.size(), 1);
    QCOMPARE(device->answers.first(), reply);

    map.replyError(key);
    QTRY_COMPARE(device->count(QStringLiteral("setError()")), 1);

    // Unknown keys go nowhere.
    map.answer(key + 1, reply);
    map.replyError(key + 1);
    QCoreApplication::processEvents();
    QCOMPARE(device->answers.size(), 1);
    QCOMPARE(device->count(QStringLiteral("setError()")), 1);
    delete device;
}

void tst_Map::answerRunsOnlyFromEventLoop()
{
    Map map;
    auto *device = new TestDevice;
    const unsigned short key = map.addItem(QModelIndex(), device, {});
    map.answer(key, QByteArray("A"));
    map.replyError(key);
    map.answer(key, QByteArray("B"));
    QVERIFY(device->calls.isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(device->calls, (QStringList {"setData()", "setError()", "setData()"}));
    QCOMPARE(device->answers, (QList<QByteArray> {"A", "B"}));
    delete device;
}

void tst_Map::answerForRemovedUnitIsDropped()
{
    Map map;
    QPointer<TestDevice> device = new TestDevice;
    QPointer<TestDevice> other = new TestDevice;
    const unsigned short key = map.addItem(QModelIndex(), device, {});
    const unsigned short otherKey = map.addItem(QModelIndex(), other, {});
    map.answer(key, QByteArray("late"));
    map.replyError(key);
    map.answer(otherKey, QByteArray("on time"));
    QVERIFY(map.deleteDevice(key));
    QCoreApplication::processEvents();
    flushDeletions();
    QVERIFY(!device);
    QCOMPARE(other->answers, QList<QByteArray> {"on time"});
    delete other;
}

void tst_Map::relays_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QVariant>("payload");

    QTest::newRow("front panel") << QByteArray(SIGNAL(frontpanel(unsigned short, QString)))
                                 << QVariant(QStringLiteral("dimension:2,1;"));
    QTest::newRow("system message") << QByteArray(SIGNAL(systemMessage(unsigned short, QString)))
                                    << QVariant(QStringLiteral("Fan failure"));
    QTest::newRow("alarm state") << QByteArray(SIGNAL(alarmStateChanged(unsigned short))) << QVariant();
    QTest::newRow("settings") << QByteArray(SIGNAL(settingsChanged(unsigned short))) << QVariant();
    QTest::newRow("window closed") << QByteArray(SIGNAL(uiClosed(unsigned short))) << QVariant();
    QTest::newRow("serial state") << QByteArray(SIGNAL(serialState(unsigned short, bool))) << QVariant(true);
}

void tst_Map::relays()
{
    QFETCH(QByteArray, signal);
    QFETCH(QVariant, payload);

    Map map;
    auto *bystander = new TestDevice;
    map.addItem(QModelIndex(), bystander, {});
    auto *device = new TestDevice;
    const unsigned short key = map.addItem(QModelIndex(), device, 300, {});
    device->serialOn = true;
    QSignalSpy spy(&map, signal.constData());
    QVERIFY(spy.isValid());

    const QString row = QString::fromLatin1(QTest::currentDataTag());
    if (row == "front panel")
        emit device->frontPanelChanged();
    else if (row == "system message")
        device->announce(payload.toString());
    else if (row == "alarm state")
        device->setAlarmState(Core::ALARM_MINOR);
    else if (row == "settings")
        emit device->interfSettingsChanged();
    else if (row == "window closed")
        emit device->uiClosed();
    else if (row == "serial state")
        emit device->serialState();

    QCOMPARE(spy.count(), 0);
    QVERIFY(spy.wait(1000));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toUInt(), uint(key));
    if (payload.isValid())
        QCOMPARE(spy.at(0).at(1), payload);
    delete device;
    delete bystander;
}

void tst_Map::removedUnitIsNoLongerRelayed()
{
    Map map;
    QSignalSpy requests(&map, &Map::request);
    QSignalSpy alarms(&map, &Map::alarmStateChanged);
    auto *device = new TestDevice;
    const unsigned short key = map.addItem(QModelIndex(), device, {});
    // Emitted before the removal, delivered after it.
    device->sendRequest("x");
    device->setAlarmState(Core::ALARM_MAJOR);
    map.disconnectDevice(key);
    device->sendRequest("y");
    QCoreApplication::processEvents();
    QCOMPARE(requests.count(), 0);
    QCOMPARE(alarms.count(), 0);
    map.disconnectDevice(-1);
    map.disconnectDevice(70000);
    QVERIFY(map.deleteDevice(key));
    flushDeletions();
}

void tst_Map::addressCheckCycle()
{
    Map map;
    auto *first = new TestDevice(QStringLiteral("1"));
    auto *second = new TestDevice(QStringLiteral("10.0.0.2"));
    map.addItem(QModelIndex(), first, {});
    map.addItem(QModelIndex(), second, {});
    QSignalSpy answers(second, &DeviceDescriptor::setIP);

    second->checkAdr(QStringLiteral("001"));
    QCOMPARE(answers.count(), 0);
    QVERIFY(answers.wait(1000));
    QCOMPARE(answers.last().at(0).toBool(), false);

    second->checkAdr(QStringLiteral("10.0.0.3"));
    QVERIFY(answers.wait(1000));
    QCOMPARE(answers.last().at(0).toBool(), true);

    // Its own address is taken as well.
    second->checkAdr(QStringLiteral("10.0.0.2"));
    QVERIFY(answers.wait(1000));
    QCOMPARE(answers.last().at(0).toBool(), false);
    QCOMPARE(answers.count(), 3);
    delete first;
    delete second;
}

void tst_Map::scanEmptyMap()
{
    Map map;
    QSignalSpy polled(&map, &Map::updateAlarmFinished);
    map.startScan();
    QVERIFY(!map.scanInproccess());
    QCOMPARE(polled.count(), 0);
}

void tst_Map::scanThreeUnits()
{
    Map map;
    QList<TestDevice *> devices;
    for (unsigned short key : {11, 12, 13}) {
        devices << new TestDevice;
        map.addItem(QModelIndex(), devices.last(), key, {});
    }
    const KeyList order = map.getDeviceIdList();
    QSignalSpy polled(&map, &Map::updateAlarmFinished);

    map.startScan();
    QVERIFY(map.scanInproccess());
    QCOMPARE(polled.count(), 1);
    QCOMPARE(polled.at(0).at(0).toUInt(), uint(order.at(0)));
    QCOMPARE(
        static_cast<TestDevice *>(map.getDevice(order.at(0)))->calls, QStringList {"updateAlarmStatus(1)"});

    // Any unit's report moves the pass on.
    emit static_cast<TestDevice *>(map.getDevice(order.at(2)))->statusUpdated();
    QCOMPARE(polled.count(), 1);
    QTRY_COMPARE(polled.count(), 2);
    QCOMPARE(polled.at(1).at(0).toUInt(), uint(order.at(1)));
    emit static_cast<TestDevice *>(map.getDevice(order.at(1)))->statusUpdated();
    QTRY_COMPARE(polled.count(), 3);
    QCOMPARE(polled.at(2).at(0).toUInt(), uint(order.at(2)));
    QVERIFY(map.scanInproccess());

    emit static_cast<TestDevice *>(map.getDevice(order.at(2)))->statusUpdated();
    QTRY_VERIFY(!map.scanInproccess());
    QCOMPARE(polled.count(), 3);
    for (TestDevice *device : devices)
        QCOMPARE(device->count(QStringLiteral("updateAlarmStatus(1)")), 1);

    // The index went back to the start: a new pass begins with the first unit.
    map.startScan();
    QCOMPARE(polled.last().at(0).toUInt(), uint(order.at(0)));
    qDeleteAll(devices);
}

void tst_Map::scanEndsAtBusyKey()
{
    Map map;
    QList<TestDevice *> devices;
    for (int i = 0; i < 3; ++i) {
        devices << new TestDevice;
        devices.last()->finishPollAtOnce = true;
        map.addItem(QModelIndex(), devices.last(), {});
    }
    const KeyList order = map.getDeviceIdList();
    map.addDeviceKey(order.at(1));
    map.addDeviceKey(order.at(1));
    map.removeDeviceKey(order.at(1));
    QSignalSpy polled(&map, &Map::updateAlarmFinished);

    map.startScan();
    QTRY_VERIFY(!map.scanInproccess());
    QCOMPARE(polled.count(), 1);
    QCOMPARE(polled.at(0).at(0).toUInt(), uint(order.at(0)));
    QVERIFY(static_cast<TestDevice *>(map.getDevice(order.at(2)))->calls.isEmpty());

    map.removeDeviceKey(order.at(1));
    map.startScan();
    QTRY_VERIFY(!map.scanInproccess());
    QCOMPARE(polled.count(), 4);
    qDeleteAll(devices);
}

void tst_Map::scanEndsAtDepartedKey()
{
    Map map;
    for (int i = 0; i < 3; ++i)
        map.addItem(QModelIndex(), new TestDevice, {});
    const KeyList order = map.getDeviceIdList();
    QSignalSpy polled(&map, &Map::updateAlarmFinished);
    map.startScan();
    auto *first = static_cast<TestDevice *>(map.getDevice(order.at(0)));

    // Removing a unit refreshes the list under the running index, so the
    // pass goes on with what is left.
    QVERIFY(map.deleteDevice(order.at(1)));
    emit first->statusUpdated();
    QTRY_COMPARE(polled.count(), 2);
    QCOMPARE(polled.at(1).at(0).toUInt(), uint(order.at(2)));
    emit first->statusUpdated();
    QTRY_VERIFY(!map.scanInproccess());

    // A report queued by a unit that is gone by then still moves the pass on.
    map.startScan();
    QCOMPARE(polled.count(), 3);
    auto *last = static_cast<TestDevice *>(map.getDevice(order.at(2)));
    emit last->statusUpdated();
    QVERIFY(map.deleteDevice(order.at(2)));
    flushDeletions();
    QTRY_VERIFY(!map.scanInproccess());
    QCOMPARE(polled.count(), 3);
    const KeyList left = map.getDeviceIdList();
    for (unsigned short key : left)
        delete map.getDevice(key);
    flushDeletions();
}

void tst_Map::stopScan()
{
    Map map;
    auto *device = new TestDevice;
    map.addItem(QModelIndex(), device, {});
    map.addItem(QModelIndex(), new TestDevice, {});
    QSignalSpy polled(&map, &Map::updateAlarmFinished);
    map.startScan();
    map.stopScan();
    QVERIFY(!map.scanInproccess());
    emit device->statusUpdated();
    QCoreApplication::processEvents();
    QCOMPARE(polled.count(), 1);
    for (unsigned short key : map.getDeviceIdList())
        delete map.getDevice(key);
}

void tst_Map::alarms()
{
    Map map;
    QVERIFY(map.getAlarmMap().isEmpty());
    auto *a = new TestDevice(QStringLiteral("7"));
    auto *b = new TestDevice(QStringLiteral("7"));
    auto *c = new TestDevice(QStringLiteral("10.1.1.1"));
    map.addItem(QModelIndex(), a, {});
    map.addItem(QModelIndex(), b, {});
    map.addItem(QModelIndex(), c, {});
    c->setAlarmState(Core::ALARM_MAJOR);

    const QHash<unsigned short, Core::AlarmType> levels {
        {1, Core::ALARM_OK}, {2, Core::ALARM_OK}, {3, Core::ALARM_MAJOR}};
    QCOMPARE(map.getAlarmMap(), levels);

    // No numeric match here, and only the first unit met changes.
    map.setAlarm(QStringLiteral("007"), Core::ALARM_MINOR);
    QCOMPARE(a->getAlarmState(), Core::ALARM_OK);
    QCOMPARE(b->getAlarmState(), Core::ALARM_OK);
    map.setAlarm(QStringLiteral("7"), Core::ALARM_MINOR);
    const int changed
        = int(a->getAlarmState() == Core::ALARM_MINOR) + int(b->getAlarmState() == Core::ALARM_MINOR);
    QCOMPARE(changed, 1);
    const unsigned short firstMet
        = map.getDeviceIdList().indexOf(1) < map.getDeviceIdList().indexOf(2) ? 1 : 2;
    QCOMPARE(map.getDevice(firstMet)->getAlarmState(), Core::ALARM_MINOR);
    QCOMPARE(map.getAlarmMap().value(firstMet), Core::ALARM_MINOR);
    delete a;
    delete b;
    delete c;
}

void tst_Map::serialStateRouted()
{
    Map map;
    auto *device = new TestDevice;
    const unsigned short key = map.addItem(QModelIndex(), device, {});
    map.setSerialState(key, true);
    map.setSerialState(key + 1, false);
    QCOMPARE(device->calls, QStringList {"setSerialState(1)"});
    QVERIFY(device->getSerialState());
    delete device;
}

void tst_Map::metaObjects()
{
    const QStringList expected {"request(int,QByteArray)", "frontpanel(ushort,QString)",
        "systemMessage(ushort,QString)", "alarmStateChanged(ushort)", "settingsChanged(ushort)",
        "uiClosed(ushort)", "serialState(ushort,bool)", "updateAlarmFinished(ushort)",
        "activeDeviceCountChanged(uint)", "answer(ushort,QByteArray)", "replyError(ushort)", "startScan()",
        "stopScan()", "disconnectDevice(int)", "setAddress(int)", "newRequest(int)", "frontPanelChange(int)",
        "systemEvent(int)", "alarmStateEvent(int)", "settingsChangeEvent(int)", "uiClosedEvent(int)",
        "serialStateEvent(int)", "scanNextItem()"};
    const QMetaObject &meta = Map::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        QCOMPARE(QString::fromLatin1(method.methodSignature()), expected.at(i));
        QCOMPARE(method.methodType(), i < 9 ? QMetaMethod::Signal : QMetaMethod::Slot);
        if (i >= 9)
            QCOMPARE(method.access(), i < 15 ? QMetaMethod::Public : QMetaMethod::Private);
    }

    for (const QMetaObject *empty : {&DeviceMapItem::staticMetaObject, &MapSerialise::staticMetaObject}) {
        QCOMPARE(empty->methodCount(), empty->methodOffset());
        QCOMPARE(empty->propertyCount(), empty->propertyOffset());
    }
    QCOMPARE(MapSerialise::staticMetaObject.className(), "MapSerialise");
}

void tst_Map::scale()
{
    constexpr int Units = 10000;
    Map map;
    QStandardItem *group = map.addGroup(QModelIndex(), QStringLiteral("All"));
    QList<TestDevice *> devices;
    devices.reserve(Units);
    for (int i = 0; i < Units; ++i) {
        devices << new TestDevice;
        devices.last()->finishPollAtOnce = true;
    }

    QElapsedTimer clock;
    CpuClock cpu;
    clock.start();
    cpu.start();
    for (TestDevice *device : qAsConst(devices))
        map.addItem(group->index(), device, {});
    const qint64 addWallMs = clock.restart();
    const qint64 addMs = cpu.restart();
    QCOMPARE(map.getDeviceCount(), Units);

    QSignalSpy polled(&map, &Map::updateAlarmFinished);
    map.startScan();
    while (map.scanInproccess() && clock.elapsed() < 20000)
        QCoreApplication::processEvents();
    const qint64 scanWallMs = clock.restart();
    const qint64 scanMs = cpu.restart();
    QCOMPARE(polled.count(), Units);

    // Every other unit one by one, from the far end of the tree, then the rest with their group.
    for (int key = Units; key >= 1; key -= 2)
        QVERIFY(map.deleteDevice(static_cast<unsigned short>(key)));
    const KeyList rest = map.remove(group->index());
    flushDeletions();
    const qint64 removeWallMs = clock.restart();
    const qint64 removeMs = cpu.restart();
    QCOMPARE(rest.size(), Units / 2);
    QCOMPARE(map.getDeviceCount(), 0);

    qInfo("10000 units, processor (wall) ms: add %lld (%lld), scan %lld (%lld), remove %lld (%lld)", addMs,
        addWallMs, scanMs, scanWallMs, removeMs, removeWallMs);
    QVERIFY2(addMs < TimeBudgetMs, qPrintable(QString::number(addMs)));
    QVERIFY2(scanMs < TimeBudgetMs, qPrintable(QString::number(scanMs)));
    QVERIFY2(removeMs < TimeBudgetMs, qPrintable(QString::number(removeMs)));
}

QTEST_MAIN(tst_Map)
#include "tst_map.moc"
