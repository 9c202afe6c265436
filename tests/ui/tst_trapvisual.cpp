#include <ui/trapvisual.h>

#include <QtTest>

#include <QSortFilterProxyModel>
#include <QStandardItem>

namespace {

TrapVisualUnit trap(quint8 alarm, const QString &device = QStringLiteral("Unit"))
{
    TrapVisualUnit unit;
    unit.identifier = 0xFEDCBA9876543210ULL;
    unit.deviceName = device;
    unit.alarm = alarm;
    return unit;
}

} // namespace

class tst_TrapVisual : public QObject
{
    Q_OBJECT
private slots:
    void freshList();
    void rowCells();
    void informationText_data();
    void informationText();
    void background_data();
    void background();
    void coloursApplyToLaterRowsOnly();
    void overlapFreezesList();
    void clearKeepsHeaders();
    void filterOnTimeColumn();
    void queuedTraps();
};

void tst_TrapVisual::freshList()
{
    TrapVisual list;
    QAbstractItemModel *model = list.getModel();
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(model->columnCount(), 3);
    QCOMPARE(model->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Time"));
    QCOMPARE(model->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Device"));
    QCOMPARE(model->headerData(2, Qt::Horizontal).toString(), QStringLiteral("Information"));
    QVERIFY(!list.isColorsShown());
    QVERIFY(!list.isTrapsOverlap());
    QCOMPARE(list.getModel()->filterKeyColumn(), 0);
    QCOMPARE(int(TrapVisual::IdentifierRole), 257);
    QCOMPARE(int(TrapVisual::AlarmRole), 258);
}

void tst_TrapVisual::rowCells()
{
    TrapVisual list;
    const QDateTime before = QDateTime::currentDateTime();
    list.setTrap(trap(2, QStringLiteral("Vantor-QX20 #4")));
    const QDateTime after = QDateTime::currentDateTime();

    QAbstractItemModel *model = list.getModel();
    QCOMPARE(model->rowCount(), 1);
    const QModelIndex time = model->index(0, 0);
    const QModelIndex device = model->index(0, 1);

    const QDateTime shown = time.data(Qt::DisplayRole).toDateTime();
    QVERIFY(shown >= before && shown <= after);
    QCOMPARE(time.data(257).toDateTime(), shown);

    QCOMPARE(device.data().toString(), QStringLiteral("Vantor-QX20 #4"));
    QCOMPARE(device.data(257).value<quint64>(), 0xFEDCBA9876543210ULL);
    QCOMPARE(device.data(258).toInt(), 2);
    QVERIFY(!device.data(Qt::BackgroundRole).isValid());

    list.setTrap(trap(0, QStringLiteral("second")));
    QCOMPARE(model->rowCount(), 2);
    QCOMPARE(model->index(1, 1).data().toString(), QStringLiteral("second"));
}

void tst_TrapVisual::informationText_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QVariantHash>("variables");
    QTest::addColumn<QStringList>("parts");

    QTest::newRow("no variables") << "p" << QVariantHash() << QStringList();
    QTest::newRow("one variable") << "p" << QVariantHash {{"a", 1}} << QStringList {"p:a:1;   "};
    QTest::newRow("several kinds") << "1.3.6.1.4.1"
                                   << QVariantHash {{"ifIndex", 3}, {"state", QStringLiteral("down")},
                                          {"up", true}}
                                   << QStringList {"1.3.6.1.4.1:ifIndex:3;   ", "1.3.6.1.4.1:state:down;   ",
                                          "1.3.6.1.4.1:up:true;   "};
    QTest::newRow("no prefix, placeholders kept")
        << "" << QVariantHash {{"%1", QStringLiteral("%2")}} << QStringList {":%1:%2;   "};
}

void tst_TrapVisual::informationText()
{
    QFETCH(QString, prefix);
    QFETCH(QVariantHash, variables);
    QFETCH(QStringList, parts);

    TrapVisualUnit unit = trap(0);
    unit.prefix = prefix;
    unit.variables = variables;
    TrapVisual list;
    list.setTrap(unit);

    // The variables follow the hash's own order, which is not fixed.
    QString text = list.getModel()->index(0, 2).data().toString();
    QCOMPARE(text.size(), parts.join(QString()).size());
    for (const QString &part : parts) {
        QVERIFY2(text.contains(part), qPrintable(part));
        text.remove(text.indexOf(part), part.size());
    }
    QVERIFY(text.isEmpty());
}

void tst_TrapVisual::background_data()
{
    QTest::addColumn<int>("alarm");
    QTest::addColumn<QColor>("colour");

    QTest::newRow("ok") << 0 << QColor(Qt::transparent);
    QTest::newRow("major") << 1 << QColor(254, 115, 107);
    QTest::newRow("minor") << 2 << QColor(213, 213, 0);
    QTest::newRow("major and minor") << 3 << QColor(254, 115, 107);
    QTest::newRow("level 4") << 4 << QColor(100, 100, 100);
    QTest::newRow("level 5") << 5 << QColor();
    QTest::newRow("level 255") << 255 << QColor();
}

void tst_TrapVisual::background()
{
    QFETCH(int, alarm);
    QFETCH(QColor, colour);

    TrapVisual list;
    list.showColors(true);
    QVERIFY(list.isColorsShown());
    list.setTrap(trap(quint8(alarm)));
    for (int column = 0; column < 3; ++column) {
        const QVariant value = list.getModel()->index(0, column).data(Qt::BackgroundRole);
        const QColor shown = value.value<QBrush>().color();
        if (colour.isValid())
            QCOMPARE(shown, colour);
        else
            QVERIFY(!value.isValid());
    }
}

void tst_TrapVisual::coloursApplyToLaterRowsOnly()
{
    TrapVisual list;
    list.setTrap(trap(1));
    list.showColors(true);
    list.setTrap(trap(1));
    list.showColors(false);
    list.setTrap(trap(1));

    QAbstractItemModel *model = list.getModel();
    QVERIFY(!model->index(0, 0).data(Qt::BackgroundRole).isValid());
    QCOMPARE(model->index(1, 2).data(Qt::BackgroundRole).value<QBrush>().color(), QColor(254, 115, 107));
    QVERIFY(!model->index(2, 1).data(Qt::BackgroundRole).isValid());
}

void tst_TrapVisual::overlapFreezesList()
{
    TrapVisual list;
    list.setTrap(trap(0));
    list.trapsOverlap(true);
    QVERIFY(list.isTrapsOverlap());
    list.setTrap(trap(1));
    list.setTrap(trap(2));
    QCOMPARE(list.getModel()->rowCount(), 1);
    list.trapsOverlap(false);
    list.setTrap(trap(3));
    QCOMPARE(list.getModel()->rowCount(), 2);
    QCOMPARE(list.getModel()->index(1, 1).data(258).toInt(), 3);
}

void tst_TrapVisual::clearKeepsHeaders()
{
    TrapVisual list;
    for (int i = 0; i < 5; ++i)
        list.setTrap(trap(0));
    list.clear();
    QAbstractItemModel *model = list.getModel();
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(model->columnCount(), 3);
    QCOMPARE(model->headerData(2, Qt::Horizontal).toString(), QStringLiteral("Information"));
    list.setTrap(trap(0));
    QCOMPARE(model->rowCount(), 1);
}

void tst_TrapVisual::filterOnTimeColumn()
{
    TrapVisual list;
    TrapVisualUnit unit = trap(0, QStringLiteral("alpha"));
    unit.variables.insert(QStringLiteral("text"), QStringLiteral("alpha"));
    list.setTrap(unit);
    list.setTrap(trap(0, QStringLiteral("beta")));

    QSortFilterProxyModel *model = list.getModel();
    const QString year = model->index(0, 0).data().toDateTime().toString(QStringLiteral("yyyy"));

    // Only the Time column is searched: device and information texts are not.
    list.setFilter(QStringLiteral("alpha"));
    QCOMPARE(list.getFilter(), QStringLiteral("alpha"));
    QCOMPARE(model->rowCount(), 0);

    list.setFilter(year);
    QCOMPARE(model->rowCount(), 2);

    list.setFilter(QStringLiteral("^x"));
    QCOMPARE(model->rowCount(), 0);
    list.setTrap(trap(0));
    QCOMPARE(model->rowCount(), 0);

    list.setFilter(QString());
    QCOMPARE(model->rowCount(), 3);
}

void tst_TrapVisual::queuedTraps()
{
    TrapVisual list;
    QMetaObject::invokeMethod(&list, "setTrap", Qt::QueuedConnection, Q_ARG(TrapVisualUnit, trap(1)));
    QTRY_COMPARE(list.getModel()->rowCount(), 1);
}

QTEST_MAIN(tst_TrapVisual)
#include "tst_trapvisual.moc"
