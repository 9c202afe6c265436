// Against net-snmp's own agent and tools: requests to snmpd, traps from snmptrap.
#include <memory/memorymap.h>
#include <memory/u8array.h>
#include <snmp/snmpclient.h>
#include <snmp/snmptrapreceiver.h>

#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUdpSocket>
#include <QtTest>

using Variables = QHash<QString, QVariant>;

namespace {

const QString sysDescr = QStringLiteral(".1.3.6.1.2.1.1.1.0");
const QString sysContact = QStringLiteral(".1.3.6.1.2.1.1.4.0");
const QString sysLocation = QStringLiteral(".1.3.6.1.2.1.1.6.0");
const QString engine = QStringLiteral("0x8000000001020304");
const QString snmpTrapOid = QStringLiteral(".1.3.6.1.6.3.1.1.4.1.0");
const QString sysUpTime = QStringLiteral(".1.3.6.1.2.1.1.3.0");
const QString unitVariable = QStringLiteral(".1.3.6.1.4.1.32473.1.1.0");

quint16 freePort()
{
    QUdpSocket socket;
    socket.bind(QHostAddress(QHostAddress::LocalHost), 0);
    return socket.localPort();
}

SnmpTarget target(quint16 port, SnmpTarget::Version version)
{
    SnmpTarget t;
    t.host = QHostAddress::LocalHost;
    t.port = port;
    t.version = version;
    t.community = QStringLiteral("private");
    t.timeout = 300;
    t.retries = 1;
    return t;
}

// The agent's v3 user; a wrong passphrase when given.
SnmpTarget v3(quint16 port, const QString &authPass = QStringLiteral("shapassword"))
{
    SnmpTarget t = target(port, SnmpTarget::V3);
    t.user = QStringLiteral("shaaes");
    t.authProtocol = SnmpTarget::SHA;
    t.authPassphrase = authPass;
    t.privProtocol = SnmpTarget::AES;
    t.privPassphrase = QStringLiteral("aespassword");
    return t;
}

// One request run to its end: error -1 when no signal came.
struct Outcome
{
    int error = -1;
    QString message;
    Variables variables;
};

Outcome await(SnmpClient &client, int id)
{
    QSignalSpy finished(&client, &SnmpClient::finished);
    QSignalSpy failed(&client, &SnmpClient::failed);
    if (id == 0 || !QTest::qWaitFor([&] { return finished.size() + failed.size() == 1; }, 10000))
        return Outcome();
    const QList<QVariant> args = finished.isEmpty() ? failed.first() : finished.first();
    if (args.first().toInt() != id)
        return Outcome();
    if (!finished.isEmpty())
        return {SnmpClient::NoError, QString(), args.at(1).value<Variables>()};
    return {int(args.at(1).value<SnmpClient::Error>()), args.at(2).toString(), {}};
}

} // namespace

class tst_SnmpClient : public QObject
{
    Q_OBJECT
    // What net-snmp's own tool reads with the target's credentials.
    QStringList tool(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, arguments);
        if (!process.waitForFinished(10000))
            process.kill();
        return QString::fromLatin1(process.readAllStandardOutput())
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    QStringList credentials(const SnmpTarget &t)
    {
        if (t.version != SnmpTarget::V3)
            return {"-v", t.version == SnmpTarget::V1 ? "1" : "2c", "-c", t.community};
        return {"-v3", "-l", "authPriv", "-u", t.user, "-a", "SHA", "-A", t.authPassphrase, "-x", "AES", "-X",
            t.privPassphrase};
    }

