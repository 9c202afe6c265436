#include <memory/baserawtype.h>

#include <QtTest>

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

// An item with the given geometry holding copy, loaded the way a map does.
void load(BaseRawType &item, uint itemSize, const Indices &dims, const QByteArray &copy)
{
    item.setItemSize(itemSize);
    if (dims.size() == 3)
        item.setDimension(dims[0], dims[1], dims[2]);
    QByteArray image = copy;
    item.setItemsCount(itemSize ? uint(copy.size()) / itemSize : 0);
    QVERIFY(item.readData(&image));
    QCOMPARE(item.getLocalCopy(), copy);
}

} // namespace

class tst_BaseRawType : public QObject
{
    Q_OBJECT
private slots:
    void read_data();
    void read();
    void write_data();
    void write();
    void image_data();
    void image();
    void writeImageKeepsLength_data();
    void writeImageKeepsLength();
    void valueHelpers();
    void prettyLocalCopy();
    void oidForms_data();
    void oidForms();
    void readVariablesBySubstring();
    void settersOnlyUpdate();
    void snmpBitFields();
    void writeOnlyChanges();
};

void tst_BaseRawType::read_data()
{
    QTest::addColumn<QString>("op");
    QTest::addColumn<uint>("itemSize");
    QTest::addColumn<Indices>("dims");
    QTest::addColumn<QByteArray>("copy");
    QTest::addColumn<Indices>("index");
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<quint64>("expected");

    const Indices none;
    const Indices cube {2, 3, 4};
    QTest::newRow("bit 9 is bit 1 of the second byte")
        << "bit" << 2u << none << hex("0002") << Indices {0} << 9 << 0 << quint64(1);
    QTest::newRow("bit of element 1")
        << "bit" << 2u << none << hex("00000100") << Indices {1} << 0 << 0 << quint64(1);
    QTest::newRow("bit past the copy")
        << "bit" << 1u << none << hex("ff") << Indices {1} << 0 << 0 << quint64(0);
    QTest::newRow("bits across two bytes")
        << "bits" << 2u << none << hex("c003") << Indices {0} << 6 << 4 << quint64(0xF);
    QTest::newRow("bits past the end read 0")
        << "bits" << 1u << none << hex("ff") << Indices {0} << 4 << 8 << quint64(0x0F);
    QTest::newRow("bits count 0") << "bits" << 1u << none << hex("ff") << Indices {0} << 0 << 0 << quint64(0);
    QTest::newRow("bits cut at 8 bytes") << "bits" << 9u << none << hex("ffffffffffffffffff") << Indices {0}
                                         << 4 << 64 << quint64(0x0FFFFFFFFFFFFFFFULL);
    QTest::newRow("int little-endian")
        << "int" << 2u << none << hex("3412") << Indices {0} << 0 << 2 << quint64(0x1234);
    QTest::newRow("int on a short copy")
        << "int" << 1u << none << hex("34") << Indices {0} << 0 << 2 << quint64(0x34);
    QTest::newRow("int element and offset")
        << "int" << 4u << none << hex("00000000aabbccdd") << Indices {1} << 1 << 2 << quint64(0xCCBB);
    QTest::newRow("int 8 bytes") << "int" << 8u << none << hex("0102030405060708") << Indices {0} << 0 << 8
                                 << quint64(0x0807060504030201ULL);
    QTest::newRow("int count 9 reads 8") << "int" << 9u << none << hex("010203040506070809") << Indices {0}
                                         << 0 << 9 << quint64(0x0807060504030201ULL);
    QTest::newRow("2-D element (1, 2)")
        << "int" << 1u << Indices {2, 3, 1} << counting(6) << Indices {1, 2} << 0 << 1 << quint64(5);
    QTest::newRow("3-D element (1, 2, 3) is 23")
        << "int" << 1u << cube << counting(24) << Indices {1, 2, 3} << 0 << 1 << quint64(23);
    QTest::newRow("3-D with 2-byte elements")
        << "int" << 2u << cube << counting(48) << Indices {1, 0, 1} << 0 << 2 << quint64(0x1B1A);
    QTest::newRow("3-D bit") << "bit" << 1u << cube << counting(24) << Indices {0, 2, 1} << 0 << 0
                             << quint64(1);
    QTest::newRow("3-D bits") << "bits" << 1u << cube << counting(24) << Indices {1, 1, 1} << 2 << 3
                              << quint64(4);
    QTest::newRow("huge index reads 0")
        << "int" << 4u << cube << counting(24) << Indices {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF} << 0 << 4
        << quint64(0);
}

