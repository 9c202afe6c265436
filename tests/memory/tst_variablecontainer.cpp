#include <memory/variablecontainer.h>

#include <QtTest>

class tst_VariableContainer : public QObject
{
    Q_OBJECT
private slots:
    void variables()
    {
        VariableContainer container;
        QString x = QStringLiteral("x");
        QVERIFY(!container.getValue(x).isValid() && !container.hasVariable(x));
        container.setValue(x, 5);
        container.setValue(x, 6);
        container.setValue(QString(), QStringLiteral("empty name"));
        QVERIFY(container.getValue(x) == QVariant(6) && container.hasVariable(x));
        QCOMPARE(container.getValiableList().size(), 2);
    }
    void tables()
    {
        VariableContainer container;
        const QString t = QStringLiteral("t");
        QVERIFY(!container.getValue(t, 1, 1).isValid());
        QVERIFY(container.getTableList().isEmpty()); // a read creates nothing
        container.setValue(t, 2, 3, QStringLiteral("v"));
        container.setValue(t, -7, INT_MIN, 1.5);
        QCOMPARE(container.getTableList(), QList<QString> {t});
        QCOMPARE(QVariantList({container.getValue(t, 2, 3), container.getValue(t, -7, INT_MIN),
                     container.getValue(t, 2, 4), container.getValue(t, 3, 3), container.getValue(t, 2, 2),
                     container.getValue(QStringLiteral("u"), 2, 3)}),
            QVariantList({QStringLiteral("v"), 1.5, {}, {}, {}, {}}));
        // A whole table replaces what was there and is kept as a copy.
        VariableContainer::TableItem item;
        item.name = t;
        item.cells[5][6] = 56;
        container.addTable(item);
        item.cells[5][6] = 0;
        QVERIFY(!container.getValue(t, 2, 3).isValid());
        container.setValue(t, 5, 7, 57);
        QCOMPARE(container.getValue(t, 5, 6), QVariant(56));
    }
};

QTEST_GUILESS_MAIN(tst_VariableContainer)
#include "tst_variablecontainer.moc"
