#include <ui/trapvisual.h>

#include <QtTest>

#include <QSortFilterProxyModel>

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
    void rowCells()
    {
        TrapVisual list;
        const QDateTime before = QDateTime::currentDateTime();
        // Traps often arrive through queued connections.
        QMetaObject::invokeMethod(
            &list, "setTrap", Qt::QueuedConnection, Q_ARG(TrapVisualUnit, trap(2, "QX20 #4")));
        QTRY_COMPARE(list.getModel()->rowCount(), 1);
        list.setTrap(trap(0, QStringLiteral("second")));
        QAbstractItemModel *model = list.getModel();
        QCOMPARE(model->rowCount(), 2);
        const QDateTime shown = model->index(0, 0).data().toDateTime();
        QVERIFY(shown >= before && shown <= QDateTime::currentDateTime());
        QCOMPARE(model->index(0, 0).data(257).toDateTime(), shown);
        QCOMPARE(model->index(0, 1).data().toString(), QStringLiteral("QX20 #4"));
        QCOMPARE(model->index(0, 1).data(257).value<quint64>(), 0xFEDCBA9876543210ULL);
        QCOMPARE(model->index(0, 1).data(258).toInt(), 2);
        QCOMPARE(model->index(1, 1).data().toString(), QStringLiteral("second"));
    }

    void informationText_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QVariantHash>("variables");
        QTest::addColumn<QStringList>("parts");
        QTest::newRow("no variables") << "p" << QVariantHash() << QStringList();
        QTest::newRow("several kinds")
            << "1.3.6" << QVariantHash {{"ifIndex", 3}, {"state", "down"}, {"up", true}}
            << QStringList {"1.3.6:ifIndex:3;   ", "1.3.6:state:down;   ", "1.3.6:up:true;   "};
        QTest::newRow("placeholders kept") << "" << QVariantHash {{"%1", "%2"}} << QStringList {":%1:%2;   "};
    }
    void informationText()
    {
        QFETCH(QVariantHash, variables);
        QFETCH(QStringList, parts);
        TrapVisualUnit unit = trap(0);
        QFETCH(QString, prefix);
        unit.prefix = prefix;
        unit.variables = variables;
        TrapVisual list;
        list.setTrap(unit);
        // The variables follow the hash's own order, which is not fixed.
        QString text = list.getModel()->index(0, 2).data().toString();
        for (const QString &part : parts) {
            QVERIFY2(text.contains(part), qPrintable(part));
            text.remove(text.indexOf(part), part.size());
        }
        QCOMPARE(text, QString());
    }

    void background_data()
    {
        QTest::addColumn<int>("alarm");
        QTest::addColumn<QColor>("colour");
        QTest::newRow("ok") << 0 << QColor(Qt::transparent);
        QTest::newRow("major") << 1 << QColor(254, 115, 107);
        QTest::newRow("minor") << 2 << QColor(213, 213, 0);
        QTest::newRow("major and minor") << 3 << QColor(254, 115, 107);
        QTest::newRow("level 4") << 4 << QColor(100, 100, 100);
        QTest::newRow("level 5: view's default") << 5 << QColor();
    }
    void background()
    {
        QFETCH(int, alarm);
        QFETCH(QColor, colour);
        TrapVisual list;
        list.setTrap(trap(quint8(alarm)));
        list.showColors(true);
        QVERIFY(list.isColorsShown());
        list.setTrap(trap(quint8(alarm)));
        list.showColors(false);
        list.setTrap(trap(quint8(alarm)));
        // Only the row that arrived while colours were on is tinted, all three cells.
        QAbstractItemModel *model = list.getModel();
        for (int column = 0; column < 3; ++column) {
            QVERIFY(!model->index(0, column).data(Qt::BackgroundRole).isValid());
            const QVariant tint = model->index(1, column).data(Qt::BackgroundRole);
            QCOMPARE(tint.isValid() ? tint.value<QBrush>().color() : QColor(), colour);
            QVERIFY(!model->index(2, column).data(Qt::BackgroundRole).isValid());
        }
    }

    void overlapClearAndFilter()
    {
        TrapVisual list;
        QSortFilterProxyModel *model = list.getModel();
        list.setTrap(trap(0, QStringLiteral("alpha")));
        list.trapsOverlap(true);
        QVERIFY(list.isTrapsOverlap());
        list.setTrap(trap(1));
        QCOMPARE(model->rowCount(), 1);
        list.trapsOverlap(false);
        list.setTrap(trap(3, QStringLiteral("beta")));
        QCOMPARE(model->index(1, 1).data(258).toInt(), 3);
        // Only the Time column is searched, not the device or information texts.
        list.setFilter(QStringLiteral("alpha"));
        QCOMPARE(list.getFilter(), QStringLiteral("alpha"));
        QCOMPARE(model->rowCount(), 0);
        list.setFilter(
            model->sourceModel()->index(0, 0).data().toDateTime().toString(QStringLiteral("yyyy")));
        QCOMPARE(model->rowCount(), 2);
        list.setFilter(QString());
        list.clear();
        QCOMPARE(model->rowCount(), 0);
        QCOMPARE(model->columnCount(), 3);
        for (int column = 0; column < 3; ++column)
            QCOMPARE(model->headerData(column, Qt::Horizontal).toString(),
                QString("Time Device Information").split(' ').at(column));
    }
};

QTEST_MAIN(tst_TrapVisual)
#include "tst_trapvisual.moc"
