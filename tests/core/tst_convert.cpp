#include <core/convert.h>

#include <QtTest>

namespace {

// Builds a byte string from hex text such as "07 e8 03".
QString bytes(const char *hex)
{
    const QByteArray raw = QByteArray::fromHex(hex);
    // The (data, size) form: the QByteArray overload stops at a zero byte.
    return QString::fromLatin1(raw.constData(), raw.size());
}

} // namespace

class tst_Convert : public QObject
{
    Q_OBJECT
private slots:
    void endian_data();
    void endian();
    void cmdRecord_data();
    void cmdRecord();
    void crc32_data();
    void crc32();
    void crc32SignExtendsHighBytes();
    void addressRoundTrip_data();
    void addressRoundTrip();
    void validate_data();
    void validate();
    void dateToString_data();
    void dateToString();
    void strToDate_data();
    void strToDate();
    void loadAndTruthValues();
};

void tst_Convert::endian_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("big reversed") << 0 << QByteArray("\x01\x02\x03", 3) << QByteArray("\x03\x02\x01", 3);
    QTest::newRow("little kept") << 1 << QByteArray("\x01\x02\x03", 3) << QByteArray("\x01\x02\x03", 3);
    QTest::newRow("any other kept") << 7 << QByteArray("\x01\x02", 2) << QByteArray("\x01\x02", 2);
    QTest::newRow("empty") << 0 << QByteArray() << QByteArray();
}

void tst_Convert::endian()
{
    QFETCH(int, type);
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, expected);

    QByteArray toLit = input;
    Convert::toLitEndian(static_cast<Convert::EndianType>(type), toLit);
    QCOMPARE(toLit, expected);
    QByteArray fromLit = input;
    Convert::toCurrentEndianFromLit(static_cast<Convert::EndianType>(type), fromLit);
    QCOMPARE(fromLit, expected);
}

void tst_Convert::cmdRecord_data()
{
    QTest::addColumn<QString>("record");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");

    QTest::newRow("two parts") << "a<@>b" << true << "a"
                               << "b";
    QTest::newRow("three parts") << "a<@>b<@>c" << false << "keep"
                                 << "keep";
    QTest::newRow("empty value dropped") << "a<@>" << false << "keep"
                                         << "keep";
    QTest::newRow("empty middle dropped") << "a<@><@>b" << true << "a"
                                          << "b";
    QTest::newRow("no separator") << "ab" << false << "keep"
                                  << "keep";
    QTest::newRow("separator is exact") << "a<@ >b" << false << "keep"
                                        << "keep";
    QTest::newRow("made by makeCmdRecord") << Convert::makeCmdRecord("ip", "10.0.0.1") << true << "ip"
                                           << "10.0.0.1";
}

void tst_Convert::cmdRecord()
{
    QFETCH(QString, record);
    QFETCH(bool, ok);
    QFETCH(QString, name);
    QFETCH(QString, value);

    QString gotName = QStringLiteral("keep");
    QString gotValue = QStringLiteral("keep");
    QCOMPARE(Convert::getCmdRecord(record, gotName, gotValue), ok);
    QCOMPARE(gotName, name);
    QCOMPARE(gotValue, value);
}

void tst_Convert::crc32_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("expected");

    // Catalogue values of the reflected CRC-32 (IEEE 802.3).
    QTest::newRow("check string") << "123456789" << QByteArray::fromHex("cbf43926");
    QTest::newRow("empty") << "" << QByteArray(4, '\0');
    QTest::newRow("single a") << "a" << QByteArray::fromHex("e8b7be43");
    QTest::newRow("fox") << "The quick brown fox jumps over the lazy dog" << QByteArray::fromHex("414fa339");
}

void tst_Convert::crc32()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, expected);
    QCOMPARE(Convert::crc32(text), expected);
}

void tst_Convert::crc32SignExtendsHighBytes()
{
    // Standard CRC-32 of the single byte 0xE9 is 0x2E6BD2B0 (bitwise, from the
    // catalogue polynomial); the units' variant mixes in 0xFFFFFFE9 instead.
    quint32 crc = 0xFFFFFFFFu ^ 0xFFFFFFE9u;
    for (int i = 0; i < 8; ++i)
        crc = (crc >> 1) ^ ((crc & 1u) ? 0xEDB88320u : 0u);
    crc = ~crc;
    const QByteArray expected = QByteArray::fromHex(QByteArray::number(crc, 16).rightJustified(8, '0'));

    const QByteArray got = Convert::crc32(QString(QChar(0xE9)));
    QCOMPARE(got, expected);
    QVERIFY(got != QByteArray::fromHex("2e6bd2b0"));
}

void tst_Convert::addressRoundTrip_data()
{
    QTest::addColumn<bool>("mac");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("text");

    QTest::newRow("ip private") << false << bytes("c0a80101") << "192.168.1.1";
    QTest::newRow("ip zeros") << false << bytes("00000000") << "0.0.0.0";
    QTest::newRow("ip broadcast") << false << bytes("ffffffff") << "255.255.255.255";
    QTest::newRow("mac mixed") << true << bytes("001a2b3c4d5e") << "00:1a:2b:3c:4d:5e";
    QTest::newRow("mac high bytes") << true << bytes("ffeeddccbbaa") << "ff:ee:dd:cc:bb:aa";
}

