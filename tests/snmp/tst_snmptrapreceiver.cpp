#include <snmp/snmptrapreceiver.h>

#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

using Variables = QHash<QString, QVariant>;

namespace {
const QString engine = QStringLiteral("0x8000000001020304");
const QString snmpTrapOid = QStringLiteral(".1.3.6.1.6.3.1.1.4.1.0");
const QString sysUpTime = QStringLiteral(".1.3.6.1.2.1.1.3.0");
const QString unitVariable = QStringLiteral(".1.3.6.1.4.1.32473.1.1.0");
} // namespace

class tst_SnmpTrapReceiver : public QObject
{
    Q_OBJECT
    SnmpTrapReceiver receiver;

private slots:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("snmptrap")).isEmpty())
            QSKIP("net-snmp's tools are not installed");
        QVERIFY2(receiver.listen(QHostAddress::LocalHost, 0), qPrintable(receiver.errorString()));
        QVERIFY(receiver.serverPort() != 0);
        QVERIFY2(receiver.addUser(engine, QStringLiteral("trapuser"), SnmpTarget::SHA,
                     QStringLiteral("authpassword"), SnmpTarget::AES, QStringLiteral("privpassword")),
            qPrintable(receiver.errorString()));
        QVERIFY(!receiver.addUser(
            QStringLiteral("0xzz"), QStringLiteral("x"), SnmpTarget::SHA, QStringLiteral("authpassword")));
    }
    void traps_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("trapOid");

        const QStringList v2 = {"HOST", "1234", ".1.3.6.1.4.1.32473.0.5", unitVariable, "s", "unit text"};
        const QStringList v1 = {"-v", "1", "-c", "public", "HOST", ".1.3.6.1.4.1.32473.1", "127.0.0.1"};
        const QStringList tail = {"1234", unitVariable, "s", "unit text"};
        QTest::newRow("v1 enterprise-specific")
            << "snmptrap" << v1 + QStringList {"6", "17"} + tail << ".1.3.6.1.4.1.32473.1.0.17";
        QTest::newRow("v1 generic linkUp")
            << "snmptrap" << v1 + QStringList {"3", "0"} + tail << ".1.3.6.1.6.3.1.1.5.4";
        QTest::newRow("v2c trap") << "snmptrap" << QStringList {"-v", "2c", "-c", "public"} + v2
                                  << ".1.3.6.1.4.1.32473.0.5";
        // snmpinform fails unless the receiver acknowledges.
        QTest::newRow("v2c inform") << "snmpinform" << QStringList {"-v", "2c", "-c", "public"} + v2
                                    << ".1.3.6.1.4.1.32473.0.5";
        QTest::newRow("v3 authPriv") << "snmptrap"
                                     << QStringList {"-v", "3", "-e", engine, "-u", "trapuser", "-l",
                                            "authPriv", "-a", "SHA", "-A", "authpassword", "-x", "AES", "-X",
                                            "privpassword"}
                + v2 << ".1.3.6.1.4.1.32473.0.5";
    }
    void traps()
    {
        QFETCH(QString, program);
        QFETCH(QStringList, arguments);
        QFETCH(QString, trapOid);

        QSignalSpy spy(&receiver, &SnmpTrapReceiver::trapReceived);
        arguments.replaceInStrings("HOST", QStringLiteral("127.0.0.1:%1").arg(receiver.serverPort()));
        // A trap of a user the receiver does not know comes first and is dropped.
        QStringList stranger = arguments;
        const int user = stranger.indexOf("trapuser");
        if (user > 0)
            stranger.replaceInStrings(QRegularExpression("^(trapuser|unit text)$"), "stranger");
        QProcess tool;
        for (const QStringList &args :
            user > 0 ? QList<QStringList> {stranger, arguments} : QList<QStringList> {arguments}) {
            tool.start(program, QStringList {"-r", "0", "-t", "3"} + args);
            while (!tool.waitForFinished(10))
                QCoreApplication::processEvents();
        }
        QCOMPARE(tool.exitCode(), 0);
        QTRY_COMPARE(spy.size(), 1);
        QCOMPARE(spy.first().at(0).value<QHostAddress>(), QHostAddress(QHostAddress::LocalHost));
        const Variables variables = spy.first().at(1).value<Variables>();
        QCOMPARE(variables.value(snmpTrapOid), QVariant(trapOid));
        QCOMPARE(variables.value(sysUpTime), QVariant(1234u));
        QCOMPARE(variables.value(unitVariable), QVariant(QStringLiteral("unit text")));
    }
    void portInUse()
    {
        SnmpTrapReceiver second;
        QVERIFY(!second.listen(QHostAddress::LocalHost, receiver.serverPort()));
        QVERIFY(!second.errorString().isEmpty());
        QVERIFY(!second.isListening());
    }
};

QTEST_GUILESS_MAIN(tst_SnmpTrapReceiver)
#include "tst_snmptrapreceiver.moc"
