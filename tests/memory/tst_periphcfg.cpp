#include <memory/periphcfg.h>

#include <QtTest>

class tst_PeriphCfg : public QObject
{
    Q_OBJECT
private slots:
    void noImage()
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
    void fixedFields()
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
    void arrays_data()
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
    void arrays()
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
    void valueBits()
    {
        // The first value is not masked to its four bits.
        QCOMPARE((QVector<quint64> {PeriphCfg::setBits(0, 0, 4, 0x1F), PeriphCfg::setBits(0xFF, 4, 2, 0),
                     PeriphCfg::setBits(0xAB, 64, 4, 1), PeriphCfg::getBits(0xAB, 4, 4),
                     PeriphCfg::setBit(0, 63, true), PeriphCfg::setBit(3, 1, false),
                     PeriphCfg::setBit(3, 64, true), PeriphCfg::getBit(4, 2), PeriphCfg::getBit(~0ULL, 200)}),
            (QVector<quint64> {0x1F, 0xCF, 0xAB, 0xA, 0x8000000000000000ULL, 1, 3, 1, 0}));
    }
};

QTEST_GUILESS_MAIN(tst_PeriphCfg)
#include "tst_periphcfg.moc"
