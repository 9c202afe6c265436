// Which variables an item sends back, for values whose equality is not
// plain: a not-a-number must count as unchanged, a real change as changed.

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

    const double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("double NaN, then a number") << QVariant(nan) << QVariant(1.5);
    QTest::newRow("float NaN, then a number")
        << QVariant(std::numeric_limits<float>::quiet_NaN()) << QVariant(0.0f);
    QTest::newRow("number, then NaN") << QVariant(2.0) << QVariant(nan);
    QTest::newRow("integer") << QVariant(7) << QVariant(8);
    QTest::newRow("text") << QVariant(QStringLiteral("up")) << QVariant(QStringLiteral("down"));
}

void tst_SnmpChanges::sentOnceUntilChanged()
{
    QFETCH(QVariant, received);
    QFETCH(QVariant, changed);
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
    QCOMPARE(toSend.keys(), QStringList {oid});
}

QTEST_MAIN(tst_SnmpChanges)
#include "tst_snmpchanges.moc"