void tst_BaseRawType::read()
{
    QFETCH(QString, op);
    QFETCH(uint, itemSize);
    QFETCH(Indices, dims);
    QFETCH(QByteArray, copy);
    QFETCH(Indices, index);
    QFETCH(int, a);
    QFETCH(int, b);
    QFETCH(quint64, expected);

    BaseRawType item;
    load(item, itemSize, dims, copy);
    const auto ua = static_cast<unsigned char>(a);
    const auto ub = static_cast<unsigned char>(b);
    quint64 result = 0;
    if (op == "bit") {
        result = index.size() == 1 ? item.getBit(index[0], ua)
            : index.size() == 2    ? item.getBit(index[0], index[1], ua)
                                   : item.getBit(index[0], index[1], index[2], ua);
    } else if (op == "bits") {
        result = index.size() == 1 ? item.getBits(index[0], ua, ub)
            : index.size() == 2    ? item.getBits(index[0], index[1], ua, ub)
                                   : item.getBits(index[0], index[1], index[2], ua, ub);
    } else {
        result = index.size() == 1 ? item.getInteger(index[0], ua, ub)
            : index.size() == 2    ? item.getInteger(index[0], index[1], ua, ub)
                                   : item.getInteger(index[0], index[1], index[2], ua, ub);
    }
    QCOMPARE(result, expected);
}

void tst_BaseRawType::write_data()
{
    QTest::addColumn<QString>("op");
    QTest::addColumn<uint>("itemSize");
    QTest::addColumn<Indices>("dims");
    QTest::addColumn<QByteArray>("copy");
    QTest::addColumn<Indices>("index");
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<quint64>("value");
    QTest::addColumn<QByteArray>("expected");

    const Indices none;
    const Indices cube {2, 3, 4};
    QByteArray lastOfCube(24, '\0');
    lastOfCube[23] = 0x7F;
    QByteArray bitInCube(24, '\0');
    bitInCube[2 * 4 + 1] = 0x20;

    QTest::newRow("set bit 9") << "bit" << 2u << none << hex("0000") << Indices {0} << 9 << 0 << quint64(1)
                               << hex("0002");
    QTest::newRow("clear bit 0") << "bit" << 1u << none << hex("ff") << Indices {0} << 0 << 0 << quint64(0)
                                 << hex("fe");
    QTest::newRow("bit past the copy is dropped")
        << "bit" << 1u << none << hex("00") << Indices {0} << 8 << 0 << quint64(1) << hex("00");
    QTest::newRow("3-D bit") << "bit" << 1u << cube << QByteArray(24, '\0') << Indices {0, 2, 1} << 5 << 0
                             << quint64(1) << bitInCube;
    QTest::newRow("bits value spills, unmasked")
        << "bits" << 1u << none << hex("00") << Indices {0} << 0 << 4 << quint64(0x1F) << hex("1f");
    QTest::newRow("bits across bytes keep neighbours")
        << "bits" << 2u << none << hex("ffff") << Indices {0} << 6 << 4 << quint64(0) << hex("3ffc");
    QTest::newRow("bits grow the copy with zeros")
        << "bits" << 1u << none << QByteArray() << Indices {2} << 0 << 8 << quint64(0xAA) << hex("0000aa");
    QTest::newRow("bits count 0 writes nothing")
        << "bits" << 1u << none << QByteArray() << Indices {0} << 3 << 0 << quint64(1) << QByteArray();
    QTest::newRow("int grows the copy")
        << "int" << 1u << none << QByteArray() << Indices {0} << 2 << 2 << quint64(0xABCD) << hex("0000cdab");
    QTest::newRow("int inside the copy") << "int" << 4u << none << hex("11223344") << Indices {0} << 1 << 2
                                         << quint64(0xBEEF) << hex("11efbe44");
    QTest::newRow("int count 10 pads with zeros")
        << "int" << 1u << none << QByteArray() << Indices {0} << 0 << 10 << quint64(0x0102030405060708ULL)
        << hex("08070605040302010000");
    QTest::newRow("int 3-D last element") << "int" << 1u << cube << QByteArray(24, '\0') << Indices {1, 2, 3}
                                          << 0 << 1 << quint64(0x7F) << lastOfCube;
    QTest::newRow("int 2-D element") << "int" << 2u << Indices {2, 2, 1} << QByteArray(8, '\0')
                                     << Indices {1, 0} << 0 << 2 << quint64(0x0102)
                                     << hex("0000000002010000");
    QTest::newRow("huge index writes nothing") << "int" << 4u << none << QByteArray() << Indices {0xFFFFFFFF}
                                               << 0 << 4 << quint64(1) << QByteArray();
    QTest::newRow("huge 3-D index writes nothing")
        << "bits" << 4u << cube << QByteArray() << Indices {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF} << 0 << 8
        << quint64(1) << QByteArray();
}

