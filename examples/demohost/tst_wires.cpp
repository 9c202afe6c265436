// The demo on real wires, checked against peers written elsewhere: net-snmp's
// command-line tools against demoagent and a serial exchange across a
// pseudo-terminal pair. The host's own run with demoagent is tst_demohost's.
#include "agentprocess.h"
#include "demounit.h"
#include "hostwindow.h"
#include "serialtransport.h"

#include <simulatedunit.h>

#include <device/map.h>
#include <ui/trapvisual.h>

#include <QProcess>
#include <QSocketNotifier>
#include <QtTest>

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace {

const QString label = QStringLiteral("1.3.6.1.4.1.32473.7.2.1.3");
const QStringList v3 = {
    "-v3", "-u", "ops", "-l", "authPriv", "-a", "SHA", "-A", "auth-phrase", "-x", "AES", "-X", "priv-phrase"};

} // namespace

class tst_Wires : public QObject
{
    Q_OBJECT
    AgentProcess agent;
    QString endpoint;

private slots:
    void initTestCase()
    {
        QVERIFY2(agent.start(DEMOAGENT_BINARY,
                     {"--units", "2", "--v3-user", "ops", "--auth-pass", "auth-phrase", "--priv-pass",
                         "priv-phrase"}),
            qPrintable(agent.errorString()));
        QVERIFY(agent.units().size() == 2 && !agent.units().at(0).snmp && agent.units().at(1).snmp);
        endpoint = agent.units().at(1).address;
    }

    void snmpToolsAgainstAgent_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expected"); // a line of the output, or its line count

        const QStringList v1 = {"-v1", "-c", "public"}, v2c = {"-v2c", "-c", "public"};
        const QString product = QStringLiteral("1.3.6.1.4.1.32473.7");
        // 3 system, 12 port, 2 alarm, 8 port status and 6 unit variables.
        // clang-format off
        QTest::newRow("v1 get") << "snmpget" << v1 + QStringList {"AGENT", label} << 0 << label + " = STRING: \"Mux 2\"";
        QTest::newRow("v2c bulkwalk") << "snmpbulkwalk" << v2c + QStringList {"AGENT", product} << 0 << "31";
        QTest::newRow("v3 walk") << "snmpwalk" << v3 + QStringList {"AGENT", product} << 0 << "31";
        QTest::newRow("v3 set") << "snmpset" << v3 + QStringList {"AGENT", label, "s", "Spare"} << 0 << label + " = STRING: \"Spare\"";
        QTest::newRow("v2c set of a status variable") << "snmpset" << v2c + QStringList {"AGENT", product + ".3.3.0", "i", "20"} << 2 << "notWritable";
        QTest::newRow("v2c set of the wrong type") << "snmpset" << v2c + QStringList {"AGENT", label, "i", "3"} << 2 << "wrongType";
        QTest::newRow("v2c wrong community") << "snmpget" << QStringList {"-v2c", "-c", "private", "AGENT", label} << 1 << "Timeout: No Response from";
        QTest::newRow("v3 wrong passphrase") << "snmpget" << QStringList(v3).replaceInStrings("auth-phrase", "auth-wrong") + QStringList {"AGENT", label} << 1 << "Authentication failure";
        // clang-format on
    }

    void snmpToolsAgainstAgent()
    {
        QFETCH(QString, tool);
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, expected);
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(
            tool, QStringList {"-On", "-t", "1", "-r", "0"} + arguments.replaceInStrings("AGENT", endpoint));
        QVERIFY(process.waitForFinished(10000));
        const QString output = QString::fromLocal8Bit(process.readAll());
        QVERIFY2(process.exitCode() == exitCode, qPrintable(output));
        bool isCount = false;
        const int count = expected.toInt(&isCount);
        // Variables only, not the end-of-view line of a version 2 walk.
        const QRegularExpression variable(
            QStringLiteral("^\\.1\\.3\\.\\S+ = (?!No more)"), QRegularExpression::MultilineOption);
        if (isCount)
            QCOMPARE(output.count(variable), count);
        else
            QVERIFY2(output.contains(expected), qPrintable(output));
    }

    void serialExchangeOverPty_data()
    {
        QTest::addColumn<bool>("answers");
        QTest::newRow("reply") << true;
        QTest::newRow("no reply") << false;
    }

    void serialExchangeOverPty()
    {
        QFETCH(bool, answers);
        int master = -1, slave = -1;
        char path[128] = {};
        QCOMPARE(openpty(&master, &slave, path, nullptr, nullptr), 0);
        termios raw {};
        tcgetattr(slave, &raw);
        cfmakeraw(&raw);
        tcsetattr(slave, TCSANOW, &raw);

        // The far end: a simulated unit that answers in two pieces, or not at all.
        SimulatedUnit far(0, false, 0x0105, QStringLiteral("10.1.0.1"));
        QSocketNotifier readable(master, QSocketNotifier::Read);
        connect(&readable, &QSocketNotifier::activated, this, [&] {
            char byte = 0;
            if (read(master, &byte, 1) != 1 || !answers)
                return;
            const QByteArray reply = far.handleSerial(QByteArray(1, byte));
            QVERIFY(write(master, reply.constData(), 10) == 10);
            QTimer::singleShot(30, this,
                [&, reply] { QVERIFY(write(master, reply.constData() + 10, reply.size() - 10) > 0); });
        });

        Map map;
        auto *unit = new DemoUnit(Core::IPT_SERIAL, QStringLiteral("1"), 0x0105, &map);
        const unsigned short key = map.addItem(QModelIndex(), unit, QVector<QString>());
        SerialTransport line(&map, 300);
        QVERIFY(line.addUnit(key, QString::fromLatin1(path)));
        QSignalSpy read(unit, &DemoUnit::statusRead);
        unit->updateStatus();
        QTRY_COMPARE_WITH_TIMEOUT(unit->failedCount() + read.count(), 1, 5000);
        QCOMPARE(
            qMakePair(int(read.count()), line.errorCount()), answers ? qMakePair(1, 0) : qMakePair(0, 1));
        QVERIFY(!answers || unit->temperature() == 38);
        close(slave);
        close(master);
    }
    void hostPollsUnitsOverWires()
    {
        QTemporaryDir dir;
        HostWindow::Options options;
        options.units = 6;
        options.scanPeriodMs = 200;
        options.topologyFile = dir.filePath(QStringLiteral("layout.json"));
        options.network.errorRate = 0;
        options.agentProgram = QStringLiteral(DEMOAGENT_BINARY);
        HostWindow host(options);
        QVERIFY2(host.start(), qPrintable(host.startError()));
        const QList<unsigned short> keys = host.unitKeys();
        QCOMPARE(keys.size(), 6);
        // Every unit answers its polls, over its pseudo-terminal or its UDP endpoint.
        QTRY_VERIFY_WITH_TIMEOUT(std::all_of(keys.begin(), keys.end(),
                                     [&](unsigned short key) {
                                         return host.pollCount(key) >= 2 && host.unit(key)->hasAnswered();
                                     }),
            30000);
        QVERIFY(host.unit(keys.at(1))->isSnmp() && host.unit(keys.at(1))->temperature() >= 25);
        // Traps of the agent's units reach the list.
        QTRY_VERIFY_WITH_TIMEOUT(host.trapList()->getModel()->rowCount() > 0, 60000);
    }
};

QTEST_MAIN(tst_Wires)
#include "tst_wires.moc"
