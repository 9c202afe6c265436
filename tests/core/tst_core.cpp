#include <core/core.h>

#include <QtTest>

#include <QIcon>
#include <QImage>

using Dictionary = QHash<int, QString>;

class tst_Core : public QObject
{
    Q_OBJECT
private slots:
    void alarmStr()
    {
        QStringList texts; // -1 and 4 lie outside the table
        for (int value = -1; value <= 4; ++value)
            texts << Core::alarmStr(static_cast<Core::AlarmType>(value));
        QCOMPARE(texts.join('|'), QStringLiteral("|Ok|Major|Minor|Major+Minor|"));
    }

    void iptStringInsertsOnMiss()
    {
        QCOMPARE(QStringList({Core::iptString(Core::IPT_SERIAL), Core::iptString(Core::IPT_SNMP_V1),
                     Core::iptString(Core::IPT_SNMP_V3), Core::iptString(Core::IPT_WEB),
                     Core::iptString(static_cast<Core::InterfaceProtocolType>(4))}),
            QStringList({"Serial", "SnmpV1", "SnmpV3", "Web", ""}));
        const auto unknown = static_cast<Core::InterfaceProtocolType>(4);
        QString &added = Core::iptString(unknown);
        // The reference points into the shared table: the entry stays.
        added = QStringLiteral("Custom");
        QCOMPARE(Core::iptString(unknown), QStringLiteral("Custom"));
        added.clear();
    }

    void dictionaries_data()
    {
        QTest::addColumn<Dictionary>("table");
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("text");
        QTest::newRow("action const")
            << Core::getActionConstDictionary() << 5 << int(Core::ACT_MAP) << "ACT_MAP";
        QTest::newRow("action display")
            << Core::getActionDisplayDictionary() << 5 << int(Core::ACT_SYSTEM) << "System data";
        QTest::newRow("access const")
            << Core::getAccessConstDictionary() << 3 << int(Core::ACM_READ_AND_WRITE) << "ACM_READ_AND_WRITE";
        QTest::newRow("access display")
            << Core::getAccessDisplayDictionary() << 3 << int(Core::ACM_READ) << "Read only";
        QTest::newRow("event const") << Core::getEventConstDictionary() << 19 << 0x71 << "SE_EXPORT_PRINT";
        // Device events (0x51..0x58) have a text but no constant name.
        QTest::newRow("event display")
            << Core::getEventDisplayDictionary() << 27 << 0x56 << "Restore factory settings";
    }
    void dictionaries()
    {
        QFETCH(Dictionary, table);
        QFETCH(int, key);
        QTEST(int(table.size()), "size");
        QTEST(table.value(key), "text");
        QVERIFY(!table.contains(0));
    }

    // Every icon a host or the configuration window names ships inside the
    // library and is a real picture, not a blank square.
    void iconLoads_data()
    {
        QTest::addColumn<QString>("path");
        const char *names[] = {"folder", "serial-port", "ethernet", "no_icon", "download", "upload",
            "storage", "apply", "save", "close", "erase", "restart", "returned_black", "disconnect",
            "connect", "switchActive", "StatAutoRefresh"};
        for (const char *name : names)
            QTest::newRow(name) << QStringLiteral(":/images/%1.png").arg(QLatin1String(name));
        QTest::newRow("default unit icon path") << QStringLiteral("://images/no_icon.png");
    }
    void iconLoads()
    {
        QFETCH(QString, path);
        QVERIFY(!QIcon(path).isNull());
        const QImage image(path);
        int drawn = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                drawn += qAlpha(image.pixel(x, y)) > 0;
        QVERIFY(drawn > image.width());
    }
};

QTEST_MAIN(tst_Core)
#include "tst_core.moc"