void tst_BaseRawType::write()
{
    QFETCH(QString, op);
    QFETCH(uint, itemSize);
    QFETCH(Indices, dims);
    QFETCH(QByteArray, copy);
    QFETCH(Indices, index);
    QFETCH(int, a);
    QFETCH(int, b);
    QFETCH(quint64, value);
    QFETCH(QByteArray, expected);

    BaseRawType item;
    load(item, itemSize, dims, copy);
    const auto ua = static_cast<unsigned char>(a);
    const auto ub = static_cast<unsigned char>(b);
    if (op == "bit") {
        if (index.size() == 1)
            item.setBit(index[0], ua, value != 0);
        else if (index.size() == 2)
            item.setBit(index[0], index[1], ua, value != 0);
        else
            item.setBit(index[0], index[1], index[2], ua, value != 0);
    } else if (op == "bits") {
        if (index.size() == 1)
            item.setBits(index[0], ua, ub, value);
        else if (index.size() == 2)
            item.setBits(index[0], index[1], ua, ub, value);
        else
            item.setBits(index[0], index[1], index[2], ua, ub, value);
    } else {
        if (index.size() == 1)
            item.setInteger(index[0], ua, ub, value);
        else if (index.size() == 2)
            item.setInteger(index[0], index[1], ua, ub, value);
        else
            item.setInteger(index[0], index[1], index[2], ua, ub, value);
    }
    QCOMPARE(item.getLocalCopy().toHex(), expected.toHex());
}

void tst_BaseRawType::image_data()
{
    QTest::addColumn<int>("imageSize");
    QTest::addColumn<bool>("fits");

    // Two-byte elements, three of them, at address 4: bytes 4..9.
    QTest::newRow("one byte short") << 9 << false;
    QTest::newRow("exact") << 10 << true;
    QTest::newRow("longer") << 12 << true;
    QTest::newRow("empty") << 0 << false;
}

void tst_BaseRawType::image()
{
    QFETCH(int, imageSize);
    QFETCH(bool, fits);

    BaseRawType item;
    item.setItemSize(2);
    item.setItemsCount(3);
    item.setStartAddress(4u);
    QCOMPARE(item.getTotalSize(), 6u);

    // Put the item in SNMP mode with a known copy, to see a refused read
    // leave both alone.
    QByteArray earlier = hex("aabbccddeeff0102030405");
    QVERIFY(item.readData(&earlier));
    QHash<QString, QVariant> none;
    QVERIFY(item.readData(&none));
    QCOMPARE(item.getMode(), 1u);

    QByteArray source = counting(imageSize);
    QCOMPARE(item.readData(&source), fits);
    QCOMPARE(item.getLocalCopy(), fits ? hex("040506070809") : hex("eeff01020304"));
    QCOMPARE(item.getMode(), fits ? 0u : 1u);

    QByteArray target(imageSize, char(0x55));
    const QByteArray before = target;
    item.setInteger(0, 0, 2, 0xA1A0);
    QCOMPARE(item.writeData(&target), fits);
    if (fits) {
        QByteArray expected = before;
        expected.replace(4, 6, item.getLocalCopy());
        QCOMPARE(target, expected);
    } else {
        QCOMPARE(target, before);
    }
    QVERIFY(!item.readData(static_cast<QByteArray *>(nullptr)));
    QVERIFY(!item.writeData(static_cast<QByteArray *>(nullptr)));
}

void tst_BaseRawType::writeImageKeepsLength_data()
{
    QTest::addColumn<QByteArray>("copy");
    QTest::addColumn<QByteArray>("expected");

    // A 3-byte item at address 1 of a 5-byte image of 0xEE.
    QTest::newRow("never read: zeros, as it reads") << QByteArray() << hex("ee000000ee");
    QTest::newRow("short copy padded") << hex("11") << hex("ee110000ee");
    QTest::newRow("grown copy cut") << hex("1122334455") << hex("ee112233ee");
}

void tst_BaseRawType::writeImageKeepsLength()
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

