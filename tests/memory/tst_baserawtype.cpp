#include <memory/baserawtype.h>

#include <QtTest>

#include <limits>

namespace {

using Indices = QVector<uint>;

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

// Bytes 0, 1, 2, ... count - 1.
QByteArray counting(int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes.append(char(i));
    return bytes;
}

enum Op { Bit, Bits, Int, SetBit, SetBits, SetInt };

// One element access: op at index (one to three indices) with a = bit or
// offset and b = count. For reads value is the result; for writes it is the
// value written and after is the copy that must follow.
struct Access
{
    Op op;
    uint itemSize;
    Indices dims;
    QByteArray copy;
    Indices index;
    int a;
    int b;
    quint64 value;
    QByteArray after;
};

// An item with the given geometry holding copy, loaded the way a map does.
void load(BaseRawType &item, const Access &r)
{
    item.setItemSize(r.itemSize);
    if (r.dims.size() == 3)
        item.setDimension(r.dims[0], r.dims[1], r.dims[2]);
    item.setItemsCount(uint(r.copy.size()) / r.itemSize);
    QByteArray image = r.copy;
    QVERIFY(item.readData(&image));
}

// Dispatches on the operation and on how many indices the row gives.
quint64 access(BaseRawType &t, const Access &r)
{
    const auto a = uchar(r.a), b = uchar(r.b);
    const Indices &i = r.index;
    const quint64 v = r.value;
    const bool w = r.op >= SetBit;
    // clang-format off
    switch (r.op % 3 * 4 + i.size()) {
    case Bit * 4 + 1: return w ? t.setBit(i[0], a, v), 0 : t.getBit(i[0], a);
    case Bit * 4 + 2: return w ? t.setBit(i[0], i[1], a, v), 0 : t.getBit(i[0], i[1], a);
    case Bit * 4 + 3: return w ? t.setBit(i[0], i[1], i[2], a, v), 0 : t.getBit(i[0], i[1], i[2], a);
    case Bits * 4 + 1: return w ? t.setBits(i[0], a, b, v), 0 : t.getBits(i[0], a, b);
    case Bits * 4 + 2: return w ? t.setBits(i[0], i[1], a, b, v), 0 : t.getBits(i[0], i[1], a, b);
    case Bits * 4 + 3: return w ? t.setBits(i[0], i[1], i[2], a, b, v), 0 : t.getBits(i[0], i[1], i[2], a, b);
    case Int * 4 + 1: return w ? t.setInteger(i[0], a, b, v), 0 : t.getInteger(i[0], a, b);
    case Int * 4 + 2: return w ? t.setInteger(i[0], i[1], a, b, v), 0 : t.getInteger(i[0], i[1], a, b);
    default: return w ? t.setInteger(i[0], i[1], i[2], a, b, v), 0 : t.getInteger(i[0], i[1], i[2], a, b);
    }
    // clang-format on
}

const Indices flat;
const Indices cube {2, 3, 4};
const uint huge = 0xFFFFFFFF;

} // namespace

Q_DECLARE_METATYPE(Access)

