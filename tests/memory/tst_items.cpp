#include <memory/u16array.h>
#include <memory/u16item.h>
#include <memory/u8array.h>
#include <memory/u8item.h>

#include <QJsonObject>
#include <QtTest>

namespace {

// A scalar item fed the way a unit feeds it: an image in mode 0, a
// variable set in mode 1.
template<typename Item> Item &feed(Item &item, int mode, const QByteArray &bytes, const QVariant &snmp)
{
    item.setStartAddress(QStringLiteral(".1.7"));
    QByteArray image = bytes;
    QHash<QString, QVariant> received;
    if (snmp.isValid())
        received.insert(QStringLiteral(".1.7.0"), snmp);
    const bool read = mode == 0 ? item.readData(&image) : item.readData(&received);
    QTest::qVerify(read, "readData", "the item refused its data", __FILE__, __LINE__);
    return item;
}

class ScaledItem : public U8Item
{
public:
    int calls = 0;
    void set(unsigned char value) override
    {
        ++calls;
        U8Item::set(static_cast<unsigned char>(value * 2));
    }
};

} // namespace

class tst_Items : public QObject
{
    Q_OBJECT
private slots:
    void scalars_data()
    {
        QTest::addColumn<bool>("wide");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QVariant>("snmp");
        QTest::addColumn<int>("expected");

        QTest::newRow("u8 byte copy") << false << 0 << QByteArray("\x2a", 1) << QVariant() << 42;
        QTest::newRow("u8 snmp is one higher") << false << 1 << QByteArray() << QVariant(3) << 2;
        QTest::newRow("u8 snmp absent reads 255") << false << 1 << QByteArray() << QVariant() << 255;
        QTest::newRow("u8 snmp text number")
            << false << 1 << QByteArray() << QVariant(QStringLiteral("5")) << 4;
        QTest::newRow("u8 snmp extreme does not overflow")
            << false << 1 << QByteArray() << QVariant(INT_MIN) << 255;
        QTest::newRow("u16 byte copy little-endian")
            << true << 0 << QByteArray("\x34\x12", 2) << QVariant() << 0x1234;
        QTest::newRow("u16 snmp same number") << true << 1 << QByteArray() << QVariant(0x1234) << 0x1234;
        QTest::newRow("u16 snmp cut to 16 bits") << true << 1 << QByteArray() << QVariant(0x12345) << 0x2345;
        QTest::newRow("u16 snmp absent reads 0") << true << 1 << QByteArray() << QVariant() << 0;
    }
    void scalars()
    {
        QFETCH(bool, wide);
        QFETCH(int, mode);
        QFETCH(QByteArray, bytes);
        QFETCH(QVariant, snmp);
        QFETCH(int, expected);

        U8Item byte;
        U16Item word;
        QCOMPARE(wide ? int(feed(word, mode, bytes, snmp).get()) : int(feed(byte, mode, bytes, snmp).get()),
            expected);
    }
    void setByMode()
    {
        U8Item byte;
        feed(byte, 1, QByteArray(), QVariant(3));
        byte.set(9);
        QCOMPARE(byte.getValue(), QVariant(10));
        QVERIFY(byte.getLocalCopy().isEmpty()); // the byte copy is not touched in mode 1

        U8Item undelivered;
        feed(undelivered, 1, QByteArray(), QVariant());
        undelivered.set(4);
        QVERIFY(undelivered.getSnmpData().isEmpty());

        U16Item word;
        feed(word, 0, QByteArray(2, '\0'), QVariant());
        word.set(0xBEEF);
        QCOMPARE(word.getLocalCopy(), QByteArray("\xef\xbe", 2));
    }
    void json_data()
    {
        QTest::addColumn<bool>("wide");
        QTest::addColumn<QJsonObject>("object");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<int>("expected");

        QTest::newRow("u8 plain") << false << QJsonObject {{"baserawtype", 7}} << true << 7;
        QTest::newRow("u8 cut to 8 bits") << false << QJsonObject {{"baserawtype", 300}} << true << 44;
        QTest::newRow("u8 negative") << false << QJsonObject {{"baserawtype", -1}} << true << 255;
        QTest::newRow("u8 text is 0") << false << QJsonObject {{"baserawtype", "12"}} << true << 0;
        QTest::newRow("u8 huge is 0") << false << QJsonObject {{"baserawtype", 1e300}} << true << 0;
        QTest::newRow("u8 fraction truncated") << false << QJsonObject {{"baserawtype", 12.9}} << true << 12;
        QTest::newRow("u8 key missing") << false << QJsonObject {{"other", 1}} << false << 0x11;
        QTest::newRow("u16 plain") << true << QJsonObject {{"baserawtype", 0xBEEF}} << true << 0xBEEF;
        QTest::newRow("u16 cut to 16 bits") << true << QJsonObject {{"baserawtype", 0x10001}} << true << 1;
        QTest::newRow("u16 key missing") << true << QJsonObject() << false << 0x2211;
    }
    void json()
    {
        QFETCH(bool, wide);
        QFETCH(QJsonObject, object);
        QFETCH(bool, accepted);
        QFETCH(int, expected);

        U8Item byte;
        U16Item word;
        BaseRawType &item = wide ? static_cast<BaseRawType &>(word) : byte;
        QByteArray image("\x11\x22", 2);
        QVERIFY(item.readData(&image));

        QCOMPARE(item.deserialise(object), accepted);
        QCOMPARE(int(wide ? word.get() : byte.get()), expected);

        QJsonObject out {{"kept", true}};
        item.serialise(out);
        QCOMPARE(out, (QJsonObject {{"kept", true}, {"baserawtype", expected}}));
    }
    void deserialiseUsesDerivedSet()
    {
        ScaledItem item;
        QVERIFY(item.deserialise(QJsonObject {{"baserawtype", 5}}));
        QCOMPARE(item.calls, 1);
        QCOMPARE(int(item.get()), 10);
    }
    void arrays()
    {
        U16Array words;
        words.setDimension(1, 3);
        QByteArray image("\x01\x00\x02\x00\x34\x12", 6);
        QVERIFY(words.readData(&image));
        QCOMPARE(int(words.get(2)), 0x1234);
        QCOMPARE(int(words.get(3)), 0);
        words.set(4, 0xCAFE);
        QCOMPARE(words.getLocalCopy(), QByteArray("\x01\x00\x02\x00\x34\x12\x00\x00\xfe\xca", 10));

        U8Array bytes;
        bytes.set(1, 0xAB);
        QCOMPARE(int(bytes.get(1)), 0xAB);
        QCOMPARE(int(bytes.get(255)), 0);

        // Arrays keep no JSON value and do not restore from one.
        QJsonObject object;
        words.serialise(object);
        QVERIFY(object.isEmpty());
        QVERIFY(!words.deserialise(QJsonObject {{"baserawtype", 1}}));
    }
};

QTEST_GUILESS_MAIN(tst_Items)
#include "tst_items.moc"