void tst_BaseRawType::valueHelpers()
{
    QCOMPARE(BaseRawType::getBitsFromData(4, 4, 0xAB), 0xAULL);
    QCOMPARE(BaseRawType::getBitsFromData(4, 0, 0xAB), 0ULL);
    QCOMPARE(BaseRawType::getBitsFromData(60, 8, 0xF000000000000000ULL), 0xFULL);
    QCOMPARE(BaseRawType::getBitsFromData(64, 8, ~0ULL), 0ULL);
    QCOMPARE(BaseRawType::setBitsToData(4, 4, 0xAB, 0x15), 0x5BULL);
    QCOMPARE(BaseRawType::setBitsToData(4, 0, 0xAB, 0x15), 0xABULL);
    QCOMPARE(BaseRawType::setBitsToData(0, 64, 0, ~0ULL), ~0ULL);
    QCOMPARE(BaseRawType::setBitsToData(200, 8, 0xAB, 0xFF), 0xABULL);

    BaseRawType item;
    item.setDimension(2, 3);
    QCOMPARE(item.getItemCount(), 6u);
    item.setDimension(2, 3, 4);
    QCOMPARE(item.getItemCount(), 24u);
    item.setItemsCount(5);
    QCOMPARE(item.getItemCount(), 5u);
}

void tst_BaseRawType::prettyLocalCopy()
{
    BaseRawType item;
    QCOMPARE(item.getPrettyLocalCopy(), QString());
    item.setInteger(0, 0, 3, 0x01FF0A);
    QCOMPARE(item.getPrettyLocalCopy(), QStringLiteral("0A FF 01"));
}

void tst_BaseRawType::oidForms_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("index");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("scalar is S.0") << "scalar"
                                   << "" << 0 << QVariant(10);
    QTest::newRow("empty name is S") << "named"
                                     << "" << 0 << QVariant(11);
    QTest::newRow("name") << "named"
                          << "5" << 0 << QVariant(12);
    QTest::newRow("dotted name") << "named"
                                 << "2.1" << 0 << QVariant(16);
    QTest::newRow("row counts from 1") << "row"
                                       << "5" << 0 << QVariant(13);
    QTest::newRow("row from zero") << "fromZero"
                                   << "5" << 0 << QVariant(14);
    QTest::newRow("no suffix, row from 1") << "nonSufix"
                                           << "" << 2 << QVariant(15);
    QTest::newRow("absent is invalid") << "named"
                                       << "9" << 0 << QVariant();
    QTest::newRow("negative row") << "row"
                                  << "5" << -1 << QVariant(14);
    QTest::newRow("largest row") << "row"
                                 << "5" << INT_MAX << QVariant(17);
}

void tst_BaseRawType::oidForms()
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

    QVariant value;
    if (form == "scalar")
        value = item.getValue();
    else if (form == "named")
        value = item.getValue(name);
    else if (form == "row")
        value = item.getValue(name, index);
    else if (form == "fromZero")
        value = item.getValueFromZero(name, index);
    else
        value = item.getValueNonSufix(index);
    QCOMPARE(value, expected);

    // Each setter reaches the variable its getter reads.
    const QVariant changed(99);
    if (form == "scalar")
        item.setValue(changed);
    else if (form == "named")
        item.setValue(name, changed);
    else if (form == "row")
        item.setValue(name, index, changed);
    else if (form == "nonSufix")
        item.setValueNonSufix(index, changed);
    else
        return;
    const QVariant after = form == "scalar" ? item.getValue()
        : form == "named"                   ? item.getValue(name)
        : form == "row"                     ? item.getValue(name, index)
                                            : item.getValueNonSufix(index);
    QCOMPARE(after, expected.isValid() ? changed : QVariant());
}

void tst_BaseRawType::readVariablesBySubstring()
{
    BaseRawType item;
    QHash<QString, QVariant> first {{"1.2.3.44.2", 1}, {"9.1.2.3.4.1", 2}, {"1.2.3", 3}, {"1.2.3.5", 4}};
    QVERIFY(item.readData(&first));
    QCOMPARE(item.getMode(), 1u);
    QVERIFY(item.getSnmpData().isEmpty()); // no start address: nothing taken

    item.setStartAddress(QStringLiteral("1.2.3.4"));
    QVERIFY(item.readData(&first));
    const QHash<QString, QVariant> taken {{"1.2.3.44.2", 1}, {"9.1.2.3.4.1", 2}};
    QCOMPARE(item.getSnmpData(), taken);

    // Later reads replace equal OIDs and keep the rest.
    QHash<QString, QVariant> second {{"1.2.3.44.2", 5}, {"1.2.3.4.7", 6}};
    QVERIFY(item.readData(&second));
    const QHash<QString, QVariant> merged {{"1.2.3.44.2", 5}, {"9.1.2.3.4.1", 2}, {"1.2.3.4.7", 6}};
    QCOMPARE(item.getSnmpData(), merged);

    QVERIFY(item.clearSnmpData());
    QVERIFY(item.getSnmpData().isEmpty());
    QVERIFY(!item.readData(static_cast<QHash<QString, QVariant> *>(nullptr)));
}

