#include <memory/periphcfg.h>

#include <QtTest>

class tst_PeriphCfg : public QObject
{
    Q_OBJECT
private slots:
    void noImage();
    void fixedFields();
    void arrays_data();
    void arrays();
    void valueBits_data();
    void valueBits();
};

void tst_PeriphCfg::noImage()
{
    PeriphCfg block;
    block.setArrayItem(0, 0, 1, 5);
    block.setArrayItem(0, 2, 2, 1, 1, 1, 5);
    block.firstTimeSlot(3);
    QCOMPARE(block.getArrayItem(0, 0, 1), 0ULL);
    QCOMPARE(block.getArrayItem(0, 2, 2, 1, 1, 1), 0ULL);
    QCOMPARE(int(block.boardMode()), 0);
    QCOMPARE(int(block.firstTimeSlot()), 0);

    QByteArray empty;
    block.setByteArray(&empty);
    QCOMPARE(int(block.boardMode()), 0);
    block.lastTimeSlot(9);
    QVERIFY(empty.isEmpty()); // someone else's image is never grown
}

void tst_PeriphCfg::fixedFields()
{
    QByteArray image(300, '\0');
    image[100] = char(PeriphCfg::BM_PCM30_CRC4);
    image[230] = 1;
    image[231] = 31;
    PeriphCfg block;
    block.setByteArray(&image);
    block.setStartAddress(100);
    QCOMPARE(block.boardMode(), PeriphCfg::BM_PCM30_CRC4);
    QCOMPARE(int(block.firstTimeSlot()), 1);
    QCOMPARE(int(block.lastTimeSlot()), 31);
    QCOMPARE(block.toGlobalAddres(130), 230u);

    block.boardMode(PeriphCfg::BM_UNFRAMED);
    block.firstTimeSlot(16);
    QCOMPARE(int(image[100]), 1);
    QCOMPARE(int(image[230]), 16);

    image[100] = char(0xEE); // unknown codes pass through unchanged
    QCOMPARE(int(block.boardMode()), 0xEE);

    block.setStartAddress(250); // fields now lie past the image
    block.lastTimeSlot(5);
    QCOMPARE(image.size(), 300);
    QCOMPARE(int(block.lastTimeSlot()), 0);
}

void tst_PeriphCfg::arrays_data()
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
    QTest::newRow("2-D array longer than the image") << QVector<int> {0, 4, 4, 0, 0} << 2 << 42 << -1 << 0;
}

void tst_PeriphCfg::arrays()
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
        return flat ? block.getArrayItem(u(args[0]), u(args[1]), u(size))
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

void tst_PeriphCfg::valueBits_data()
{
    QTest::addColumn<QString>("op");
    QTest::addColumn<quint64>("data");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("count");
    QTest::addColumn<quint64>("value");
    QTest::addColumn<quint64>("expected");

    QTest::newRow("setBits unmasked") << "setBits" << quint64(0) << 0 << 4 << quint64(0x1F) << quint64(0x1F);
    QTest::newRow("setBits clears the field")
        << "setBits" << quint64(0xFF) << 4 << 2 << quint64(0) << quint64(0xCF);
    QTest::newRow("setBits count 0") << "setBits" << quint64(0xAB) << 0 << 0 << quint64(1) << quint64(0xAB);
    QTest::newRow("setBits past bit 63")
        << "setBits" << quint64(0xAB) << 64 << 4 << quint64(1) << quint64(0xAB);
    QTest::newRow("getBits") << "getBits" << quint64(0xAB) << 4 << 4 << quint64(0) << quint64(0xA);
    QTest::newRow("getBits count 0") << "getBits" << quint64(0xAB) << 4 << 0 << quint64(0) << quint64(0);
    QTest::newRow("setBit 63") << "setBit" << quint64(0) << 63 << 0 << quint64(1)
                               << quint64(0x8000000000000000ULL);
    QTest::newRow("clear bit 1") << "setBit" << quint64(3) << 1 << 0 << quint64(0) << quint64(1);
    QTest::newRow("setBit past 63") << "setBit" << quint64(3) << 64 << 0 << quint64(1) << quint64(3);
    QTest::newRow("getBit") << "getBit" << quint64(4) << 2 << 0 << quint64(0) << quint64(1);
    QTest::newRow("getBit past 63") << "getBit" << ~quint64(0) << 200 << 0 << quint64(0) << quint64(0);
}

void tst_PeriphCfg::valueBits()
{
    QFETCH(QString, op);
    QFETCH(quint64, data);
    QFETCH(int, position);
    QFETCH(int, count);
    QFETCH(quint64, value);
    QFETCH(quint64, expected);

    const auto p = static_cast<unsigned char>(position);
    const auto c = static_cast<unsigned char>(count);
    quint64 result = 0;
    if (op == "setBits")
        result = PeriphCfg::setBits(data, p, c, value);
    else if (op == "getBits")
        result = PeriphCfg::getBits(data, p, c);
    else if (op == "setBit")
        result = PeriphCfg::setBit(data, p, value != 0);
    else
        result = PeriphCfg::getBit(data, p);
    QCOMPARE(result, expected);
}

QTEST_GUILESS_MAIN(tst_PeriphCfg)
#include "tst_periphcfg.moc"
