// The map, also under field faults: units leaving with traffic still queued,
// keys taken over, silent units, scans over many units or many passes.

#include "metaorder.h"
#include "testdevice.h"

#include <device/devicemapitem.h>
#include <device/map.h>

#include <QItemSelectionModel>
#include <QPointer>
#include <QScopedPointer>
#include <QStandardItem>
#include <QStandardItemModel>
#include <QtTest>

#include <functional>

using KeyList = QList<unsigned short>;

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

TestDevice *named(const QString &name, const QString &address = QString())
{
    auto *device = new TestDevice(address);
    device->setParameter(DeviceDescriptor::DP_NAME, name);
    return device;
}

TestDevice *unitOf(const Map &map, unsigned short key)
{
    return static_cast<TestDevice *>(map.getDevice(key));
}

} // namespace

class tst_Map : public QObject
{
    Q_OBJECT
private slots:
    void keys()
    {
        Map map;
        QList<TestDevice *> devices;
        for (int i = 0; i < 8; ++i)
            devices << new TestDevice;
        QSignalSpy count(&map, &Map::activeDeviceCountChanged);

        QCOMPARE(map.addItem(QModelIndex(), devices[0], {}), (unsigned short)1);
        QCOMPARE(map.addItem(QModelIndex(), devices[1], 100, {}), (unsigned short)100);
        QCOMPARE(map.addItem(QModelIndex(), devices[2], 40, {}), (unsigned short)40);
        QCOMPARE(map.addItem(QModelIndex(), devices[3], {}), (unsigned short)41);
        // The counter runs on from 65535 to 0, then to 1, which is taken over.
        QCOMPARE(map.addItem(QModelIndex(), devices[4], 65535, {}), (unsigned short)65535);
        QCOMPARE(map.addItem(QModelIndex(), devices[5], {}), (unsigned short)0);
        const QVector<QString> strings {QStringLiteral("a"), QStringLiteral("b")};
        QCOMPARE(map.addItem(QModelIndex(), devices[6], strings), (unsigned short)1);
        QCOMPARE(map.getDevice(1), devices[6]);
        QCOMPARE(map.getItemIndex(1).row(), 0);
        QStringList counts;
        for (const auto &args : qAsConst(count))
            counts << args.at(0).toString();
        QCOMPARE(counts.join(' '), QStringLiteral("1 2 3 4 5 6 6"));
        QCOMPARE(map.getMapItem(1)->getStrings(), strings);

        // Null and already registered descriptors are refused.
        QCOMPARE(map.addItem(QModelIndex(), nullptr, {}), (unsigned short)0);
        QCOMPARE(map.addItem(QModelIndex(), devices[3], {}), (unsigned short)0);
        QCOMPARE(map.getModel()->rowCount(), 7);
        qDeleteAll(devices);
    }
    void groupTree()
    {
        Map map;
        QStandardItem *root = map.getModel()->invisibleRootItem();
        map.addItem(QModelIndex(), named("First"), {});
        QStandardItem *site = map.addGroup(QModelIndex(), QStringLiteral("Site"));
        QCOMPARE(site->data(KeyRole).toInt(), -1);
        const unsigned short inside = map.addItem(site->index(), named("Inside"), {});
        // With a unit selected, units and groups go beside it, never under it.
        map.addItem(map.getItemIndex(inside), named("Beside"), {});
        QStandardItem *sub = map.addGroup(map.getItemIndex(inside), QStringLiteral("Sub"));
        map.addItem(map.getItemIndex(1), named("Top"), {});

        QItemSelectionModel selection(map.getModel());
        QCOMPARE(map.addItem(&selection, QStringLiteral("Unselected")), (unsigned short)4);
        selection.setCurrentIndex(site->index(), QItemSelectionModel::ClearAndSelect);
        map.addItem(&selection, QStringLiteral("In site"));
        selection.setCurrentIndex(map.getItemIndex(1), QItemSelectionModel::ClearAndSelect);
        map.addItem(&selection, QStringLiteral("Beside first"));

        QCOMPARE(rowTexts(root), (QStringList {"First", "Site", "Top", "Unselected", "Beside first"}));
        QCOMPARE(rowTexts(site), (QStringList {"Inside", "Beside", "Sub", "In site"}));
        QVERIFY(!root->child(0)->icon().isNull());

        // A group's key of -1 cut to sixteen bits reads as unit 65535; deleting
        // that "unit" must not take the group with it.
        QCOMPARE(map.findItem(root, 65535), site);
        QCOMPARE(map.findItem(root, 0), root);
        QVERIFY(!map.deleteDevice(65535));
        QCOMPARE(root->rowCount(), 5);

        map.renameItem(map.getItemIndex(inside), QStringLiteral("Exchange"));
        map.renameItem(site->index(), QStringLiteral("Region"));
        map.renameItem(QModelIndex(), QStringLiteral("ignored"));
        QCOMPARE(site->child(0)->text() + site->text(), QStringLiteral("ExchangeRegion"));
        QCOMPARE(map.getDevice(inside)->getParameter(DeviceDescriptor::DP_NAME).toString(),
            QStringLiteral("Exchange"));

        // A group takes every unit under it, nested ones too, deleting them later rather than at once.
        QPointer<TestDevice> deep = new TestDevice;
        const unsigned short deepKey = map.addItem(sub->index(), deep, {});
        KeyList listed;
        map.getGroupItemList(site->index(), listed);
        QSignalSpy count(&map, &Map::activeDeviceCountChanged);
        QCOMPARE(map.remove(site->index()), listed);
        QCOMPARE(listed, (KeyList {inside, 3, deepKey}));
        QCOMPARE(count.count(), 3);
        QCOMPARE(count.last().at(0).toInt(), map.getDeviceCount());
        QVERIFY(deep && !map.contains(deepKey));
        flushDeletions();
        QVERIFY(!deep);
        QCOMPARE(rowTexts(root), (QStringList {"First", "Top", "Unselected", "Beside first"}));
        QVERIFY(map.remove(QModelIndex()).isEmpty());
        for (unsigned short key : map.getDeviceIdList())
            delete map.getDevice(key);
    }
    void containsAddress_data()
    {
        QTest::addColumn<QString>("unitAddress");
        QTest::addColumn<QString>("asked");
        QTest::addColumn<bool>("found");

        QTest::newRow("leading zeros") << QString("005") << "5" << true;
        QTest::newRow("four characters are exact") << QString("5") << "0005" << false;
        QTest::newRow("ip zero-padded") << QString("10.0.0.1") << "10.0.0.01" << false;
        QTest::newRow("unparsable asked counts as 0") << QString("0") << "abc" << true;
        QTest::newRow("unparsable unit never matches") << QString("abc") << "abc" << false;
        QTest::newRow("empty unit") << QString() << "0" << false;
    }
    void containsAddress()
    {
        QFETCH(QString, unitAddress);
        QFETCH(QString, asked);
        QFETCH(bool, found);

        Map map;
        auto *device = new TestDevice(unitAddress);
        device->setDeviceTypeCode(0x2A);
        map.addItem(QModelIndex(), device, {});
        // A unit asking whether an address is free gets its answer queued;
        // its own address counts as taken.
        QSignalSpy answers(device, &DeviceDescriptor::setIP);
        device->checkAdr(asked);
        QCOMPARE(answers.count(), 0);
        QVERIFY(answers.wait(1000));
        QCOMPARE(answers.at(0).at(0).toBool(), !found);
        QCOMPARE(map.contains(asked), found);
        QCOMPARE(map.containsWithName(asked, 0x2A), found);
        QCOMPARE(map.containsWithName(asked, 0x2B), false);
        QCOMPARE(map.contains(unitAddress, unitAddress), false);
        delete device;
    }
    void requestRoundTrip()
    {
        Map map;
        auto *device = new TestDevice;
        const unsigned short key = map.addItem(QModelIndex(), device, {});
        QSignalSpy requests(&map, &Map::request);

        const QByteArray bytes("\x01\x03\x00\x10\x00\x02", 6);
        device->sendRequest(bytes);
        QCOMPARE(requests.count(), 0);
        QVERIFY(requests.wait(1000));
        QCOMPARE(requests.at(0).at(0).toInt(), int(key));
        QCOMPARE(requests.at(0).at(1).toByteArray(), bytes);

        // Nothing reaches a unit inside answer() or replyError().
        const QByteArray reply("\x01\x03\x02\x00\x2A", 5);
        map.answer(key, reply);
        map.replyError(key);
        map.answer(key + 1, "stray");
        QVERIFY(device->calls.isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(device->calls, (QStringList {"setData()", "setError()"}));
        QCOMPARE(device->answers, QList<QByteArray> {reply});

        // A disconnected unit is no longer relayed, also for what was already queued.
        device->sendRequest("late");
        map.disconnectDevice(key);
        map.disconnectDevice(-1);
        QCoreApplication::processEvents();
        QCOMPARE(requests.count(), 1);
        delete device;
    }
    void removedWhileTrafficQueued_data()
    {
        QTest::addColumn<QString>("queued");
        QTest::addColumn<bool>("deleteAtOnce");
        // Deleted by its Qt parent behind the map's back rather than removed.
        QTest::addColumn<bool>("byOwner");

        for (const char *queued : {"answer", "error", "request", "status"}) {
            QTest::addRow("%s", queued) << queued << false << false;
            QTest::addRow("%s, deletion flushed first", queued) << queued << true << false;
            QTest::addRow("%s, owner deleted", queued) << queued << false << true;
        }
    }
    void removedWhileTrafficQueued()
    {
        QFETCH(QString, queued);
        QFETCH(bool, deleteAtOnce);
        QFETCH(bool, byOwner);

        Map map;
        QScopedPointer<QObject> owner(new QObject);
        QPointer<TestDevice> leaving = new TestDevice(QString(), owner.get());
        auto *staying = new TestDevice;
        const unsigned short key = map.addItem(QModelIndex(), leaving, {});
        const unsigned short otherKey = map.addItem(QModelIndex(), staying, {});
        QSignalSpy requests(&map, &Map::request);
        QSignalSpy polled(&map, &Map::updateAlarmFinished);

        map.startScan();
        const int pollsAtStart = polled.count();
        if (queued == QLatin1String("answer"))
            map.answer(key, "late");
        else if (queued == QLatin1String("error"))
            map.replyError(key);
        else if (queued == QLatin1String("request"))
            leaving->sendRequest("late");
        else
            emit leaving->statusUpdated();
        map.answer(otherKey, "on time");

        if (byOwner)
            owner.reset();
        else
            QVERIFY(map.deleteDevice(key));
        if (deleteAtOnce)
            flushDeletions();
        QCoreApplication::processEvents();
        QVERIFY(!leaving || (leaving->answers.isEmpty() && !leaving->calls.contains("setError()")));
        flushDeletions();

        QVERIFY(!leaving);
        QVERIFY(!map.contains(key) && !map.getDevice(key));
        QCOMPARE(map.getModel()->rowCount(), 1);
        QCOMPARE(requests.count(), 0);
        QCOMPARE(staying->answers, QList<QByteArray> {"on time"});
        // A status report already queued still moves the pass on; it never
        // reaches a unit that left.
        QVERIFY(polled.count() <= pollsAtStart + 1);
        for (int i = pollsAtStart; i < polled.count(); ++i)
            QVERIFY(polled.at(i).at(0).toUInt() != key);
        map.startScan();
        map.stopScan();
        delete staying;
    }
    // A key taken over, after its unit was removed with an answer still queued
    // or while its unit is still there: the holder of the key gets neither the
    // old answer nor is the old unit's traffic sent under its key.
    void keyReuse()
    {
        Map map;
        QPointer<TestDevice> first = new TestDevice;
        const unsigned short key = map.addItem(QModelIndex(), first, {});
        map.answer(key, "for the first");
        QVERIFY(map.deleteDevice(key));
        auto *displaced = new TestDevice;
        QCOMPARE(map.addItem(QModelIndex(), displaced, key, {}), key);
        QCoreApplication::processEvents();
        flushDeletions();
        QVERIFY(!first);
        QVERIFY(displaced->answers.isEmpty());

        auto *successor = new TestDevice;
        map.addItem(QModelIndex(), successor, key, {});
        QSignalSpy requests(&map, &Map::request);
        QSignalSpy messages(&map, &Map::systemMessage);
        successor->getRequestData() = "successor";
        displaced->sendRequest("displaced");
        displaced->announce(QStringLiteral("displaced"));
        QCoreApplication::processEvents();
        QCOMPARE(requests.count() + messages.count(), 0);
        successor->sendRequest("successor");
        QVERIFY(requests.wait(1000));
        QCOMPARE(requests.count(), 1);
        QCOMPARE(requests.first().at(1).toByteArray(), QByteArray("successor"));
        delete successor;
        delete displaced;
    }
    // Each of a unit's signals reaches the host queued, under the unit's key.
    void relays()
    {
        Map map;
        auto *bystander = new TestDevice;
        auto *device = new TestDevice;
        map.addItem(QModelIndex(), bystander, {});
        map.addItem(QModelIndex(), device, 300, {});
        device->serialOn = true;
        const QList<QPair<const char *, std::function<void()>>> relays {
            {SIGNAL(frontpanel(unsigned short, QString)), [&] { emit device->frontPanelChanged(); }},
            {SIGNAL(systemMessage(unsigned short, QString)), [&] { device->announce("Fan failure"); }},
            {SIGNAL(alarmStateChanged(unsigned short)), [&] { device->setAlarmState(Core::ALARM_MINOR); }},
            {SIGNAL(settingsChanged(unsigned short)), [&] { emit device->interfSettingsChanged(); }},
            {SIGNAL(uiClosed(unsigned short)), [&] { emit device->uiClosed(); }},
            {SIGNAL(serialState(unsigned short, bool)), [&] { emit device->serialState(); }}};
        QStringList seen;
        for (const auto &relay : relays) {
            QSignalSpy spy(&map, relay.first);
            relay.second();
            QCOMPARE(spy.count(), 0);
            QVERIFY(spy.wait(1000));
            for (const QList<QVariant> &args : qAsConst(spy))
                for (const QVariant &value : args)
                    seen << value.toString();
        }
        QCOMPARE(seen.join(' '), QString("300 dimension:2,1; 300 Fan failure 300 300 300 300 true"));
        delete device;
        delete bystander;
    }
    void scanThreeUnits()
    {
        Map map;
        QSignalSpy polled(&map, &Map::updateAlarmFinished);
        map.startScan();
        QVERIFY(!map.scanInproccess());
        QCOMPARE(polled.count(), 0);

        QList<TestDevice *> devices {new TestDevice, new TestDevice, new TestDevice};
        for (TestDevice *device : devices)
            map.addItem(QModelIndex(), device, {});
        const KeyList order = map.getDeviceIdList();
        auto unit = [&](int i) { return unitOf(map, order.at(i)); };

        map.startScan();
        QCOMPARE(polled.count(), 1);
        QCOMPARE(unit(0)->calls, QStringList {"updateAlarmStatus(1)"});
        // Until a unit reports, the pass waits at the first unit, with no timer of its own.
        QVERIFY(!QTest::qWaitFor([&] { return polled.count() > 1; }, 100));
        QVERIFY(map.scanInproccess());

        // Any unit's report moves the pass on, one unit per report.
        emit unit(2)->statusUpdated();
        QCOMPARE(polled.count(), 1);
        QTRY_COMPARE(polled.count(), 2);
        emit unit(1)->statusUpdated();
        QTRY_COMPARE(polled.count(), 3);
        QVERIFY(map.scanInproccess());
        emit unit(2)->statusUpdated();
        QTRY_VERIFY(!map.scanInproccess());
        QCOMPARE(polled.count(), 3);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(polled.at(i).at(0).toUInt(), uint(order.at(i)));
            QCOMPARE(unit(i)->calls.count(QStringLiteral("updateAlarmStatus(1)")), 1);
        }

        // The next pass starts again with the first unit; after stopScan a
        // late report changes nothing.
        map.startScan();
        QCOMPARE(polled.last().at(0).toUInt(), uint(order.at(0)));
        map.stopScan();
        QVERIFY(!map.scanInproccess());
        emit unit(0)->statusUpdated();
        QCoreApplication::processEvents();
        QCOMPARE(polled.count(), 4);
        qDeleteAll(devices);
    }
    void scanLoad_data()
    {
        QTest::addColumn<int>("units");
        QTest::addColumn<int>("passes");
        QTest::newRow("ten thousand units") << 10000 << 1;
        QTest::newRow("a thousand passes") << 5 << 1000;
    }
    // Many units or many passes through add, scan and removal; the timings of
    // the same path are measured by the benchmarks.
    void scanLoad()
    {
        QFETCH(int, units);
        QFETCH(int, passes);
        Map map;
        QStandardItem *group = map.addGroup(QModelIndex(), QStringLiteral("All"));
        for (int i = 0; i < units; ++i) {
            auto *device = new TestDevice;
            device->finishPollAtOnce = true;
            map.addItem(group->index(), device, {});
        }
        const int children = map.children().size();
        int polls = 0;
        connect(&map, &Map::updateAlarmFinished, [&polls] { ++polls; });
        for (int pass = 0; pass < passes; ++pass) {
            map.startScan();
            for (int round = 0; map.scanInproccess() && round < 10 * units; ++round)
                QCoreApplication::processEvents();
            // The host trims what its models record, as a real one would.
            for (unsigned short key : map.getDeviceIdList())
                unitOf(map, key)->calls.clear();
        }
        // Nothing piles up between passes: no new children, no events left behind.
        QCoreApplication::processEvents();
        QCOMPARE(polls, units * passes);
        QCOMPARE(map.children().size(), children);

        // Every other unit one by one from the far end of the tree, then the rest with their group.
        for (int key = units; key >= 1; key -= 2)
            QVERIFY(map.deleteDevice(static_cast<unsigned short>(key)));
        QCOMPARE(map.remove(group->index()).size(), units / 2);
        flushDeletions();
        QCOMPARE(map.getDeviceCount(), 0);
    }
    void alarms()
    {
        Map map;
        QList<TestDevice *> units {new TestDevice("7"), new TestDevice("7"), new TestDevice("10.1.1.1")};
        for (TestDevice *unit : units)
            map.addItem(QModelIndex(), unit, {});
        units[2]->setAlarmState(Core::ALARM_MAJOR);
        // Exact text only, and only the first unit met in key order of the registry.
        map.setAlarm(QStringLiteral("007"), Core::ALARM_MINOR);
        QCOMPARE(units[0]->getAlarmState(), Core::ALARM_OK);
        map.setAlarm(QStringLiteral("7"), Core::ALARM_MINOR);
        const KeyList order = map.getDeviceIdList();
        const bool oneFirst = order.indexOf(1) < order.indexOf(2);
        QCOMPARE(map.getAlarmMap(),
            (QHash<unsigned short, Core::AlarmType> {{1, oneFirst ? Core::ALARM_MINOR : Core::ALARM_OK},
                {2, oneFirst ? Core::ALARM_OK : Core::ALARM_MINOR}, {3, Core::ALARM_MAJOR}}));
        map.setSerialState(1, true);
        map.setSerialState(4, true);
        QCOMPARE(units[0]->calls, QStringList {"setSerialState(1)"});
        qDeleteAll(units);
    }
    void metaObjectOrder()
    {
        QCOMPARE(methodsOf(Map::staticMetaObject),
            QString(
                "request(int,QByteArray) frontpanel(ushort,QString) systemMessage(ushort,QString) "
                "alarmStateChanged(ushort) settingsChanged(ushort) uiClosed(ushort) serialState(ushort,bool) "
                "updateAlarmFinished(ushort) activeDeviceCountChanged(uint) | answer(ushort,QByteArray) "
                "replyError(ushort) startScan() stopScan() disconnectDevice(int) setAddress(int) "
                "newRequest(int) "
                "frontPanelChange(int) systemEvent(int) alarmStateEvent(int) settingsChangeEvent(int) "
                "uiClosedEvent(int) serialStateEvent(int) scanNextItem()"));
    }
};

QTEST_MAIN(tst_Map)
#include "tst_map.moc"