void tst_BaseRawType::settersOnlyUpdate()
{
    BaseRawType item;
    item.setStartAddress(QStringLiteral("1.2.3.4"));
    item.setValue(QStringLiteral("5"), 0, QVariant(7));
    item.setValue(QVariant(7));
    item.setValueNonSufix(0, QVariant(7));
    item.setValue(QStringLiteral("5"), 0, 1ULL, 0, 2);
    QVERIFY(item.getSnmpData().isEmpty());

    item.setValueHard(QStringLiteral("5"), 0, QVariant(7));
    QCOMPARE(item.getSnmpData(), (QHash<QString, QVariant> {{"1.2.3.4.5.1", 7}}));
    item.setValueHard(QStringLiteral("5"), 0, QVariant(8));
    QCOMPARE(item.getValue(QStringLiteral("5"), 0), QVariant(8));
}

void tst_BaseRawType::snmpBitFields()
{
    BaseRawType item;
    item.setStartAddress(QStringLiteral(".1.9"));
    QHash<QString, QVariant> received {
        {".1.9.0", 0xF0}, {".1.9.3", QStringLiteral("text")}, {".1.9.4.1", 0x80000001u}};
    QVERIFY(item.readData(&received));

    QCOMPARE(item.getValue(4, 2), 3ULL);
    QCOMPARE(item.getValue(4, 0), 0ULL);
    QCOMPARE(item.getValue(QStringLiteral("3"), 0, 8), 0ULL); // not a number
    QCOMPARE(item.getValue(QStringLiteral("8"), 0, 8), 0ULL); // absent
    QCOMPARE(item.getValue(QStringLiteral("4"), 0, 31, 1), 1ULL);
    QCOMPARE(item.getValueFromZero(QStringLiteral("4"), 1, 0, 1), 1ULL);
    QCOMPARE(item.getValueNonSufix(2, 0, 8), 0ULL); // .1.9.3 holds text

    item.setValue(1ULL, 0, 2);
    QCOMPARE(item.getValue(), QVariant(qulonglong(0xF1)));
    QCOMPARE(item.getValue().userType(), int(QMetaType::ULongLong));
    item.setValue(0x7ULL, 0, 2); // masked to the two bits
    QCOMPARE(item.getValue(), QVariant(qulonglong(0xF3)));
    item.setValue(QStringLiteral("4"), 0, 0ULL, 31, 1);
    QCOMPARE(item.getValue(QStringLiteral("4"), 0), QVariant(qulonglong(1)));
    item.setValue(QStringLiteral("4"), 0, 5ULL, 0, 0); // count 0 keeps the value
    QCOMPARE(item.getValue(QStringLiteral("4"), 0), QVariant(qulonglong(1)));
}

void tst_BaseRawType::writeOnlyChanges()
{
    BaseRawType item;
    item.setStartAddress(QStringLiteral("1.5"));
    QHash<QString, QVariant> received {{"1.5.1", 1}, {"1.5.2", 2}};
    QVERIFY(item.readData(&received));

    QHash<QString, QVariant> lastSent;
    QHash<QString, QVariant> toSend;
    QVERIFY(item.writeData(&toSend, lastSent));
    QCOMPARE(toSend, received);
    QCOMPARE(lastSent, received);

    toSend.clear();
    QVERIFY(item.writeData(&toSend, lastSent));
    QVERIFY(toSend.isEmpty());

    item.setValue(QStringLiteral("2"), QVariant(20));
    QVERIFY(item.writeData(&toSend, lastSent));
    QCOMPARE(toSend, (QHash<QString, QVariant> {{"1.5.2", 20}}));

    // A numerically equal value of another type is no change.
    toSend.clear();
    lastSent.insert("1.5.1", qulonglong(1));
    QVERIFY(item.writeData(&toSend, lastSent));
    QVERIFY(toSend.isEmpty());

    lastSent.clear();
    QVERIFY(item.writeData(&toSend, lastSent));
    QCOMPARE(toSend.size(), 2);
    QVERIFY(!item.writeData(nullptr, lastSent));
}

QTEST_GUILESS_MAIN(tst_BaseRawType)
#include "tst_baserawtype.moc"