void tst_Convert::addressRoundTrip()
{
    QFETCH(bool, mac);
    QFETCH(QString, raw);
    QFETCH(QString, text);
    const auto toText = mac ? Convert::macToString : Convert::ipToString;
    const auto toRaw = mac ? Convert::stringToMac : Convert::stringToIp;
    QCOMPARE(toText(raw), text);
    QCOMPARE(toRaw(text), raw);
    QCOMPARE(toRaw(text.toUpper()), raw);
    // Only the leading bytes count; fewer give nothing.
    QCOMPARE(toText(raw + QChar(9)), text);
    QCOMPARE(toText(raw.left(raw.size() - 1)), QString());
}

void tst_Convert::validate_data()
{
    QTest::addColumn<bool>("mask");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");

    QTest::newRow("ip plain") << false << "192.168.1.1" << true;
    QTest::newRow("ip zeros") << false << "0.0.0.0" << true;
    QTest::newRow("ip three parts") << false << "192.168.1" << false;
    QTest::newRow("ip five parts") << false << "1.2.3.4.5" << false;
    QTest::newRow("ip empty part") << false << "192.168..1" << false;
    QTest::newRow("ip trailing dot") << false << "1.2.3.4." << false;
    QTest::newRow("ip over 255") << false << "256.1.1.1" << false;
    QTest::newRow("ip leading blank") << false << " 192.168.1.1" << false;
    QTest::newRow("ip sign") << false << "+1.2.3.4" << false;
    QTest::newRow("ip letters") << false << "a.b.c.d" << false;
    QTest::newRow("ip empty") << false << "" << false;
    QTest::newRow("ip huge number") << false << "99999999999999999999.1.1.1" << false;
    QTest::newRow("mask class c") << true << "255.255.255.0" << true;
    QTest::newRow("mask slash 20") << true << "255.255.240.0" << true;
    QTest::newRow("mask all ones") << true << "255.255.255.255" << true;
    QTest::newRow("mask all zeros") << true << "0.0.0.0" << true;
    QTest::newRow("mask hole at the end") << true << "255.255.0.255" << false;
    QTest::newRow("mask alternating") << true << "255.0.255.0" << false;
    QTest::newRow("mask one stray bit") << true << "0.0.0.1" << false;
    QTest::newRow("mask not an address") << true << "255.255.255" << false;
}

void tst_Convert::validate()
{
    QFETCH(bool, mask);
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QCOMPARE(mask ? Convert::validateSubnetMask(text) : Convert::validateIP(text), valid);
}

void tst_Convert::dateToString_data()
{
    QTest::addColumn<QDateTime>("when");
    QTest::addColumn<QString>("raw");

    QTest::newRow("cut at zero second")
        << QDateTime(QDate(2024, 3, 5), QTime(10, 20, 0)) << bytes("07e803050a14");
    QTest::newRow("full") << QDateTime(QDate(2024, 12, 31), QTime(23, 59, 58, 7))
                          << bytes("07e80c1f173b3a07");
    QTest::newRow("milliseconds keep low byte")
        << QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5, 300)) << bytes("07e80102030405") + QChar(300 & 0xFF);
    QTest::newRow("midnight") << QDateTime(QDate(2024, 1, 2), QTime(0, 0)) << bytes("07e80102");
}

void tst_Convert::dateToString()
{
    QFETCH(QDateTime, when);
    QFETCH(QString, raw);
    QCOMPARE(Convert::dateToString(when), raw);
}

void tst_Convert::strToDate_data()
{
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QDateTime>("expected");

    QTest::newRow("full") << bytes("07e80c1f173b3a07")
                          << QDateTime(QDate(2024, 12, 31), QTime(23, 59, 58, 7));
    QTest::newRow("shortened") << bytes("07e803050a14") << QDateTime(QDate(2024, 3, 5), QTime(10, 20, 0));
    QTest::newRow("too short") << bytes("07e8") << QDateTime(QDate(2024, 0, 0), QTime(0, 0));
    QTest::newRow("empty") << QString() << QDateTime(QDate(0, 0, 0), QTime(0, 0));
}

void tst_Convert::strToDate()
{
    QFETCH(QString, raw);
    QFETCH(QDateTime, expected);
    const QDateTime got = Convert::strToDate(raw);
    QCOMPARE(got.isValid(), expected.isValid());
    if (expected.isValid())
        QCOMPARE(got, expected);
}

void tst_Convert::loadAndTruthValues()
{
    QCOMPARE(Convert::TCFloadToString(1234), QStringLiteral("12.34"));
    QCOMPARE(Convert::TCFloadToString(-5), QStringLiteral("-0.05"));
    QCOMPARE(Convert::TCFloadToString(0), QStringLiteral("0.00"));
    QCOMPARE(Convert::boolToInt(true), 1);
    QCOMPARE(Convert::boolToInt(false), 2);
    QVERIFY(Convert::intToBool(1));
    QVERIFY(!Convert::intToBool(2));
    QVERIFY(!Convert::intToBool(0));
    QVERIFY(!Convert::intToBool(-1));
}

QTEST_GUILESS_MAIN(tst_Convert)
#include "tst_convert.moc"