class tst_BaseRawType : public QObject
{
    Q_OBJECT
private slots:
    void access_data()
    {
        QTest::addColumn<Access>("r");
        // clang-format off
        QTest::newRow("bit 9: bit 1 of byte 2") << Access{Bit, 2, flat, hex("0002"), {0}, 9, 0, 1, {}};
        QTest::newRow("bit of element 1") << Access{Bit, 2, flat, hex("00000100"), {1}, 0, 0, 1, {}};
        QTest::newRow("bit past the copy") << Access{Bit, 1, flat, hex("ff"), {1}, 0, 0, 0, {}};
        QTest::newRow("bits across bytes") << Access{Bits, 2, flat, hex("c003"), {0}, 6, 4, 0xF, {}};
        QTest::newRow("bits cut at 8 bytes") << Access{Bits, 9, flat, hex("ffffffffffffffffff"), {0}, 4, 64, 0x0FFFFFFFFFFFFFFF, {}};
        QTest::newRow("int little-endian") << Access{Int, 2, flat, hex("3412"), {0}, 0, 2, 0x1234, {}};
        QTest::newRow("int on a short copy") << Access{Int, 1, flat, hex("34"), {0}, 0, 2, 0x34, {}};
        QTest::newRow("int element+offset") << Access{Int, 4, flat, hex("00000000aabbccdd"), {1}, 1, 2, 0xCCBB, {}};
        QTest::newRow("int count 9 reads 8") << Access{Int, 9, flat, hex("010203040506070809"), {0}, 0, 9, 0x0807060504030201, {}};
        QTest::newRow("2-D (1, 2)") << Access{Int, 1, {2, 3, 1}, counting(6), {1, 2}, 0, 1, 5, {}};
        QTest::newRow("3-D (1, 2, 3) is 23") << Access{Int, 1, cube, counting(24), {1, 2, 3}, 0, 1, 23, {}};
        QTest::newRow("3-D 2-byte elements") << Access{Int, 2, cube, counting(48), {1, 0, 1}, 0, 2, 0x1B1A, {}};
        QTest::newRow("3-D bits") << Access{Bits, 1, cube, counting(24), {1, 1, 1}, 2, 3, 4, {}};
        QTest::newRow("huge index reads 0") << Access{Int, 4, cube, counting(24), {huge, huge, huge}, 0, 4, 0, {}};
        QTest::newRow("set bit 9") << Access{SetBit, 2, flat, hex("0000"), {0}, 9, 0, 1, hex("0002")};
        QTest::newRow("bit past the copy dropped") << Access{SetBit, 1, flat, hex("00"), {0}, 8, 0, 1, hex("00")};
        QTest::newRow("3-D bit") << Access{SetBit, 1, cube, QByteArray(24, 0), {0, 2, 1}, 5, 0, 1, QByteArray(9, 0) + "\x20" + QByteArray(14, 0)};
        QTest::newRow("bits spill, unmasked") << Access{SetBits, 1, flat, hex("00"), {0}, 0, 4, 0x1F, hex("1f")};
        QTest::newRow("bits keep neighbours") << Access{SetBits, 2, flat, hex("ffff"), {0}, 6, 4, 0, hex("3ffc")};
        QTest::newRow("bits grow with zeros") << Access{SetBits, 1, flat, {}, {2}, 0, 8, 0xAA, hex("0000aa")};
        QTest::newRow("bits count 0") << Access{SetBits, 1, flat, {}, {0}, 3, 0, 1, {}};
        QTest::newRow("int grows the copy") << Access{SetInt, 1, flat, {}, {0}, 2, 2, 0xABCD, hex("0000cdab")};
        QTest::newRow("int inside the copy") << Access{SetInt, 4, flat, hex("11223344"), {0}, 1, 2, 0xBEEF, hex("11efbe44")};
        QTest::newRow("int count 10 pads") << Access{SetInt, 1, flat, {}, {0}, 0, 10, 0x0102030405060708, hex("08070605040302010000")};
        QTest::newRow("int 3-D last") << Access{SetInt, 1, cube, QByteArray(24, 0), {1, 2, 3}, 0, 1, 0x7F, QByteArray(23, 0) + "\x7f"};
        QTest::newRow("int 2-D") << Access{SetInt, 2, {2, 2, 1}, QByteArray(8, 0), {1, 0}, 0, 2, 0x0102, hex("0000000002010000")};
        QTest::newRow("huge index: nothing") << Access{SetInt, 4, flat, {}, {huge}, 0, 4, 1, {}};
        QTest::newRow("huge 3-D: nothing") << Access{SetBits, 4, cube, {}, {huge, huge, huge}, 0, 8, 1, {}};
        // clang-format on
    }
    void access()
    {
        QFETCH(Access, r);
        BaseRawType item;
        load(item, r);
        const quint64 result = ::access(item, r);
        if (r.op < SetBit)
            QCOMPARE(result, r.value);
        else
            QCOMPARE(item.getLocalCopy().toHex(), r.after.toHex());
    }
    void image_data()
    {
        QTest::addColumn<int>("imageSize");
        QTest::addColumn<bool>("fits");
        // Three 2-byte elements at address 4: bytes 4..9.
        QTest::newRow("one byte short") << 9 << false;
        QTest::newRow("exact") << 10 << true;
        QTest::newRow("empty") << 0 << false;
    }
    void image()
    {
        QFETCH(int, imageSize);
        QFETCH(bool, fits);

        BaseRawType item;
        item.setItemSize(2);
        item.setItemsCount(3);
        item.setStartAddress(4u);
        // SNMP mode and a known copy, to see a refused read leave both alone.
        QByteArray earlier = hex("aabbccddeeff0102030405");
        QHash<QString, QVariant> none;
        QVERIFY(item.readData(&earlier) && item.readData(&none));

        QByteArray source = counting(imageSize);
        QCOMPARE(item.readData(&source), fits);
        QCOMPARE(item.getLocalCopy(), fits ? hex("040506070809") : hex("eeff01020304"));
        QCOMPARE(item.getMode(), fits ? 0u : 1u);

        QByteArray target(imageSize, char(0x55));
        item.setInteger(0, 0, 2, 0xA1A0);
        QCOMPARE(item.writeData(&target), fits);
        QCOMPARE(target.toHex(),
            fits ? QByteArray("55555555a0a1060708095555").left(imageSize * 2)
                 : QByteArray(imageSize, char(0x55)).toHex());
        QVERIFY(!item.readData(static_cast<QByteArray *>(nullptr)));
    }
    void writeImageKeepsLength_data()
    {
        QTest::addColumn<QByteArray>("copy");
        QTest::addColumn<QByteArray>("expected");
        // A 3-byte item at address 1 of a 5-byte image of 0xEE.
        QTest::newRow("never read: zeros, as it reads") << QByteArray() << hex("ee000000ee");
        QTest::newRow("short copy padded") << hex("11") << hex("ee110000ee");
        QTest::newRow("grown copy cut") << hex("1122334455") << hex("ee112233ee");
    }
    void writeImageKeepsLength()
    {
        QFETCH(QByteArray, copy);
        QFETCH(QByteArray, expected);

        BaseRawType item;
        item.setItemSize(1);
        item.setStartAddress(1u);
        for (int i = 0; i < copy.size(); ++i)
            item.setInteger(i, 0, 1, static_cast<unsigned char>(copy[i]));
        item.setItemsCount(3);
        QByteArray image(5, char(0xEE));
        QVERIFY(item.writeData(&image));
        QCOMPARE(image.toHex(), expected.toHex());
    }
    void valueHelpers()
    {
        QCOMPARE(BaseRawType::getBitsFromData(4, 4, 0xAB), 0xAULL);
        QCOMPARE(BaseRawType::getBitsFromData(64, 8, ~0ULL), 0ULL);
        QCOMPARE(BaseRawType::setBitsToData(4, 4, 0xAB, 0x15), 0x5BULL);
        QCOMPARE(BaseRawType::setBitsToData(4, 0, 0xAB, 0x15), 0xABULL);
        QCOMPARE(BaseRawType::setBitsToData(0, 64, 0, ~0ULL), ~0ULL);
        BaseRawType item;
        item.setDimension(2, 3, 4);
        QCOMPARE(item.getItemCount(), 24u);
        item.setInteger(0, 0, 3, 0x01FF0A);
        QCOMPARE(item.getPrettyLocalCopy(), QStringLiteral("0A FF 01"));
    }
    void oidForms_data()
    {
        QTest::addColumn<QString>("form");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("index");
        QTest::addColumn<QVariant>("expected");
        // clang-format off
        QTest::newRow("scalar is S.0") << "scalar" << "" << 0 << QVariant(10);
        QTest::newRow("empty name is S") << "named" << "" << 0 << QVariant(11);
        QTest::newRow("name") << "named" << "5" << 0 << QVariant(12);
        QTest::newRow("dotted name") << "named" << "2.1" << 0 << QVariant(16);
        QTest::newRow("row counts from 1") << "row" << "5" << 0 << QVariant(13);
        QTest::newRow("row from zero") << "fromZero" << "5" << 0 << QVariant(14);
        QTest::newRow("no suffix, row from 1") << "nonSufix" << "" << 2 << QVariant(15);
        QTest::newRow("absent is invalid") << "named" << "9" << 0 << QVariant();
        QTest::newRow("negative row") << "row" << "5" << -1 << QVariant(14);
        QTest::newRow("largest row") << "row" << "5" << INT_MAX << QVariant(17);
        // clang-format on
    }
    void oidForms()
    {
        QFETCH(QString, form);
        QFETCH(QString, name);
        QFETCH(int, index);
        QFETCH(QVariant, expected);
        QHash<QString, QVariant> received {{"1.2.3.4.0", 10}, {"1.2.3.4", 11}, {"1.2.3.4.5", 12},
            {"1.2.3.4.5.1", 13}, {"1.2.3.4.5.0", 14}, {"1.2.3.4.3", 15}, {"1.2.3.4.2.1", 16},
            {"1.2.3.4.5.2147483648", 17}};
        BaseRawType item;
        item.setStartAddress(QStringLiteral("1.2.3.4"));
        QVERIFY(item.readData(&received));

        const auto get = [&] {
            return form == "scalar"  ? item.getValue()
                : form == "named"    ? item.getValue(name)
                : form == "row"      ? item.getValue(name, index)
                : form == "fromZero" ? item.getValueFromZero(name, index)
                                     : item.getValueNonSufix(index);
        };
        QCOMPARE(get(), expected);
        if (form == "fromZero")
            return;
        // Each setter reaches the variable its getter reads, and only that one.
        const QVariant set(99);
        form == "scalar"      ? item.setValue(set)
            : form == "named" ? item.setValue(name, set)
            : form == "row"   ? item.setValue(name, index, set)
                              : item.setValueNonSufix(index, set);
        QCOMPARE(get(), expected.isValid() ? set : QVariant());
        QCOMPARE(item.getSnmpData().size(), received.size());
    }
    // Where a start address may sit inside an OID for the variable to be taken.
    void substringPlaces()
    {
        const QString longArc = QString(".7").repeated(100); // past the short-OID search
        const QList<QPair<QString, QString>> cases {{"1.2.3.4", "1.2.3.4"}, {"3.4", "1.2.3.4"},
            {"1.5.4", "1.2.4"}, {"1.1.2", "1.1.1.2"}, {"1.2.3.4.5", "1.2.3.4"}, {"9", "1.2.9"},
            {"1.2.3.4", longArc + ".1.2.3.4"}, {"1.2.3.4", longArc + ".1.2.3.5"}, {"a.b", "1.A.B"}};
        QString taken;
        for (const auto &c : cases) {
            BaseRawType item;
            item.setStartAddress(c.first);
            QHash<QString, QVariant> set {{c.second, 1}};
            QVERIFY(item.readData(&set));
            taken += item.getSnmpData().contains(c.second) ? '1' : '0';
        }
        // Equal, at the end, ends agree only, after a false start, longer than the OID,
        // one character, long OID with it at the end, long OID without it, case differs.
        QCOMPARE(taken, QStringLiteral("110101100"));
    }
    // Reloading writes into the item's own buffer; a copy handed out earlier
    // must keep the bytes it had.
    void reloadLeavesHeldCopies()
    {
        BaseRawType item;
        item.setItemSize(1);
        item.setItemsCount(3);
        QByteArray first = hex("010203"), second = hex("0a0b0c"), third = hex("111213");
        QVERIFY(item.readData(&first));
        const QByteArray held = item.getLocalCopy();
        QVERIFY(item.readData(&second));
        const QByteArray heldSecond = item.getLocalCopy();
        QVERIFY(item.readData(&third));
        QCOMPARE(held + heldSecond + item.getLocalCopy() + second, hex("0102030a0b0c1112130a0b0c"));
    }
    void snmpSettersAndBitFields()
    {
        BaseRawType item;
        item.setStartAddress(QStringLiteral(".1.9"));
        // Nothing delivered yet: setters change nothing, setValueHard inserts.
        item.setValue(QVariant(7));
        item.setValue(QStringLiteral("4"), 0, 1ULL, 0, 2);
        QVERIFY(item.getSnmpData().isEmpty());
        item.setValueHard(QStringLiteral("4"), 0, 0x80000001u);
        QCOMPARE(item.getSnmpData(), (QHash<QString, QVariant> {{".1.9.4.1", 0x80000001u}}));

        QHash<QString, QVariant> received {{".1.9.0", 0xF0}, {".1.9.3", QStringLiteral("text")}};
        QVERIFY(item.readData(&received));
        // Bits 4..5 of 0xF0; "3" is not a number and "8" is absent.
        QCOMPARE((QVector<quint64> {item.getValue(4, 2), item.getValue(QStringLiteral("3"), 0, 8),
                     item.getValue(QStringLiteral("8"), 0, 8), item.getValue(QStringLiteral("4"), 0, 31, 1),
                     item.getValueFromZero(QStringLiteral("4"), 1, 0, 1)}),
            (QVector<quint64> {3, 0, 0, 1, 1}));

        item.setValue(1ULL, 0, 2);
        const QVariant once = item.getValue();
        item.setValue(0x7ULL, 0, 2); // masked to the two bits
        QCOMPARE(QVariantList({once, item.getValue()}), QVariantList({qulonglong(0xF1), qulonglong(0xF3)}));
        QCOMPARE(once.userType(), int(QMetaType::ULongLong));
        item.setValue(QStringLiteral("4"), 0, 0ULL, 31, 1);
        QCOMPARE(item.getValue(QStringLiteral("4"), 0), QVariant(qulonglong(1)));
    }
    // What an item sends back: everything once, then only what changed. A
    // not-a-number counts as unchanged, or it would go out on every write;
    // the same number in another type is no change, another kind of value is.
    void sentOnceUntilChanged_data()
    {
        QTest::addColumn<QVariant>("received");
        QTest::addColumn<QVariant>("changed");
        QTest::addColumn<bool>("sent");
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const float nanf = std::numeric_limits<float>::quiet_NaN();
        QTest::newRow("double NaN, then a number") << QVariant(nan) << QVariant(1.5) << true;
        QTest::newRow("float NaN, then a number") << QVariant(nanf) << QVariant(0.0f) << true;
        QTest::newRow("number, then NaN") << QVariant(2.0) << QVariant(nan) << true;
        QTest::newRow("double NaN, then float NaN") << QVariant(nan) << QVariant(nanf) << true;
        QTest::newRow("integer") << QVariant(7) << QVariant(8) << true;
        QTest::newRow("text") << QVariant(QStringLiteral("up")) << QVariant(QStringLiteral("down")) << true;
        QTest::newRow("int, then the same qulonglong") << QVariant(5) << QVariant(5ULL) << false;
        QTest::newRow("qulonglong, then the same int") << QVariant(5ULL) << QVariant(5) << false;
        QTest::newRow("uint, then the same double") << QVariant(7U) << QVariant(7.0) << false;
        QTest::newRow("-1, then all bits set") << QVariant(-1) << QVariant(~0ULL) << true;
        QTest::newRow("text, then its number") << QVariant(QStringLiteral("5")) << QVariant(5) << true;
        QTest::newRow("bytes, then the same text")
            << QVariant(QByteArray("up")) << QVariant(QStringLiteral("up")) << true;
    }
    void sentOnceUntilChanged()
    {
        QFETCH(QVariant, received);
        BaseRawType item;
        item.setStartAddress(QStringLiteral("1.5"));
        QHash<QString, QVariant> variables {{"1.5.0", received}, {"1.5.2", 2}};
        QVERIFY(item.readData(&variables));
        QHash<QString, QVariant> lastSent, toSend;
        QVERIFY(item.writeData(&toSend, lastSent));
        QCOMPARE(toSend.size() * 10 + lastSent.size(), 22);
        toSend.clear();
        QVERIFY(item.writeData(&toSend, lastSent));
        QVERIFY(toSend.isEmpty());
        QFETCH(QVariant, changed);
        QFETCH(bool, sent);
        item.setValue(changed);
        lastSent.insert("1.5.2", qulonglong(2)); // equal number, other type: no change
        QVERIFY(item.writeData(&toSend, lastSent));
        QCOMPARE(toSend.keys(), sent ? QStringList {"1.5.0"} : QStringList());
        lastSent.clear(); // forces a full write
        QVERIFY(item.writeData(&toSend, lastSent));
        QCOMPARE(toSend.size(), 2);
    }
};

QTEST_GUILESS_MAIN(tst_BaseRawType)
#include "tst_baserawtype.moc"
