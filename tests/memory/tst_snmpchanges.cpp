// Which variables an item sends back, for values whose equality is not
// plain: a not-a-number must count as unchanged, the same number in another
// type as unchanged, a real change or a change of kind as changed.

#include <memory/baserawtype.h>

#include <QtTest>

#include <limits>

using Variables = QHash<QString, QVariant>;

class tst_SnmpChanges : public QObject
{
    Q_OBJECT
private slots:
    void sentOnceUntilChanged_data();
    void sentOnceUntilChanged();
};

void tst_SnmpChanges::sentOnceUntilChanged_data()
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

void tst_SnmpChanges::sentOnceUntilChanged()
{
    QFETCH(QVariant, received);
    QFETCH(QVariant, changed);
    QFETCH(bool, sent);
    const QString oid = QStringLiteral("1.2.3.4.0");

    BaseRawType item;
    item.setStartAddress(QStringLiteral("1.2.3.4"));
    Variables variables {{oid, received}};
    QVERIFY(item.readData(&variables));

    Variables lastSent;
    Variables toSend;
    QVERIFY(item.writeData(&toSend, lastSent));
    QCOMPARE(toSend.keys(), QStringList {oid});

    toSend.clear();
    QVERIFY(item.writeData(&toSend, lastSent));
    QVERIFY(toSend.isEmpty());

    item.setValue(changed);
    QVERIFY(item.writeData(&toSend, lastSent));
    QCOMPARE(toSend.keys(), sent ? QStringList {oid} : QStringList());
}

QTEST_MAIN(tst_SnmpChanges)
#include "tst_snmpchanges.moc"