    QTemporaryDir dir;
    QProcess agent;
    quint16 port = 0;
    SnmpTrapReceiver receiver;

private slots:
    void initTestCase()
    {
        if (!QFile::exists(QStringLiteral("/usr/sbin/snmpd")))
            QSKIP("snmpd is not installed");
        port = freePort();
        QFile config(dir.filePath(QStringLiteral("snmpd.conf")));
        QVERIFY(config.open(QIODevice::WriteOnly));
        config.write("rocommunity public 127.0.0.1\n"
                     "rwcommunity private 127.0.0.1\n"
                     "createUser shaaes SHA shapassword AES aespassword\n"
                     "rwuser shaaes priv\n");
        config.close();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("SNMP_PERSISTENT_DIR"), dir.filePath(QStringLiteral("state")));
        environment.insert(QStringLiteral("MIBS"), QString());
        agent.setProcessEnvironment(environment);
        agent.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // Under timeout, so that the agent ends even when this test is killed.
        agent.start("timeout",
            {"280", "/usr/sbin/snmpd", "-f", "-Lo", "-C", "-c", config.fileName(),
                QStringLiteral("udp:127.0.0.1:%1").arg(port)});
        QVERIFY(agent.waitForStarted());
        QVERIFY(QTest::qWaitFor(
            [this] { return agent.readAllStandardOutput().contains("NET-SNMP version"); }, 10000));
        QVERIFY2(receiver.listen(QHostAddress::LocalHost, 0), qPrintable(receiver.errorString()));
        QVERIFY(receiver.serverPort() != 0);
        QVERIFY2(receiver.addUser(engine, QStringLiteral("trapuser"), SnmpTarget::SHA,
                     QStringLiteral("authpassword"), SnmpTarget::AES, QStringLiteral("privpassword")),
            qPrintable(receiver.errorString()));
        QVERIFY(!receiver.addUser(
            QStringLiteral("0xzz"), QStringLiteral("x"), SnmpTarget::SHA, QStringLiteral("authpassword")));
    }
    void cleanupTestCase()
    {
        agent.terminate();
        if (!agent.waitForFinished(5000))
            agent.kill();
    }
    void exchange_data()
    {
        QTest::addColumn<SnmpTarget>("t");
        QTest::newRow("v1") << target(port, SnmpTarget::V1);
        QTest::newRow("v2c") << target(port, SnmpTarget::V2c);
        QTest::newRow("v3 authPriv") << v3(port);
    }
    // Write sysLocation, read the system group and ifTable, then load the group
    // into a memory map, change one item and send what saveData chooses.
    void exchange()
    {
        QFETCH(SnmpTarget, t);
        SnmpClient client(t);
        client.setBulkSize(3); // several exchanges per walk

        Outcome got = await(client, client.get({sysDescr, QStringLiteral("1.3.6.1.2.1.1.2.0")}));
        QVERIFY2(got.error == SnmpClient::NoError, qPrintable(got.message));
        QCOMPARE(got.variables.value(sysDescr).userType(), int(QMetaType::QString));
        QCOMPARE(got.variables.value(QStringLiteral(".1.3.6.1.2.1.1.2.0")).toString().left(18),
            QStringLiteral(".1.3.6.1.4.1.8072."));

        const QString place = QStringLiteral("rack %1").arg(QTest::currentDataTag());
        got = await(client, client.set({{sysLocation, place}}));
        QVERIFY2(got.error == SnmpClient::NoError, qPrintable(got.message));

        const QStringList common
            = credentials(t) + QStringList {"-On", "-Oq", QStringLiteral("127.0.0.1:%1").arg(port)};
        for (const QString subtree : {".1.3.6.1.2.1.2.2", ".1.3.6.1.2.1.1"}) {
            got = await(client, client.walk(subtree));
            QVERIFY2(got.error == SnmpClient::NoError, qPrintable(got.message));
            QStringList expected;
            for (const QString &line : tool("snmpwalk", common + QStringList(subtree)))
                expected << line.section(QLatin1Char(' '), 0, 0);
            QStringList keys = got.variables.keys();
            keys.sort();
            expected.sort();
            QCOMPARE(keys, expected);
        }
        QCOMPARE(got.variables.value(QStringLiteral(".1.3.6.1.2.1.1.3.0")).userType(), int(QMetaType::UInt));

        MemoryMap map;
        U8Array *contact = new U8Array, *location = new U8Array;
        contact->setStartAddress(QStringLiteral(".1.3.6.1.2.1.1.4"));
        location->setStartAddress(QStringLiteral(".1.3.6.1.2.1.1.6"));
        map.addItem(QStringLiteral("contact"), contact);
        map.addItem(QStringLiteral("location"), location);
        QVERIFY(map.loadData(&got.variables)); // the system group, walked last

        QCOMPARE(location->getValue(), QVariant(place));
        const QString person = QStringLiteral("operator %1").arg(QTest::currentDataTag());
        contact->setValue(QVariant(person));
        Variables toSend;
        QVERIFY(map.saveData(&toSend));
        QCOMPARE(toSend, Variables({{sysContact, person}}));
        got = await(client, client.set(toSend));
        QVERIFY2(got.error == SnmpClient::NoError, qPrintable(got.message));

        const QStringList held = tool("snmpget",
            credentials(t)
                + QStringList {"-Oqv", QStringLiteral("127.0.0.1:%1").arg(port), sysContact, sysLocation});
        QCOMPARE(held, QStringList({'"' + person + '"', '"' + place + '"'}));
    }
    void failures_data()
    {
        QTest::addColumn<SnmpTarget>("t");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("message");

        const SnmpTarget v1 = target(port, SnmpTarget::V1);
        const SnmpTarget v2 = target(port, SnmpTarget::V2c);
        SnmpTarget silent = v2;
        silent.port = freePort();
        // clang-format off
        QTest::newRow("nothing listens") << silent << "get" << QVariant() << int(SnmpClient::TimeoutError) << "";
        QTest::newRow("wrong v3 key") << v3(port, "wrongpassword") << "get" << QVariant() << int(SnmpClient::AuthenticationError) << "";
        QTest::newRow("v1 missing object") << v1 << "get" << QVariant() << int(SnmpClient::AgentError) << "noSuchName";
        QTest::newRow("v2c missing object") << v2 << "get" << QVariant() << int(SnmpClient::NoError) << "";
        QTest::newRow("v2c wrong type") << v2 << sysContact << QVariant(5) << int(SnmpClient::AgentError) << "wrongType";
        QTest::newRow("read-only") << v2 << sysDescr << QVariant("x") << int(SnmpClient::AgentError) << "notWritable";
        QTest::newRow("over the bound") << v2 << "walk" << QVariant() << int(SnmpClient::TooManyVariablesError) << "";
        QTest::newRow("not an OID") << v2 << "1.3.x" << QVariant(1) << -1 << "";
        QTest::newRow("short passphrase") << v3(port, "short") << "get" << QVariant() << -1 << "";
        // clang-format on
    }
    void failures()
    {
        QFETCH(SnmpTarget, t);
        QFETCH(QString, operation);
        QFETCH(QVariant, value);
        QFETCH(int, error);
        QFETCH(QString, message);

        SnmpClient client(t);
        client.setMaxVariables(4);
        const int id = operation == QLatin1String("get") ? client.get({QStringLiteral(".1.3.6.1.2.1.1.99.0")})
            : operation == QLatin1String("walk")         ? client.walk(QStringLiteral(".1.3.6.1.2.1.1"))
                                                         : client.set({{operation, value}});
        if (error < 0) {
            QCOMPARE(id, 0);
            QVERIFY(!client.errorString().isEmpty());
            return;
        }
        const Outcome got = await(client, id);
        QCOMPARE(got.error, error);
        QVERIFY2(message.isEmpty() || got.message.startsWith(message), qPrintable(got.message));
        QVERIFY(got.variables.isEmpty());
    }
    void traps_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("trapOid");

        const QStringList v2 = {"HOST", "1234", ".1.3.6.1.4.1.32473.0.5", unitVariable, "s", "unit text"};
        const QStringList v1 = {"-v", "1", "-c", "public", "HOST", ".1.3.6.1.4.1.32473.1", "127.0.0.1"};
        const QStringList tail = {"1234", unitVariable, "s", "unit text"}, c2 = {"-v", "2c", "-c", "public"};
        const QStringList user = {"-v", "3", "-e", engine, "-u", "trapuser", "-l", "authPriv", "-a", "SHA",
            "-A", "authpassword", "-x", "AES", "-X", "privpassword"};
        // clang-format off
        QTest::newRow("v1 enterprise-specific") << "snmptrap" << v1 + QStringList {"6", "17"} + tail << ".1.3.6.1.4.1.32473.1.0.17";
        QTest::newRow("v1 generic linkUp") << "snmptrap" << v1 + QStringList {"3", "0"} + tail << ".1.3.6.1.6.3.1.1.5.4";
        QTest::newRow("v2c trap") << "snmptrap" << c2 + v2 << ".1.3.6.1.4.1.32473.0.5";
        // snmpinform fails unless the receiver acknowledges.
        QTest::newRow("v2c inform") << "snmpinform" << c2 + v2 << ".1.3.6.1.4.1.32473.0.5";
        QTest::newRow("v3 authPriv") << "snmptrap" << user + v2 << ".1.3.6.1.4.1.32473.0.5";
        // clang-format on
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

QTEST_GUILESS_MAIN(tst_SnmpClient)
#include "tst_snmpclient.moc"
