#include <memory/configmemorymap.h>
#include <memory/connectmemorymap.h>
#include <memory/statusmemorymap.h>
#include <memory/tg826.h>
#include <memory/u16item.h>
#include <memory/u8array.h>
#include <memory/u8item.h>

#include <QtTest>

#include <memory>
#include <vector>

namespace {

const QString unit = QStringLiteral(".1.3.6.1.4.1.32473.2.21.1");

// Records its own destruction so ownership can be checked.
class TracedItem : public U8Item
{
public:
    explicit TracedItem(int *destroyed)
        : destroyed(destroyed)
    {
    }
    ~TracedItem() override { ++*destroyed; }

private:
    int *destroyed;
};

// A device model's own readData: sees the whole set, then refuses it.
class Refusing : public U8Array
{
public:
    using BaseRawType::readData;
    bool readData(QHash<QString, QVariant> *variables) override
    {
        seen = variables->size();
        return false;
    }
    int seen = -1;
};

template<typename Item = U8Item> Item *scalar(unsigned int address, const QString &oid)
{
    auto *item = new Item;
    item->setStartAddress(address);
    item->setStartAddress(oid);
    return item;
}

// A small configuration memory: mode byte at 0, a 16-bit id at 1..2, and
// four port bytes at 3..6.
void buildConfig(MemoryMap &map)
{
    map.addItem(QStringLiteral("mode"), scalar(0, unit + ".1"));
    map.addItem(QStringLiteral("id"), scalar<U16Item>(1, unit + ".2"));
    auto *ports = new U8Array;
    ports->setStartAddress(3u);
    ports->setItemsCount(4);
    map.addItem(QStringLiteral("ports"), ports);
}

} // namespace

class tst_MemoryMap : public QObject
{
    Q_OBJECT
private slots:
    void itemsAndOwnership()
    {
        int destroyed = 0;
        {
            MemoryMap map;
            QCOMPARE(map.getItem(QStringLiteral("x")), nullptr);
            QVERIFY(!map.contains(QStringLiteral("x")));

            auto *first = new TracedItem(&destroyed);
            auto *second = new TracedItem(&destroyed);
            map.addItem(QStringLiteral("x"), first);
            map.addItem(QStringLiteral("x"), second);
            QCOMPARE(destroyed, 1);
            QCOMPARE(map.getItem(QStringLiteral("x")), second);
            QCOMPARE(map.getItem(QStringLiteral("y")), nullptr);

            // Adding again what the map holds must not free it or hold it twice.
            map.addItem(QStringLiteral("x"), second);
            map.addItem(QStringLiteral("y"), second);
            map.addItem(QStringLiteral("z"), nullptr);
            QCOMPARE(destroyed, 1);
            QVERIFY(!map.contains(QStringLiteral("y")));
            QVERIFY(!map.contains(QStringLiteral("z")));
        }
        QCOMPARE(destroyed, 2);

        MemoryMap empty;
        QByteArray image;
        QHash<QString, QVariant> variables;
        QVERIFY(empty.loadData(&image) && empty.saveData(&image));
        QVERIFY(empty.loadData(&variables) && empty.saveData(&variables));
        QVERIFY(empty.deserialise("not json"));
        QCOMPARE(empty.serialise(), QByteArray("{\n}\n"));
    }
    void imageRoundTrip()
    {
        ConfigMemoryMap map(nullptr);
        buildConfig(map);

        QByteArray image = QByteArray::fromHex("02"
                                               "3412"
                                               "0a0b0c0d"
                                               "ff");
        QVERIFY(map.loadData(&image));
        auto *mode = static_cast<U8Item *>(map.getItem(QStringLiteral("mode")));
        auto *id = static_cast<U16Item *>(map.getItem(QStringLiteral("id")));
        auto *ports = static_cast<U8Array *>(map.getItem(QStringLiteral("ports")));
        QCOMPARE(int(mode->get()), 2);
        QCOMPARE(int(id->get()), 0x1234);
        QCOMPARE(int(ports->get(3)), 0x0D);

        mode->set(5);
        id->set(0xABCD);
        ports->set(0, 0xEE);
        QByteArray saved = image;
        QVERIFY(map.saveData(&saved));
        QCOMPARE(saved.toHex(), QByteArray("05cdabee0b0c0dff"));

        // One byte short for the array: refused whatever the visiting order,
        // and never grown or shrunk.
        QByteArray shortImage = QByteArray::fromHex("010203040506");
        QVERIFY(!map.loadData(&shortImage));
        QCOMPARE(int(ports->get(0)), 0xEE);
        QVERIFY(!map.saveData(&shortImage));
        QCOMPARE(shortImage.size(), 6);
    }
    void variableRoundTrip()
    {
        ConfigMemoryMap map(nullptr);
        buildConfig(map);
        QHash<QString, QVariant> received {
            {unit + ".1.0", 3}, {unit + ".2.0", 0x1234}, {".1.3.6.1.2.1.1.3.0", 99}};
        QVERIFY(map.loadData(&received));

        auto *mode = static_cast<U8Item *>(map.getItem(QStringLiteral("mode")));
        QCOMPARE(int(mode->get()), 2);

        QHash<QString, QVariant> toSend;
        QVERIFY(map.saveData(&toSend));
        QVERIFY(toSend.isEmpty()); // just received: nothing to send back

        mode->set(4);
        QVERIFY(map.saveData(&toSend));
        QCOMPARE(toSend, (QHash<QString, QVariant> {{unit + ".1.0", 5}}));

        toSend.clear();
        QVERIFY(map.saveData(&toSend));
        QVERIFY(toSend.isEmpty());
    }
    void json_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("withScalar");
        QTest::addColumn<bool>("accepted");

