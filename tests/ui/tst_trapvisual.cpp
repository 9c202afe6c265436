#include <ui/trapvisual.h>

#include <QtTest>

#include <QSortFilterProxyModel>

namespace {

TrapVisualUnit trap(quint8 alarm, const QString &device = "Unit", const QString &prefix = {},
    const QVariantHash &variables = {})
{
    TrapVisualUnit unit;
    unit.identifier = 0xFEDCBA9876543210ULL;
    unit.deviceName = device;
    unit.alarm = alarm;
    unit.prefix = prefix;
    unit.variables = variables;
    return unit;
}

// A row's device cell with its identifier and alarm.
QString device(const QAbstractItemModel *model, int row)
{
    const QModelIndex cell = model->index(row, 1);
    return QStringLiteral("%1 %2 %3")
        .arg(cell.data().toString())
        .arg(cell.data(257).value<quint64>(), 0, 16)
        .arg(cell.data(258).toInt());
}

} // namespace

class tst_TrapVisual : public QObject
{
    Q_OBJECT
private slots:
    void rows()
    {
        TrapVisual list;
        QSortFilterProxyModel *model = list.getModel();
        const QDateTime before = QDateTime::currentDateTime();
        // Traps often arrive through queued connections.
        QMetaObject::invokeMethod(
            &list, "setTrap", Qt::QueuedConnection, Q_ARG(TrapVisualUnit, trap(2, "QX20 #4")));
        QTRY_COMPARE(model->rowCount(), 1);
        list.setTrap(trap(0, QStringLiteral("second")));
        const QDateTime shown = model->index(0, 0).data().toDateTime();
        QVERIFY(shown >= before && shown <= QDateTime::currentDateTime());
        QCOMPARE(model->index(0, 0).data(257).toDateTime(), shown);
        QCOMPARE(device(model, 0) + '|' + device(model, 1),
            "QX20 #4 fedcba9876543210 2|second fedcba9876543210 0");

        // An overlapping trap replaces a row instead of adding one.
        list.trapsOverlap(true);
        list.setTrap(trap(1));
        QCOMPARE(model->rowCount(), 2);
        list.trapsOverlap(false);
        list.setTrap(trap(3, QStringLiteral("beta")));
        QCOMPARE(device(model, 2), "beta fedcba9876543210 3");
        // A lowered cap drops the oldest rows at once and a full list the oldest per trap, whatever the
        // view's order.
        model->sort(1, Qt::DescendingOrder);
        list.setMaximumRows(2);
        QCOMPARE(device(model, 1), "beta fedcba9876543210 3");
        list.setTrap(trap(0, QStringLiteral("alpha")));
        QCOMPARE(
            device(model, 0) + '|' + device(model, 1), "beta fedcba9876543210 3|alpha fedcba9876543210 0");
        // Only the Time column is searched, not the device or information texts.
        list.setFilter(QStringLiteral("QX20"));
        QCOMPARE(model->rowCount(), 0);
        list.setFilter(shown.toString(QStringLiteral("yyyy")));
        QCOMPARE(model->rowCount(), 2);
        list.clear();
        QCOMPARE(model->rowCount(), 0);
        QStringList headers;
        for (int column = 0; column < model->columnCount(); ++column)
            headers << model->headerData(column, Qt::Horizontal).toString();
        QCOMPARE(headers, QStringList({"Time", "Device", "Information"}));
    }
    void informationText_data()
    {
        QTest::addColumn<TrapVisualUnit>("unit");
        QTest::addColumn<QStringList>("parts");
        QTest::newRow("no variables") << trap(0, "", "p") << QStringList();
        QTest::newRow("several kinds")
            << trap(0, "", "1.3.6", {{"ifIndex", 3}, {"state", "down"}, {"up", true}})
            << QStringList {"1.3.6:ifIndex:3;   ", "1.3.6:state:down;   ", "1.3.6:up:true;   "};
        QTest::newRow("placeholders kept") << trap(0, "", "", {{"%1", "%2"}}) << QStringList {":%1:%2;   "};
    }
    void informationText()
    {
        QFETCH(TrapVisualUnit, unit);
        TrapVisual list;
        list.setTrap(unit);
        // The variables follow the hash's own order, which is not fixed.
        const QString text = list.getModel()->index(0, 2).data().toString();
        QStringList parts = text.split(QRegularExpression("(?<=;   )"), Qt::SkipEmptyParts);
        parts.sort();
        QTEST(parts, "parts");
    }
    void background()
    {
        // Only rows that arrived while colours were on are tinted, all three cells.
        TrapVisual list;
        list.setTrap(trap(1));
        list.showColors(true);
        for (quint8 alarm : {0, 1, 2, 3, 4, 5})
            list.setTrap(trap(alarm));
        list.showColors(false);
        list.setTrap(trap(1));
        QStringList tints;
        for (int row = 0; row < 8; ++row) {
            QSet<QString> cells;
            for (int column = 0; column < 3; ++column) {
                const QVariant tint = list.getModel()->index(row, column).data(Qt::BackgroundRole);
                cells << (tint.isValid() ? tint.value<QBrush>().color().name(QColor::HexArgb) : "-");
            }
            tints << cells.values().join('/');
        }
        // Level 5 leaves the view's default.
        QCOMPARE(tints.join(' '), "- #00000000 #fffe736b #ffd5d500 #fffe736b #ff646464 - -");
    }
};

QTEST_MAIN(tst_TrapVisual)
#include "tst_trapvisual.moc"
