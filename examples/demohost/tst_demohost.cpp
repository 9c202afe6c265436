// The demo host at work, checked the way a person watching it would: every
// unit is polled, lost replies do not stop the scan, alarms blink, traps
// arrive, a settings file moves between units, a restart is acknowledged,
// the layout survives a restart, and the offscreen run leaves two real
// screenshots.
#include "../../tests/ui/modalanswer.h"
#include "demounit.h"
#include "hostwindow.h"
#include "simulatedunit.h"
#include "trapwords.h"
#include "unitwindow.h"

#include <device/map.h>
#include <memory/baserawtype.h>
#include <memory/statusmemorymap.h>
#include <topology/devicegraphicsview.h>
#include <topology/deviceitem.h>
#include <topology/devicescene.h>
#include <topology/frontpanel.h>
#include <topology/linkarrow.h>
#include <ui/trapvisual.h>

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QFile>
#include <QGraphicsView>
#include <QHostAddress>
#include <QImage>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QProcess>
#include <QPushButton>
#include <QSet>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTreeView>
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

    static void verifyNoOverlap(HostWindow *host, bool linksToo)
    {
        QList<QRectF> panels;
        for (unsigned short key : host->unitKeys())
            panels << host->scene()->getDeviceItem(key)->sceneBoundingRect();
        for (int i = 0; i < panels.size(); ++i) {
            for (int j = i + 1; j < panels.size(); ++j)
                QVERIFY2(!panels.at(i).intersects(panels.at(j)),
                    qPrintable(QStringLiteral("%1 %2").arg(i).arg(j)));
        }
        for (const auto &link : host->scene()->getArrowLinkList()) {
            const QLineF line(host->scene()->getDeviceItem(link.first)->sceneBoundingRect().center(),
                host->scene()->getDeviceItem(link.second)->sceneBoundingRect().center());
            for (int i = 0; linksToo && i < panels.size(); ++i) {
                const unsigned short key = host->unitKeys().at(i);
                QPainterPath under;
                under.addRect(panels.at(i));
                QPainterPath path(line.p1());
                path.lineTo(line.p2());
                QVERIFY(key == link.first || key == link.second || !under.intersects(path));
            }
        }
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

    void trapsInWords_data()
    {
        using namespace UnitLayout;
        const QString trap = QStringLiteral("1.3.6.1.6.3.1.1.4.1.0"), port = oidPortStatus() + ".2.";
        QTest::addColumn<QVariantHash>("variables");
        QTest::addColumn<QString>("words");
        QTest::newRow("loss of signal") << QVariantHash {{trap, productArc() + ".0.2"}, {oidAlarmLevel(), 1},
            {port + '2', PortLos + 1}} << "Event=loss of signal|Port=E1 2|Severity=Major";
        const QVariantHash restart {{trap, productArc() + ".0.1"}, {"1.3.6.1.2.1.1.3.0", 8640123}};
        QTest::newRow("restart") << restart << "Event=restarted|Severity=Minor|Up time=1 d 00:00:01";
        QTest::newRow("power") << QVariantHash {{trap, productArc() + ".0.4"}}
                               << "Event=power supply failed|Severity=Minor";
        QTest::newRow("unknown kept") << QVariantHash {{trap, "1.9"}, {port + '0', 2}}
                                      << "1.3.6.1.4.1.32473.7.3.2.2.0=2|Event=1.9|Severity=Minor";
    }
    void trapsInWords()
    {
        QFETCH(QVariantHash, variables);
        const QVariantHash words = TrapWords::describe(variables, Core::ALARM_MINOR);
        QStringList pairs;
        for (auto it = words.cbegin(); it != words.cend(); ++it)
            pairs << it.key() + '=' + it.value().toString();
        pairs.sort();
        QTEST(pairs.join('|'), "words");
    }

    void frozenTrapsAreHeldAndClearAsks()
    {
        auto host = makeHost(0.0);
        QSortFilterProxyModel *traps = host->trapList()->getModel();
        QObject *freeze = host->findChild<QObject *>(QStringLiteral("chbTrapFreeze"));
        freeze->setProperty("checked", true);
        const int shown = traps->rowCount();
        QTRY_VERIFY_WITH_TIMEOUT(host->heldTrapCount() >= 2, 20000);
        QTest::qWait(20);
        const int held = host->heldTrapCount();
        QVERIFY(host->statusText().endsWith(QStringLiteral("| %1 traps held").arg(held)));
        const QDateTime thawed = QDateTime::currentDateTime();
        freeze->setProperty("checked", false);
        QCOMPARE(traps->rowCount(), shown + held);
        for (int row = 0; row < traps->rowCount(); ++row) // held traps keep their arrival time
            QVERIFY(traps->index(row, 0).data().toDateTime() < thawed);
        host->findChild<QObject *>("leTrapFilter")
            ->setProperty("text", traps->index(0, 1).data().toString() + '$');
        QCOMPARE(host->findChild<QObject *>("lblTrapCount")->property("text").toString(),
            QStringLiteral("%1 of %2 traps").arg(traps->rowCount()).arg(shown + held));
        for (auto button : {QMessageBox::No, QMessageBox::Yes}) {
            ModalAnswer answer(as<QMessageBox>([button](QMessageBox *box) { box->button(button)->click(); }));
            QMetaObject::invokeMethod(host->findChild<QObject *>("pbtTrapClear"), "click");
            QCOMPARE(traps->rowCount() == 0, button == QMessageBox::Yes);
        }
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

        // Another unit's file: the user is warned and the addresses are kept unless cleared.
        auto load = [&](QMessageBox::StandardButton button) {
            QString text;
            ModalAnswer answer(as<QMessageBox>([&](QMessageBox *box) {
                text = box->text() + (box->checkBox()->isChecked() ? "[kept]" : "");
                box->button(button)->click();
            }));
            to->loadSettingsFile(path, false);
            QVERIFY2(text.contains("10.1.0.1 in the file, 192.0.2.11") && text.endsWith("[kept]"),
                qPrintable(text));
        };
        load(QMessageBox::Cancel);
        QCOMPARE(to->label(), QStringLiteral("Mux 4"));
        load(QMessageBox::Yes);
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
            // A first start shows every unit, and no default link passes under a third unit.
            QGraphicsView *view = host->view;
            QTRY_VERIFY(view->mapToScene(view->viewport()->rect())
                            .boundingRect()
                            .contains(host->scene()->itemsBoundingRect()));
            verifyNoOverlap(host.get(), true);
            host->scene()->getDeviceItem(keys.at(2))->setPos(640, 480);
            QVERIFY(host->scene()->addLink(keys.at(11), keys.at(0)));
            QVERIFY(!host->scene()->addLink(keys.at(0), keys.at(11))
                && !host->scene()->addLink(keys.at(1), keys.at(0)));
            view->resetTransform();
            view->scale(2, 2);
            view->centerOn(host->scene()->getDeviceItem(keys.at(5)));
        } // closing the host saves its layout

        auto host = makeHost(0.0);
        QCOMPARE(host->unitKeys(), keys);
        QCOMPARE(host->scene()->getItemPos(keys.at(2)), QPointF(640, 480));
        const auto links = host->scene()->getArrowLinkList();
        QVERIFY(links.contains(qMakePair(keys.at(11), keys.at(0))));
        QCOMPARE(links.size(), 12); // 11 first-start links and the one drawn
        QTRY_COMPARE(host->view->transform().m11(), 2.0);
        QVERIFY(host->view->mapToScene(host->view->viewport()->rect())
                    .boundingRect()
                    .contains(host->scene()->getDeviceItem(keys.at(5))->sceneBoundingRect().center()));

        // A link drawn again with the mouse, the other way round, is refused.
        QSignalSpy refused(host->scene(), &HostScene::linkRefused);
        host->scene()->setInsertMode(DeviceScene::LinkMode);
        QWidget *viewport = host->view->viewport();
        auto at = [&](int i) {
            return host->view->mapFromScene(
                host->scene()->getDeviceItem(keys.at(i))->sceneBoundingRect().center());
        };
        auto send = [&](QEvent::Type type, int i, Qt::MouseButton button, Qt::MouseButtons buttons) {
            QMouseEvent event(type, at(i), viewport->mapToGlobal(at(i)), button, buttons, Qt::NoModifier);
            QApplication::sendEvent(viewport, &event);
        };
        host->fitToUnits();
        send(QEvent::MouseButtonPress, 0, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseMove, 11, Qt::NoButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, 11, Qt::LeftButton, Qt::NoButton);
        QCOMPARE(refused.count(), 1);
        QCOMPARE(host->scene()->getArrowLinkList().size(), 12);
    }

    void unitsAreFoundAndShown()
    {
        auto host = makeHost(0.0);
        const QList<unsigned short> keys = host->unitKeys();
        auto shown = [&] {
            const QList<unsigned short> selected = host->scene()->getSelectedDevices();
            const QRectF seen = host->view->mapToScene(host->view->viewport()->rect()).boundingRect();
            const int tree = host->trvDevices->currentIndex().data(Map::ITEM_KEY_ROLE).toInt();
            return selected.size() == 1 && tree == selected.first()
                    && seen.contains(
                        host->scene()->getDeviceItem(selected.first())->sceneBoundingRect().center())
                ? keys.indexOf(selected.first())
                : -1;
        };
        // The drawing and the tree follow each other.
        host->scene()->setSelected(keys.at(3));
        QCOMPARE(shown(), 3);
        host->trvDevices->setCurrentIndex(host->trvDevices->currentIndex().sibling(1, 0));
        QCOMPARE(shown(), 1);
        // Found by address, then by name again and again, and not at all.
        QList<int> found;
        for (const QString &text :
            {host->unit(keys.at(9))->getParameter(DeviceDescriptor::DP_ADDRESS).toString(),
                QStringLiteral("mux 1"), QStringLiteral("mux 1"), QStringLiteral("Site"),
                QStringLiteral("Mux 1")}) {
            host->leFind->setText(text);
            host->findUnit();
            found << shown();
        }
        QCOMPARE(found, (QList<int> {9, 10, 11, 11, 0}));
        // A trap leads to its unit.
        host->trapList()->setTrap({keys.at(6), QStringLiteral("Mux 7"), 1, {}, QString()});
        emit host->tvwTraps->doubleClicked(host->trapList()->getModel()->index(0, 2));
        QCOMPARE(shown(), 6);
        // A link goes only when the user says yes.
        for (auto button : {QMessageBox::No, QMessageBox::Yes}) {
            host->scene()->getDeviceItem(keys.at(1))->getArrows().first()->setSelected(true);
            ModalAnswer answer(as<QMessageBox>([button](QMessageBox *box) { box->button(button)->click(); }));
            host->removeLink(keys.at(0), keys.at(1));
            QCOMPARE(host->scene()->getArrowLinkList().size(), button == QMessageBox::No ? 11 : 10);
        }
    }

    void manyUnitsStandApart()
    {
        // Full panels of 600 units cannot stand side by side in the drawing; small ones can.
        auto host = makeHost(0.0, 600);
        QVERIFY(host->unit(host->unitKeys().last())->isCompactPanel());
        verifyNoOverlap(host.get(), false);
    }

    void damagedLayoutIsKeptAside_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("garbage") << QByteArray("\x89PNG\r\n not a layout");
        QTest::newRow("truncated") << QByteArray(R"({"units": {"Mux 5": {"x": 20, "y": 2)");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("wrong types") << QByteArray(
            R"({"units": {"Mux 1": {"x": 300, "y": 200}, "Mux 2": {"x": "300", "y": 200}, "Mux 4": {"x": 1e9, "y": 0}, "Mux 3": [1, 2]}, "links": 7})");
    }

    void damagedLayoutIsKeptAside()
    {
        QFETCH(QByteArray, content);
        const QString path = dir->filePath(QStringLiteral("layout.json"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        file.close();
        {
            auto host = makeHost(0.0);
            const QString kept
                = host->noticeText().section(QStringLiteral(" was kept as "), 1).section(' ', 0, 0);
            QFile aside(kept);
            QVERIFY2(aside.open(QIODevice::ReadOnly) && aside.readAll() == content,
                qPrintable(host->noticeText()));
            // Every unit stands on its own, the one readable place kept.
            verifyNoOverlap(host.get(), false);
            if (content.contains("Mux 1"))
                QCOMPARE(host->scene()->getItemPos(host->unitKeys().at(0)), QPointF(300, 200));
        }
        // The next start finds a sound file again.
        QCOMPARE(makeHost(0.0)->noticeText(), QString());

        // A layout that cannot be saved is not given up without a word.
        auto host = makeHost(0.0);
        QVERIFY(QFile::remove(path) && QDir().mkpath(path));
        {
            ModalAnswer answer(
                as<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Cancel)->click(); }));
            QVERIFY(!host->close() && host->isVisible());
        }
    }

    // The states of a port tell apart without colour: each leaves ink of its
    // own shape in the port's cells.
    void portStatesReadWithoutColour()
    {
        DemoUnit unit(Core::IPT_SERIAL, QStringLiteral("1"), 0x0100);
        QList<QImage> shapes;
        // Off, up, up with traffic, loss of signal, alarm indication signal.
        for (const char state : {'\x00', '\x01', '\x81', '\x02', '\x03'}) {
            QByteArray answer(2 + UnitLayout::statusSize, '\0');
            answer[0] = char(UnitLayout::CmdReadStatus | UnitLayout::answerBit);
            answer[2 + UnitLayout::stPortState] = state;
            unit.updateStatus();
            unit.setData(answer);
            FrontPanel panel;
            panel.parse(unit.getFrontPanel());
            QImage image(panel.getDimensionRect().size().toSize(), QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            panel.paint(&painter);
            const QImage shape = image.copy(40, 20, 20, 40).createMaskFromColor(qRgb(255, 255, 255));
            QVERIFY(!shapes.contains(shape));
            shapes << shape;
        }
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
