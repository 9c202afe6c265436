#include <core/core.h>

#include <QtTest>

using Dictionary = QHash<int, QString>;

class tst_Core : public QObject
{
    Q_OBJECT
private slots:
    void alarmStr_data();
    void alarmStr();
    void iptStringInsertsOnMiss();
    void dictionaries_data();
    void dictionaries();
    void eventTables();
};

void tst_Core::alarmStr_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("ok") << 0 << "Ok";
    QTest::newRow("major") << 1 << "Major";
    QTest::newRow("minor") << 2 << "Minor";
    QTest::newRow("both bits") << 3 << "Major+Minor";
    QTest::newRow("past the end") << 4 << "";
    QTest::newRow("negative") << -1 << "";
}

void tst_Core::alarmStr()
{
    QFETCH(int, value);
    QFETCH(QString, text);
    QCOMPARE(Core::alarmStr(static_cast<Core::AlarmType>(value)), text);
}

void tst_Core::iptStringInsertsOnMiss()
{
    QCOMPARE(Core::iptString(Core::IPT_SERIAL), QStringLiteral("Serial"));
    QCOMPARE(Core::iptString(Core::IPT_SNMP_V1), QStringLiteral("SnmpV1"));
    QCOMPARE(Core::iptString(Core::IPT_SNMP_V3), QStringLiteral("SnmpV3"));
    QCOMPARE(Core::iptString(Core::IPT_WEB), QStringLiteral("Web"));

    const auto unknown = static_cast<Core::InterfaceProtocolType>(4);
    QString &added = Core::iptString(unknown);
    QVERIFY(added.isEmpty());
    // The reference points into the shared table: the entry stays.
    added = QStringLiteral("Custom");
    QCOMPARE(Core::iptString(unknown), QStringLiteral("Custom"));
    added.clear();
}

void tst_Core::dictionaries_data()
{
    QTest::addColumn<Dictionary>("table");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("text");

    QTest::newRow("action const") << Core::getActionConstDictionary() << 5 << int(Core::ACT_MAP) << "ACT_MAP";
    QTest::newRow("action display") << Core::getActionDisplayDictionary() << 5 << int(Core::ACT_SYSTEM)
                                    << "System data";
    QTest::newRow("access const") << Core::getAccessConstDictionary() << 3 << int(Core::ACM_READ_AND_WRITE)
                                  << "ACM_READ_AND_WRITE";
    QTest::newRow("access display") << Core::getAccessDisplayDictionary() << 3 << int(Core::ACM_READ)
                                    << "Read only";
    QTest::newRow("event const") << Core::getEventConstDictionary() << 19 << 0x71 << "SE_EXPORT_PRINT";
    QTest::newRow("event display") << Core::getEventDisplayDictionary() << 27 << 0x56
                                   << "Restore factory settings";
}

void tst_Core::dictionaries()
{
    QFETCH(Dictionary, table);
    QFETCH(int, size);
    QFETCH(int, key);
    QFETCH(QString, text);

    QCOMPARE(table.size(), size);
    QCOMPARE(table.value(key), text);
    QVERIFY(!table.contains(0));
}

void tst_Core::eventTables()
{
    const auto constants = Core::getEventConstDictionary();
    auto texts = Core::getEventDisplayDictionary();
    // Device events (0x51..0x58) have a text but no constant name.
    for (int code = 0x51; code <= 0x58; ++code)
        QVERIFY2(
            !constants.contains(code) && !texts.value(code).isEmpty(), qPrintable(QString::number(code)));
    QCOMPARE(texts.value(84), QStringLiteral("Apply changes"));
    for (auto it = constants.cbegin(); it != constants.cend(); ++it)
        QVERIFY(texts.contains(it.key()) && it.key() <= 0x71);

    // Each call hands out its own copy.
    texts[84] = QStringLiteral("changed");
    QCOMPARE(Core::getEventDisplayDictionary().value(84), QStringLiteral("Apply changes"));
}

QTEST_GUILESS_MAIN(tst_Core)
#include "tst_core.moc"
