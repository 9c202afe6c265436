#include <memory/tg826.h>

#include <QtTest>

class tst_Tg826 : public QObject
{
    Q_OBJECT
private slots:
    void defaults()
    {
        Tg826 item;
        QCOMPARE(item.getSnmpStartAddress(), QStringLiteral(".1.3.6.1.4.1.32473.2.21.1.3.2.2"));

        // A host with its own enterprise arc replaces the whole address.
        item.setStartAddress(QStringLiteral(".1.3.6.1.4.1.99999.2.21.1.3.2.2"));
        QHash<QString, QVariant> answer {{".1.3.6.1.4.1.99999.2.21.1.3.2.2.1.6.2", 86400u}};
        QVERIFY(item.readData(&answer));
        QCOMPARE(item.UnavTCrc4(1), 86400u);
    }
    void layout_data()
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
    void layout()
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
    void outOfRangePorts()
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
    void getArrayItemChecksThePortOnly()
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
};

QTEST_GUILESS_MAIN(tst_Tg826)
#include "tst_tg826.moc"
