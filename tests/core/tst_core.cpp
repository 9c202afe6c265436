#include <core/convert.h>
#include <core/core.h>

#include <QtTest>

#include <QIcon>
#include <QImage>
#include <QPainter>

using Dictionary = QHash<int, QString>;

namespace {

// A byte string from hex text; the (data, size) form, as the QByteArray
// overload stops at a zero byte.
const auto bytes = [](const char *hex) {
    const QByteArray raw = QByteArray::fromHex(hex);
    return QString::fromLatin1(raw.constData(), raw.size());
};

[[maybe_unused]] const bool doubleDensity = qputenv("QT_SCALE_FACTOR", "2"); // read once, at start

} // namespace

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
        const auto unknown = static_cast<Core::InterfaceProtocolType>(4);
        QCOMPARE(QStringList({Core::iptString(Core::IPT_SERIAL), Core::iptString(Core::IPT_SNMP_V1),
                     Core::iptString(Core::IPT_SNMP_V3), Core::iptString(Core::IPT_WEB),
                     Core::iptString(unknown)}),
            QStringList({"Serial", "SnmpV1", "SnmpV3", "Web", ""}));
        // The reference points into the shared table: the entry stays.
        Core::iptString(unknown) = QStringLiteral("Custom");
        QCOMPARE(Core::iptString(unknown), QStringLiteral("Custom"));
        Core::iptString(unknown).clear();
    }

    void dictionaries_data()
    {
        QTest::addColumn<Dictionary>("table");
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("text");
        // clang-format off
        QTest::newRow("action const") << Core::getActionConstDictionary() << 5 << int(Core::ACT_MAP) << "ACT_MAP";
        QTest::newRow("action display") << Core::getActionDisplayDictionary() << 5 << int(Core::ACT_SYSTEM) << "System data";
        QTest::newRow("access const") << Core::getAccessConstDictionary() << 3 << int(Core::ACM_READ_AND_WRITE) << "ACM_READ_AND_WRITE";
        QTest::newRow("access display") << Core::getAccessDisplayDictionary() << 3 << int(Core::ACM_READ) << "Read only";
        QTest::newRow("event const") << Core::getEventConstDictionary() << 19 << 0x71 << "SE_EXPORT_PRINT";
        // Device events (0x51..0x58) have a text but no constant name.
        QTest::newRow("event display") << Core::getEventDisplayDictionary() << 27 << 0x56 << "Restore factory settings";
        // clang-format on
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
    // library and is a real picture, not a blank square, with a variant of
    // twice the size that Qt paints where pixels are twice as dense.
    void iconLoads_data()
    {
        QTest::addColumn<QString>("path");
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps); // Qt 6 always does
#endif
        const char *names[] = {"folder", "serial-port", "ethernet", "no_icon", "download", "upload",
            "storage", "apply", "save", "close", "erase", "restart", "returned_black", "disconnect",
            "connect", "switchActive", "StatAutoRefresh"};
        for (const char *name : names)
            QTest::newRow(name) << QStringLiteral(":/images/%1.png").arg(QLatin1String(name));
        QCOMPARE(QDir(":/images").entryList().size(), 2 * 17); // and no icon without its variant
    }
    void iconLoads()
    {
        QFETCH(QString, path);
        const QImage image = QImage(path).convertToFormat(QImage::Format_ARGB32_Premultiplied);
        QImage blank = image;
        blank.fill(image.pixel(0, 0));
        QVERIFY(!image.isNull() && image != blank);
        QImage screen(image.size() * 2, image.format());
        screen.setDevicePixelRatio(2);
        screen.fill(Qt::transparent);
        QPainter painter(&screen);
        QIcon(path).paint(&painter, image.rect());
        painter.end();
        QVERIFY(screen == QImage(QString(path).replace(".png", "@2x.png")).convertToFormat(image.format()));
    }

    void endian_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("big reversed") << 0 << QByteArray("\x01\x02\x03", 3) << QByteArray("\x03\x02\x01", 3);
        QTest::newRow("little kept") << 1 << QByteArray("\x01\x02\x03", 3) << QByteArray("\x01\x02\x03", 3);
    }
    void endian()
    {
        QFETCH(int, type);
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, expected);
        QByteArray toLit = input;
        Convert::toLitEndian(static_cast<Convert::EndianType>(type), toLit);
        QCOMPARE(toLit, expected);
        Convert::toCurrentEndianFromLit(static_cast<Convert::EndianType>(type), input);
        QCOMPARE(input, expected);
    }

    void cmdRecord_data()
    {
        QTest::addColumn<QString>("record");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("parts");
        QTest::newRow("two parts") << "a<@>b" << true << "a=b";
        QTest::newRow("three parts") << "a<@>b<@>c" << false << "keep=keep";
        QTest::newRow("empty value dropped") << "a<@>" << false << "keep=keep";
        QTest::newRow("empty middle dropped") << "a<@><@>b" << true << "a=b";
        QTest::newRow("made by makeCmdRecord")
            << Convert::makeCmdRecord("ip", "1.2.3.4") << true << "ip=1.2.3.4";
    }
    void cmdRecord()
    {
        QFETCH(QString, record);
        QString name = QStringLiteral("keep");
        QString value = QStringLiteral("keep");
        QTEST(Convert::getCmdRecord(record, name, value), "ok");
        QTEST(name + QLatin1Char('=') + value, "parts");
    }

    void crc32_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("expected");
        // Catalogue values of the reflected CRC-32 (IEEE 802.3).
        QTest::newRow("check string") << "123456789" << QByteArray::fromHex("cbf43926");
        QTest::newRow("empty") << "" << QByteArray(4, '\0');
        // The units widen a byte as signed: 0xE9 enters as 0xFFFFFFE9, which is
        // zlib's crc32(b"\xe9", 0xFFFFFF00), not the catalogue's 0x2E6BD2B0.
        QTest::newRow("high byte sign-extended") << QString(QChar(0xE9)) << QByteArray::fromHex("0b2b4aae");
    }
    void crc32()
    {
        QFETCH(QString, text);
        QTEST(Convert::crc32(text), "expected");
    }

    void addressRoundTrip_data()
    {
        QTest::addColumn<bool>("mac");
        QTest::addColumn<QString>("raw");
        QTest::addColumn<QString>("text");
        QTest::newRow("ip broadcast") << false << bytes("ffffffff") << "255.255.255.255";
        QTest::newRow("mac high bytes") << true << bytes("ffeeddccbbaa") << "ff:ee:dd:cc:bb:aa";
    }
    void addressRoundTrip()
    {
        QFETCH(bool, mac);
        QFETCH(QString, raw);
        QFETCH(QString, text);
        const auto toText = mac ? Convert::macToString : Convert::ipToString;
        const auto toRaw = mac ? Convert::stringToMac : Convert::stringToIp;
        QCOMPARE(toText(raw), text);
        QCOMPARE(toRaw(text.toUpper()), raw);
        // Only the leading bytes count; fewer give nothing.
        QCOMPARE(toText(raw + QChar(9)), text);
        QCOMPARE(toText(raw.left(raw.size() - 1)), QString());
    }

    void validate()
    {
        const QStringList texts {"192.168.1.1", "255.255.255.255", "192.168.1", "1.2.3.4.5", "192.168..1",
            "256.1.1.1", " 192.168.1.1", "+1.2.3.4", "99999999999999999999.1.1.1", "255.255.240.0", "0.0.0.0",
            "255.255.0.255", "0.0.0.1", "255.255.255"};
        QString ip, mask;
        for (const QString &text : texts) {
            ip += Convert::validateIP(text) ? '1' : '0';
            mask += Convert::validateSubnetMask(text) ? '1' : '0';
        }
        // A mask is an address whose ones all come first.
        QCOMPARE(ip + ' ' + mask, QStringLiteral("11000000011110 01000000011000"));
    }

    // Unit dates: year high and low byte, month, day, hours, minutes,
    // seconds, milliseconds' low byte; the text form ends at a zero byte.
    void date_data()
    {
        QTest::addColumn<QDateTime>("when");
        QTest::addColumn<QString>("raw");
        QTest::addColumn<bool>("roundTrip");
        // clang-format off
        QTest::newRow("full") << QDateTime(QDate(2024, 12, 31), QTime(23, 59, 58, 7)) << bytes("07e80c1f173b3a07") << true;
        QTest::newRow("cut at zero second") << QDateTime(QDate(2024, 3, 5), QTime(10, 20, 0)) << bytes("07e803050a14") << true;
        QTest::newRow("milliseconds keep low byte") << QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5, 300)) << bytes("07e80102030405") + QChar(300 & 0xFF) << false;
        // clang-format on
    }
    void date()
    {
        QFETCH(QDateTime, when);
        QFETCH(QString, raw);
        QFETCH(bool, roundTrip);
        QCOMPARE(Convert::dateToString(when), raw);
        if (roundTrip)
            QCOMPARE(Convert::strToDate(raw), when);
    }

    void shortDatesLoadsAndTruthValues()
    {
        QVERIFY(!Convert::strToDate(bytes("07e8")).isValid() && !Convert::strToDate(QString()).isValid());
        QCOMPARE(Convert::TCFloadToString(1234) + ' ' + Convert::TCFloadToString(-5),
            QStringLiteral("12.34 -0.05"));
        QCOMPARE(QVector<int>({Convert::boolToInt(true), Convert::boolToInt(false), Convert::intToBool(1),
                     Convert::intToBool(2), Convert::intToBool(0)}),
            QVector<int>({1, 2, 1, 0, 0}));
    }
};

QTEST_MAIN(tst_Core)
#include "tst_core.moc"
