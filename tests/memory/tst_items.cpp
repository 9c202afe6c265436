// The typed items a memory map is made of: scalars, arrays, peripheral
// configuration blocks and G.826 counters.

#include <memory/periphcfg.h>
#include <memory/tg826.h>
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
        QTest::newRow("u8 huge is 0") << false << QJsonObject {{"baserawtype", 1e300}} << true << 0;
        QTest::newRow("u8 key missing") << false << QJsonObject {{"other", 1}} << false << 0x11;
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
    void periphArrays_data()
    {
        QTest::addColumn<QVector<int>>("args"); // base, index or base, rows, columns, row, column
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("imageSize");
        QTest::addColumn<int>("at");
        QTest::addColumn<int>("bytes");

        // The block starts at 10 in every row.
        QTest::newRow("1-D base 4 index 2 size 2") << QVector<int> {4, 2} << 2 << 40 << 18 << 2;
        QTest::newRow("1-D size above 8 uses 8") << QVector<int> {0, 1} << 12 << 40 << 18 << 8;
        QTest::newRow("1-D index past the image") << QVector<int> {4, 26} << 1 << 40 << -1 << 0;
        QTest::newRow("1-D element cut by the image end") << QVector<int> {0, 7} << 4 << 40 << 38 << 2;
        QTest::newRow("2-D (1, 2) of 2 x 3, size 2") << QVector<int> {0, 2, 3, 1, 2} << 2 << 40 << 20 << 2;
        QTest::newRow("2-D with base") << QVector<int> {4, 2, 3, 0, 1} << 4 << 40 << 18 << 4;
        QTest::newRow("2-D array longer than the image")
            << QVector<int> {0, 4, 4, 0, 0} << 2 << 42 << -1 << 0;
    }
    void periphArrays()
    {
        QFETCH(QVector<int>, args);
        QFETCH(int, size);
        QFETCH(int, imageSize);
        QFETCH(int, at);
        QFETCH(int, bytes);

        QByteArray image(imageSize, '\0');
        for (int i = 0; i < imageSize; ++i)
            image[i] = char(i);
        const QByteArray original = image;
        PeriphCfg block;
        block.setByteArray(&image);
        block.setStartAddress(10);
        auto u = [](int v) { return static_cast<unsigned char>(v); };
        const bool flat = args.size() == 2;
        const auto get = [&] {
            return flat
                ? block.getArrayItem(u(args[0]), u(args[1]), u(size))
                : block.getArrayItem(u(args[0]), u(args[1]), u(args[2]), u(args[3]), u(args[4]), u(size));
        };

        unsigned long long expected = 0;
        for (int k = bytes - 1; k >= 0; --k)
            expected = (expected << 8) | unsigned(at + k);
        QCOMPARE(get(), expected);

        const unsigned long long value = 0xA1A2A3A4A5A6A7A8ULL;
        if (flat)
            block.setArrayItem(u(args[0]), u(args[1]), u(size), value);
        else
            block.setArrayItem(u(args[0]), u(args[1]), u(args[2]), u(args[3]), u(args[4]), u(size), value);
        QByteArray changed = original;
        for (int k = 0; k < bytes; ++k)
            changed[at + k] = char((value >> (8 * k)) & 0xFF);
        QCOMPARE(image.toHex(), changed.toHex());
    }
    void tg826Layout_data()
    {
        QTest::addColumn<int>("ports");
        QTest::addColumn<uint>("size");
        QTest::addColumn<int>("family");
        QTest::addColumn<int>("port");
        QTest::addColumn<int>("at");

        QTest::newRow("4 ports: EB E-bit port 3 at 92") << 4 << 160u << 5 << 3 << 92;
        QTest::newRow("4 ports: AvT CRC-4 port 0 at 48") << 4 << 160u << 3 << 0 << 48;
        QTest::newRow("2 ports: UnavT E-bit port 1 at 76") << 2 << 80u << 9 << 1 << 76;
        QTest::newRow("2 ports: SES CRC-4 port 0 at 16") << 2 << 80u << 2 << 0 << 16;
        QTest::newRow("7 ports: UnavT E-bit port 6 at 276") << 7 << 280u << 9 << 6 << 276;
        QTest::newRow("8 ports refused, layout kept") << 8 << 160u << 5 << 3 << 92;
    }
    void tg826Layout()
    {
        QFETCH(int, ports);
        QFETCH(uint, size);
        QFETCH(int, family);
        QFETCH(int, port);
        QFETCH(int, at);

        using Getter = unsigned int (Tg826::*)(unsigned char);
        const Getter getters[10]
            = {&Tg826::EBCrc4, &Tg826::ESCrc4, &Tg826::SESCrc4, &Tg826::AvTCrc4, &Tg826::UnavTCrc4,
                &Tg826::EBEbit, &Tg826::ESEbit, &Tg826::SESEbit, &Tg826::AvTEbit, &Tg826::UnavTEbit};
        Tg826 item;
        item.setPortCount(static_cast<unsigned char>(ports));
        QCOMPARE(item.getTotalSize(), size);

        QByteArray image(int(size), '\0');
        image.replace(at, 4, QByteArray("\x78\x56\x34\x12", 4));
        QVERIFY(item.readData(&image));
        for (int k = 0; k < 10; ++k)
            QCOMPARE((item.*getters[k])(static_cast<unsigned char>(port)), k == family ? 0x12345678u : 0u);
    }
    void tg826Defaults()
    {
        Tg826 item;
        QCOMPARE(item.getSnmpStartAddress(), QStringLiteral(".1.3.6.1.4.1.32473.2.21.1.3.2.2"));

        // A host with its own enterprise arc replaces the whole address.
        item.setStartAddress(QStringLiteral(".1.3.6.1.4.1.99999.2.21.1.3.2.2"));
        QHash<QString, QVariant> answer {{".1.3.6.1.4.1.99999.2.21.1.3.2.2.1.6.2", 86400u}};
        QVERIFY(item.readData(&answer));
        QCOMPARE(item.UnavTCrc4(1), 86400u);
    }
    void tg826OutOfRangePorts()
    {
        Tg826 item;
        QByteArray image(160, char(0xFF));
        QVERIFY(item.readData(&image));
        const QVector<uint> fromImage {item.ESCrc4(3), item.ESCrc4(4)};

        const QString column = item.getSnmpStartAddress() + QStringLiteral(".1.3.");
        QHash<QString, QVariant> answer {{column + "4", 5u}, {column + "5", 6u}};
        QVERIFY(item.readData(&answer));
        // EBCrc4(0) was never received.
        QCOMPARE(fromImage + QVector<uint>({item.ESCrc4(3), item.ESCrc4(4), item.EBCrc4(0)}),
            QVector<uint>({0xFFFFFFFF, 0, 5, 0, 0}));
    }
    void tg826ArrayItemChecksThePortOnly()
    {
        Tg826 item;
        item.setItemsCount(0);
        item.setInteger(0, 0, 6, 0x0000BBAA0000ULL); // copy of six bytes
        // offset 2 + port 1 < 6: counter from byte 6 on, past the copy, reads 0;
        // port 0 reads bytes 2..5.
        QCOMPARE(QVector<uint>({item.getArrayItem(2, 0), item.getArrayItem(2, 1), item.getArrayItem(5, 1),
                     item.getArrayItem(255, 255)}),
            QVector<uint>({0xBBAA, 0, 0, 0}));
    }
    void periphWithoutImage()
    {
        PeriphCfg block;
        block.setArrayItem(0, 0, 1, 5);
        block.setArrayItem(0, 2, 2, 1, 1, 1, 5);
        block.firstTimeSlot(3);
        QCOMPARE(block.getArrayItem(0, 0, 1) + block.getArrayItem(0, 2, 2, 1, 1, 1) + block.boardMode()
                + block.firstTimeSlot(),
            0ULL);

        QByteArray empty;
        block.setByteArray(&empty);
        QCOMPARE(int(block.boardMode()), 0);
        block.lastTimeSlot(9);
        QVERIFY(empty.isEmpty()); // someone else's image is never grown
    }
    void periphFixedFields()
    {
        QByteArray image(300, '\0');
        image[100] = char(PeriphCfg::BM_PCM30_CRC4);
        image[230] = 1;
        image[231] = 31;
        PeriphCfg block;
        block.setByteArray(&image);
        block.setStartAddress(100);
        QCOMPARE(QVector<uint>({uint(block.boardMode()), block.firstTimeSlot(), block.lastTimeSlot(),
                     block.toGlobalAddres(130)}),
            QVector<uint>({uint(PeriphCfg::BM_PCM30_CRC4), 1, 31, 230}));

        block.boardMode(PeriphCfg::BM_UNFRAMED);
        block.firstTimeSlot(16);
        QCOMPARE(int(image[100]) * 1000 + image[230], 1016);

        image[100] = char(0xEE); // unknown codes pass through unchanged
        QCOMPARE(int(block.boardMode()), 0xEE);

        block.setStartAddress(250); // fields now lie past the image
        block.lastTimeSlot(5);
        QCOMPARE(image.size() + block.lastTimeSlot(), 300);
    }
    void periphValueBits()
    {
        // The first value is not masked to its four bits.
        QCOMPARE((QVector<quint64> {PeriphCfg::setBits(0, 0, 4, 0x1F), PeriphCfg::setBits(0xFF, 4, 2, 0),
                     PeriphCfg::setBits(0xAB, 64, 4, 1), PeriphCfg::getBits(0xAB, 4, 4),
                     PeriphCfg::setBit(0, 63, true), PeriphCfg::setBit(3, 1, false),
                     PeriphCfg::setBit(3, 64, true), PeriphCfg::getBit(4, 2), PeriphCfg::getBit(~0ULL, 200)}),
            (QVector<quint64> {0x1F, 0xCF, 0xAB, 0xA, 0x8000000000000000ULL, 1, 3, 1, 0}));
    }
};

QTEST_GUILESS_MAIN(tst_Items)
#include "tst_items.moc"
