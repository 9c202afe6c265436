// The demo host at work, checked the way a person watching it would: every
// unit is polled, lost replies do not stop the scan, alarms blink, traps
// arrive, a settings file moves between units, a restart is acknowledged,
// the layout survives a restart, and the offscreen run leaves two real
// screenshots.
#include "../../tests/ui/modalanswer.h"
#include "demounit.h"
#include "hostwindow.h"
#include "simulatedunit.h"
#include "unitwindow.h"

#include <device/map.h>
#include <memory/baserawtype.h>
#include <memory/statusmemorymap.h>
#include <topology/deviceitem.h>
#include <topology/devicescene.h>
#include <ui/trapvisual.h>

#include <QAction>
#include <QFile>
#include <QHostAddress>
#include <QImage>
#include <QProcess>
#include <QPushButton>
#include <QSet>
#include <QSortFilterProxyModel>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class tst_DemoHost : public QObject
{
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> dir;

    std::unique_ptr<HostWindow> makeHost(
        double errorRate, int units = 12, int scanPeriodMs = 200, int maxDelayMs = 10, int tickMs = 50)
    {
        HostWindow::Options options;
        options.units = units;
        options.scanPeriodMs = scanPeriodMs;
        options.topologyFile = dir->filePath(QStringLiteral("layout.json"));
        options.simulated = true;
        options.network = {7, errorRate, qMin(2, maxDelayMs), maxDelayMs, tickMs};
        auto host = std::make_unique<HostWindow>(options);
        host->resize(1000, 700);
        host->show();
        host->start();
        return host;
    }

private slots:
    void init() { dir = std::make_unique<QTemporaryDir>(); }
    void cleanup() { dir.reset(); }

    void scanPollsEveryUnitDespiteLostReplies()
    {
        auto host = makeHost(0.1);
        const QList<unsigned short> keys = host->unitKeys();
        QCOMPARE(keys.size(), 12);
        // One unit never answers at all.
        const unsigned short silent = keys.at(4);
        host->network()->failNext(silent, 1000000);
        QTRY_VERIFY_WITH_TIMEOUT(std::all_of(keys.cbegin(), keys.cend(),
                                     [&](unsigned short key) { return host->pollCount(key) >= 4; }),
            20000);
        QVERIFY(host->network()->errorCount() > 0 && host->passCount() >= 4);
        // The silent unit is shown as not responding; the others answered.
        QTRY_COMPARE_WITH_TIMEOUT(static_cast<int>(host->unit(silent)->getAlarmState()), 4, 10000);
        for (unsigned short key : keys)
            QVERIFY2(host->unit(key)->hasAnswered() == (key != silent), qPrintable(QString::number(key)));
        QCOMPARE(host->deviceMap()->getAlarmMap().value(silent), static_cast<Core::AlarmType>(4));
    }

    void passesReachEveryUnitAtScale()
    {
        // Passes of 80 units outlast twenty scan periods, after which they used to be cut short.
        auto host = makeHost(0.0, 80, 10, 2, 5000);
        const QList<unsigned short> keys = host->unitKeys();
        const unsigned short silent = keys.last();
        const unsigned short closed = keys.at(0);
        host->network()->failNext(silent, 1000000);
        host->deviceMap()->setSerialState(closed, false);
        QTRY_VERIFY_WITH_TIMEOUT(host->passCount() >= 4, 30000);
        QVERIFY(std::all_of(
            keys.cbegin(), keys.cend(), [&](unsigned short key) { return host->pollCount(key) >= 3; }));
        QVERIFY(host->lastPassLength() > 0 && host->statusText().contains(QLatin1String("last pass")));
        const auto tip = [&](unsigned short key) { return host->scene()->getDeviceItem(key)->toolTip(); };
        QTRY_VERIFY(host->unit(silent)->isStale() && tip(silent).contains(QLatin1String("never answered")));
        QVERIFY(!host->unit(closed)->isMonitored() && tip(closed).contains(QLatin1String("not monitored")));
        QCOMPARE(host->deviceMap()->getItemIndex(closed).data(Qt::ToolTipRole).toString(),
            host->unit(closed)->monitoringNote());
        QVERIFY(
            !host->unit(keys.at(1))->isStale() && tip(keys.at(1)).contains(QLatin1String("last answered")));
        host->deviceMap()->setSerialState(closed, true);
        QTRY_VERIFY(
            host->unit(closed)->isMonitored() && !tip(closed).contains(QLatin1String("not monitored")));

        // Paused, a banner says so until its button resumes the scan.
        host->findChild<QAction *>(QStringLiteral("actScan"))->setChecked(false);
        auto *banner = host->findChild<QWidget *>(QStringLiteral("wgtScanPaused"));
        QVERIFY(banner->isVisible() && !host->deviceMap()->scanInproccess());
        const int paused = host->passCount();
        banner->findChild<QPushButton *>()->click();
        QVERIFY(!banner->isVisible() && host->passCount() == paused + 1);
    }

    void addressesStayUniqueUpToTheAgentLimit()
    {
        QSet<QString> addresses;
        for (int i = 0; i < 5000; ++i) {
            addresses.insert(UnitLayout::unitIp(i));
            QVERIFY(!QHostAddress(UnitLayout::unitIp(i)).isNull());
        }
        QCOMPARE(addresses.size(), 5000);
    }

    void alarmsBlinkAndTrapsArrive()
    {
        auto host = makeHost(0.0);
        QSignalSpy blink(host->scene(), &DeviceScene::togleAlarm);
        QSortFilterProxyModel *traps = host->trapList()->getModel();
        // Some unit is in alarm and its outline alternates between the two phases.
        QTRY_VERIFY_WITH_TIMEOUT(
            [&] {
                QSet<bool> phases;
                for (const QList<QVariant> &args : qAsConst(blink))
                    phases.insert(args.at(0).toBool());
                return phases.size() == 2;
            }(),
            20000);
        QTRY_VERIFY_WITH_TIMEOUT(traps->rowCount() >= 3, 20000);

        // Each trap names a unit of the map, and only SNMP units send them.
        QSet<QString> snmpNames;
        for (unsigned short key : host->unitKeys())
            if (host->unit(key)->isSnmp())
                snmpNames.insert(host->unit(key)->getParameter(DeviceDescriptor::DP_NAME).toString());
        for (int row = 0; row < traps->rowCount(); ++row)
            QVERIFY(snmpNames.contains(traps->index(row, 1).data().toString()));
    }

    void settingsFileMovesBetweenUnits()
    {
        auto host = makeHost(0.0);
        const QList<unsigned short> keys = host->unitKeys();
        // A serial unit gives its settings to an SNMP unit.
        DemoUnit *from = host->unit(keys.at(0));
        DemoUnit *to = host->unit(keys.at(3));
        QVERIFY(!from->isSnmp() && to->isSnmp());
        from->update();
        to->update();
        QTRY_VERIFY_WITH_TIMEOUT(
            from->hasAnswered() && to->hasAnswered() && to->label() == QLatin1String("Mux 4"), 10000);

        from->setLabel(QStringLiteral("Spare feed"));
        from->setPortEnabled(3, true);
        from->setPortAmi(3, true);
        const QString path = dir->filePath(QStringLiteral("mux1.dvsf"));
        QSignalSpy done(from, &DemoUnit::operationDone);
        from->saveSettingsFile(path);
        QCOMPARE(done.count(), 1);
        QVERIFY(done.takeFirst().at(1).toBool());

        // Loaded without addresses: the SNMP unit keeps its own IP.
        to->loadSettingsFile(path, true);
        const QByteArray expected = QByteArray::fromHex("03030005"
                                                        "c000020b" // 192.0.2.11, unit 4's own
                                                        "ffffff00")
            + QByteArray("Spare feed").leftJustified(16, '\0') + QByteArray(4, '\0'); // 4 reserved bytes
        QTRY_COMPARE_WITH_TIMEOUT(host->network()->unit(keys.at(3))->configImage(), expected, 10000);
        QCOMPARE(to->ipAddress(), QStringLiteral("192.0.2.11"));
        QCOMPARE(to->label(), QStringLiteral("Spare feed"));
        QVERIFY(to->portAmi(3));

        // One byte of the image changed on disk, or no file at all: nothing goes to the unit.
        QFile damaged(path);
        QVERIFY(damaged.open(QIODevice::ReadWrite) && damaged.seek(damaged.size() - 1));
        const char last = damaged.peek(1).at(0);
        QVERIFY(damaged.putChar(static_cast<char>(last ^ 0x5A)));
        damaged.close();
        const int requests = from->requestCount();
        from->loadSettingsFile(path, false);
        from->loadSettingsFile(dir->filePath(QStringLiteral("missing.dvsf")), false);
        QCOMPARE(done.count(), 2);
        QVERIFY(!done.at(0).at(1).toBool() && !done.at(1).at(1).toBool());
        QVERIFY(done.at(0).at(0).toString().contains(QLatin1String("damaged")));
        QCOMPARE(from->requestCount(), requests);

        // Loss of signal on the fourth line alone is a major alarm. The polls
        // fail from now on, so the next one judges the image as patched here.
        QSignalSpy polled(from, &DeviceDescriptor::statusUpdated);
        host->network()->failNext(keys.at(0), 1000000);
        from->updateAlarmStatus();
        QVERIFY(polled.wait(10000));
        BaseRawType *alarms = from->getStatusMap()->getItem(QStringLiteral("alarms"));
        alarms->setInteger(0, 0, 1, 0x08);
        alarms->setInteger(1, 0, 1, 0);
        from->updateAlarmStatus();
        QVERIFY(polled.wait(10000));
        QCOMPARE(static_cast<int>(from->getAlarmState()), static_cast<int>(Core::ALARM_MAJOR));
    }

    void windowActionsReachTheUnit()
    {
        auto host = makeHost(0.0);
        const unsigned short key = host->unitKeys().at(2);
        DemoUnit *unit = host->unit(key);
        unit->showUi();
        UnitWindow *window = unit->configWindow();
        QVERIFY(window);
        QTRY_VERIFY_WITH_TIMEOUT(unit->hasAnswered(), 10000);
        QVERIFY(window->showPage(QStringLiteral("Statistics.G826")));
        QVERIFY(!window->showPage(QStringLiteral("Statistics.G.826")));

        // Restart asks for an acknowledgement, then the unit goes quiet for a while.
        {
            ModalAnswer answer([](QWidget *box) { static_cast<QDialog *>(box)->accept(); });
            window->findChild<QAction *>(QStringLiteral("actionRestart"))->trigger();
        }
        SimulatedUnit *far = host->network()->unit(key);
        QTRY_VERIFY_WITH_TIMEOUT(far->isRestarting(), 5000);
        QTRY_VERIFY_WITH_TIMEOUT(!far->isRestarting(), 5000);
    }

    void layoutSurvivesRestart()
    {
        QList<unsigned short> keys;
        {
            auto host = makeHost(0.0);
            keys = host->unitKeys();
            host->scene()->getDeviceItem(keys.at(2))->setPos(640, 480);
            host->scene()->addArrowLink(keys.at(11), keys.at(0));
        } // closing the host saves its layout

        auto host = makeHost(0.0);
        QCOMPARE(host->unitKeys(), keys);
        QCOMPARE(host->scene()->getItemPos(keys.at(2)), QPointF(640, 480));
        const auto links = host->scene()->getArrowLinkList();
        QVERIFY(links.contains(qMakePair(keys.at(11), keys.at(0))));
        QCOMPARE(links.size(), 12); // 11 first-start links and the one drawn
    }

    void offscreenRunWritesScreenshots()
    {
        const QString shots = dir->filePath(QStringLiteral("shots"));
        const QString layout = dir->filePath(QStringLiteral("run-layout.json"));
        QProcess demo;
        demo.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        demo.start(DEMOHOST_BINARY, {"--offscreen", shots, "--seconds", "2", "--layout", layout});
        QVERIFY(demo.waitForFinished(120000));
        QVERIFY(demo.exitStatus() == QProcess::NormalExit && demo.exitCode() == 0);
        QVERIFY(QFile::exists(layout));
        for (const char *name : {"mainwindow.png", "configwindow.png"}) {
            const QImage image(shots + QLatin1Char('/') + QLatin1String(name));
            QVERIFY2(image.width() >= 600 && image.height() >= 400, name);
            // Not blank: a real window has text, frames and colour in many shades.
            QSet<QRgb> colours;
            for (int y = 0; y < image.height(); y += 3)
                for (int x = 0; x < image.width(); x += 3)
                    colours.insert(image.pixel(x, y));
            QVERIFY2(colours.size() > 50, name);
        }
    }
};

QTEST_MAIN(tst_DemoHost)
#include "tst_demohost.moc"
