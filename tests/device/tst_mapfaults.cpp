// The map under faults a host meets in the field: units that leave while
// their traffic is still queued, units that never finish a poll, a key
// counter that wraps, and many scan passes in a row.

#include "testdevice.h"

#include <device/map.h>

#include <QPointer>
#include <QScopedPointer>
#include <QStandardItemModel>
#include <QtTest>

namespace {

void flushDeletions()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TestDevice *unitOf(const Map &map, unsigned short key)
{
    return static_cast<TestDevice *>(map.getDevice(key));
}

} // namespace

class tst_MapFaults : public QObject
{
    Q_OBJECT
private slots:
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
    void silentUnitStopsThePass()
    {
        Map map;
        QList<TestDevice *> devices;
        for (int i = 0; i < 3; ++i) {
            devices << new TestDevice;
            map.addItem(QModelIndex(), devices.last(), {});
        }
        const QList<unsigned short> order = map.getDeviceIdList();
        QSignalSpy polled(&map, &Map::updateAlarmFinished);

        // No unit reports: the pass waits at the first unit, with no timer of its own.
        map.startScan();
        QCOMPARE(polled.count(), 1);
        QVERIFY(map.scanInproccess());
        QVERIFY(!QTest::qWaitFor([&] { return polled.count() > 1; }, 200));
        QVERIFY(map.scanInproccess());

        map.stopScan();
        QVERIFY(!map.scanInproccess());
        // A report that comes too late changes nothing.
        emit unitOf(map, order.at(0))->statusUpdated();
        QCoreApplication::processEvents();
        QCOMPARE(polled.count(), 1);

        qDeleteAll(devices);
    }
    void keyCounterWraps()
    {
        constexpr int Units = 65535;
        Map map;
        QStandardItem *group = map.addGroup(QModelIndex(), QStringLiteral("All"));
        QSignalSpy counts(&map, &Map::activeDeviceCountChanged);
        for (int i = 1; i <= Units; ++i) {
            if (map.addItem(group->index(), new TestDevice, {}) != i)
                QFAIL(qPrintable(QStringLiteral("unit %1 got another key").arg(i)));
        }
        QCOMPARE(map.getDeviceCount(), Units);
        QCOMPARE(counts.count(), Units);
        QCOMPARE(counts.last().at(0).toUInt(), uint(Units));
        QVERIFY(map.contains(1) && map.contains(65535) && !map.contains(0));

        // The counter runs on from 65535 to 0, then to 1, which is taken over.
        auto *atZero = new TestDevice;
        QCOMPARE(map.addItem(group->index(), atZero, {}), (unsigned short)0);
        QCOMPARE(map.getDevice(0), atZero);
        QCOMPARE(map.getDeviceCount(), Units + 1);
        TestDevice *displaced = unitOf(map, 1);
        auto *atOne = new TestDevice;
        QCOMPARE(map.addItem(group->index(), atOne, {}), (unsigned short)1);
        QCOMPARE(map.getDevice(1), atOne);
        QCOMPARE(map.getDeviceCount(), Units + 1);
        QCOMPARE(group->rowCount(), Units + 2);

        // Every unit still answers under its own key.
        QCOMPARE(map.getAlarmMap().size(), Units + 1);
        map.answer(65535, "last");
        map.answer(1, "first");
        QCoreApplication::processEvents();
        QCOMPARE(unitOf(map, 65535)->answers, QList<QByteArray> {"last"});
        QCOMPARE(atOne->answers, QList<QByteArray> {"first"});
        QVERIFY(displaced->answers.isEmpty());

        // The group takes every registered unit with it; the displaced one is
        // the host's to delete.
        QCOMPARE(map.remove(group->index()).size(), Units + 2);
        flushDeletions();
        QCOMPARE(map.getDeviceCount(), 0);
        delete displaced;
    }
    void thousandScanPasses()
    {
        constexpr int Passes = 1000;
        constexpr int Units = 5;
        Map map;
        QList<TestDevice *> devices;
        for (int i = 0; i < Units; ++i) {
            devices << new TestDevice;
            devices.last()->finishPollAtOnce = true;
            map.addItem(QModelIndex(), devices.last(), {});
        }
        const int children = map.children().size();
        int polls = 0;
        connect(&map, &Map::updateAlarmFinished, [&polls] { ++polls; });
        for (int pass = 0; pass < Passes; ++pass) {
            map.startScan();
            while (map.scanInproccess())
                QCoreApplication::processEvents();
            // The host trims what its models record, as a real one would.
            for (TestDevice *device : qAsConst(devices))
                device->calls.clear();
        }
        QCOMPARE(polls, Passes * Units);
        // Nothing piles up between passes: no new children, no events left behind.
        QCOMPARE(map.children().size(), children);
        QCoreApplication::processEvents();
        QCOMPARE(polls, Passes * Units);
        qDeleteAll(devices);
    }
};

QTEST_MAIN(tst_MapFaults)
#include "tst_mapfaults.moc"