        QTest::newRow("scalar restored") << QByteArray(R"({"baserawtype": 9})") << true << true;
        QTest::newRow("scalar, key missing") << QByteArray(R"({"other": 9})") << true << false;
        QTest::newRow("unparsable reads as {}") << QByteArray("{\"baserawtype\": ") << true << false;
        QTest::newRow("array document reads as {}") << QByteArray("[1, 2]") << true << false;
        QTest::newRow("binary garbage") << QByteArray("\0\xff{\x01", 4) << true << false;
        QTest::newRow("array item has no JSON value")
            << QByteArray(R"({"baserawtype": 9})") << false << false;
    }
    void json()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, withScalar);
        QFETCH(bool, accepted);

        MemoryMap map;
        auto *ports = new U8Array;
        ports->setItemsCount(2);
        map.addItem(QStringLiteral("item"),
            withScalar ? static_cast<BaseRawType *>(scalar<U16Item>(0, QString())) : ports);
        if (withScalar)
            delete ports;
        QByteArray image(2, '\0');
        QVERIFY(map.loadData(&image));
        QCOMPARE(map.deserialise(text), accepted);
        if (!withScalar)
            return;
        QCOMPARE(int(static_cast<U16Item *>(map.getItem(QStringLiteral("item")))->get()), accepted ? 9 : 0);
        QCOMPARE(map.serialise(),
            QByteArray(accepted ? "{\n    \"baserawtype\": 9\n}\n" : "{\n    \"baserawtype\": 0\n}\n"));
    }
    // A status memory as a four-port unit reports it: alarm byte, temperature,
    // four line states and the G.826 counters, first as an image, then as the
    // variables an SNMP agent answers with. Both must give the same readings.
    void statusMapThroughBothPaths()
    {
        StatusMemoryMap map(nullptr);
        map.addItem(QStringLiteral("alarm"), scalar(0, unit + ".1"));
        map.addItem(QStringLiteral("temperature"), scalar<U16Item>(1, unit + ".2"));
        auto *lines = new U8Array;
        lines->setStartAddress(3u);
        lines->setItemsCount(4);
        map.addItem(QStringLiteral("lines"), lines);
        auto *g826 = new Tg826;
        g826->setStartAddress(8u);
        map.addItem(QStringLiteral("g826"), g826);

        // Counters at 8 + family offset + port * 4, little-endian.
        QByteArray image(8 + 160, '\0');
        image[0] = 1;
        image[1] = 0x2d; // 45 degrees
        image[3] = 1;
        image[6] = 2;
        auto put = [&image](int at, const char *bytes) { image.replace(at, 4, QByteArray(bytes, 4)); };
        put(8 + 0 + 0, "\x04\x03\x02\x01"); // EB CRC-4, port 0: 0x01020304
        put(8 + 16 + 4, "\x07\x00\x00\x00"); // ES CRC-4, port 1: 7
        put(8 + 96 + 8, "\x10\x0e\x00\x00"); // ES E-bit, port 2: 3600
        put(8 + 144 + 12, "\xff\xff\xff\xff"); // UnavT E-bit, port 3: max
        QVERIFY(map.loadData(&image));

        // Alarm, temperature, the four counters set and three left at zero.
        auto readings = [&] {
            return QStringList {
                QString::number(static_cast<U8Item *>(map.getItem(QStringLiteral("alarm")))->get()),
                QString::number(static_cast<U16Item *>(map.getItem(QStringLiteral("temperature")))->get()),
                QString::number(g826->EBCrc4(0)), QString::number(g826->ESCrc4(1)),
                QString::number(g826->ESEbit(2)), QString::number(g826->UnavTEbit(3)),
                QString::number(g826->EBCrc4(1)), QString::number(g826->SESCrc4(0)),
                QString::number(g826->UnavTEbit(4))}
                .join(' ');
        };
        const QString expected = "1 45 16909060 7 3600 4294967295 0 0 0";
        QCOMPARE(readings(), expected);
        QCOMPARE(int(lines->get(3)), 2);

        const QString g = QStringLiteral(".1.3.6.1.4.1.32473.2.21.1.3.2.2");
        QHash<QString, QVariant> answer {
            {unit + ".1.0", 2}, // the SNMP enumeration counts from 1
            {unit + ".2.0", 45},
            {g + ".1.2.1", 16909060u},
            {g + ".1.2.2", 0u},
            {g + ".1.3.2", 7u},
            {g + ".1.8.3", 3600u},
            {g + ".1.11.4", 4294967295u},
            {".1.3.6.1.2.1.1.5.0", QStringLiteral("mux-a")},
        };
        QVERIFY(map.loadData(&answer));
        QCOMPARE(g826->getMode(), 1u);
        QCOMPARE(readings(), expected);

        // The next poll only moves one counter; the rest stay as received.
        QHash<QString, QVariant> next {{g + ".1.2.1", 16909061u}};
        QVERIFY(map.loadData(&next));
        QCOMPARE(readings(), QString(expected).replace("16909060", "16909061"));

        QHash<QString, QVariant> toSend;
        QVERIFY(map.saveData(&toSend));
        QVERIFY(toSend.isEmpty());
    }
    void onePassAsEachItemAlone_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed : {1u, 7u, 42u, 2026u, 65521u})
            QTest::newRow(qPrintable(QString::number(seed))) << seed;
    }
    // Random sets over a few arcs, so that start addresses lie within one another
    // and within OIDs in every way; each item reading the set alone is the
    // reference for the map's single pass.
    void onePassAsEachItemAlone()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        const QStringList arcs {"1", "2", "3", "12", "21", "32473"};
        const auto oid = [&](int most) {
            QString text = random.bounded(2) ? QStringLiteral(".") : QString();
            for (int n = 1 + random.bounded(most); n > 0; --n)
                text += arcs.at(random.bounded(arcs.size())) + (n > 1 ? "." : "");
            return text;
        };
        QLoggingCategory::setFilterRules(QStringLiteral("muxcore.memory.warning=false"));
        MemoryMap map;
        std::vector<std::unique_ptr<BaseRawType>> alone;
        QStringList used {QString()};
        for (int i = 0; i < 40; ++i) {
            used << (random.bounded(4) ? oid(4) : used.at(random.bounded(used.size())));
            map.addItem(QString::number(i), new U8Array);
            alone.emplace_back(new U8Array);
            map.getItem(QString::number(i))->setStartAddress(used.last());
            alone.back()->setStartAddress(used.last());
        }
        for (int round = 0; round < 4; ++round) {
            QHash<QString, QVariant> set;
            for (int k = random.bounded(300); k > 0; --k)
                set.insert(oid(7), random.generate());
            const int moved = random.bounded(40);
            map.getItem(QString::number(moved))->setStartAddress(used.at(round));
            alone[size_t(moved)]->setStartAddress(used.at(round));
            QVERIFY(map.loadData(&set));
            for (int i = 0; i < 40; ++i) {
                QVERIFY(alone[size_t(i)]->readData(&set));
                QCOMPARE(map.getItem(QString::number(i))->getSnmpData(), alone[size_t(i)]->getSnmpData());
            }
        }
        QLoggingCategory::setFilterRules(QString());
    }
    void overridesAndWarnings()
    {
        MemoryMap map;
        map.addItem(QStringLiteral("a"), scalar(0, unit + ".2.1"));
        map.addItem(QStringLiteral("b"), scalar(0, unit + ".2.10"));
        auto *refusing = new Refusing;
        map.addItem(QStringLiteral("c"), refusing);
        map.addItem(QStringLiteral("d"), scalar(0, unit + ".3"));
        QHash<QString, QVariant> set {{unit + ".2.10.0", 200}, {unit + ".3.0", 1}};
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression("\\.2\\.1\" of item \"a\" lies within .* of item \"b\""));
        QVERIFY(!map.loadData(&set));
        QCOMPARE(refusing->seen, 2);
        QCOMPARE(map.getItem(QStringLiteral("a"))->getSnmpData().keys(), QList<QString> {unit + ".2.10.0"});
        QVERIFY(map.getItem(QStringLiteral("d"))->getSnmpData().isEmpty());

        // A moved address is checked again, against every item.
        map.getItem(QStringLiteral("d"))->setStartAddress(unit + ".2.10.0");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("item \"a\" lies within .* of item \"d\""));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("item \"b\" lies within .* of item \"d\""));
        QVERIFY(!map.loadData(&set));

        // OIDs without the leading dot miss the counters' dotted address.
        StatusMemoryMap status(nullptr);
        auto *g826 = new Tg826;
        status.addItem(QStringLiteral("g826"), g826);
        QHash<QString, QVariant> undotted {{g826->getSnmpStartAddress().mid(1) + ".1.2.1", 5u}};
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression("^No item took any of the 1 variables received"));
        QVERIFY(status.loadData(&undotted));
    }
};

QTEST_GUILESS_MAIN(tst_MemoryMap)
#include "tst_memorymap.moc"
