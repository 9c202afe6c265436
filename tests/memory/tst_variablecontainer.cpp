#include <memory/variablecontainer.h>

#include <QtTest>

class tst_VariableContainer : public QObject
{
    Q_OBJECT
private slots:
    void variables();
    void tables();
    void addTableReplacesWhole();
};

void tst_VariableContainer::variables()
{
    VariableContainer container;
    QString x = QStringLiteral("x");
    QVERIFY(!container.getValue(x).isValid());
    QVERIFY(!container.hasVariable(x));
    container.setValue(x, 5);
    container.setValue(x, 6);
    container.setValue(QString(), QStringLiteral("empty name"));
    QCOMPARE(container.getValue(x), QVariant(6));
    QVERIFY(container.hasVariable(x));
    QList<QString> names = container.getValiableList();
    std::sort(names.begin(), names.end());
    QCOMPARE(names, (QList<QString> {QString(), x}));
}

void tst_VariableContainer::tables()
{
    VariableContainer container;
    QVERIFY(!container.getValue(QStringLiteral("t"), 1, 1).isValid());
    QVERIFY(container.getTableList().isEmpty()); // a read creates nothing

    container.setValue(QStringLiteral("t"), 2, 3, QStringLiteral("v"));
    container.setValue(QStringLiteral("t"), -7, INT_MIN, 1.5);
    QCOMPARE(container.getTableList(), QList<QString> {QStringLiteral("t")});
    QCOMPARE(container.getValue(QStringLiteral("t"), 2, 3), QVariant(QStringLiteral("v")));
    QCOMPARE(container.getValue(QStringLiteral("t"), -7, INT_MIN), QVariant(1.5));
    QVERIFY(!container.getValue(QStringLiteral("t"), 2, 4).isValid());
    QVERIFY(!container.getValue(QStringLiteral("t"), 3, 3).isValid());
    QVERIFY(!container.getValue(QStringLiteral("u"), 2, 3).isValid());
    QCOMPARE(container.getTableList().size(), 1);
}

void tst_VariableContainer::addTableReplacesWhole()
{
    VariableContainer container;
    container.setValue(QStringLiteral("t"), 1, 1, 10);
    container.setValue(QStringLiteral("t"), 1, 2, 20);

    VariableContainer::TableItem item;
    item.name = QStringLiteral("t");
    item.cells[5][6] = 56;
    item.firstNameIndex.insert(QStringLiteral("row"), 5);
    container.addTable(item);
    item.cells[5][6] = 0; // the container keeps its own copy

    QVERIFY(!container.getValue(QStringLiteral("t"), 1, 1).isValid());
    QCOMPARE(container.getValue(QStringLiteral("t"), 5, 6), QVariant(56));
    container.setValue(QStringLiteral("t"), 5, 7, 57);
    QCOMPARE(container.getValue(QStringLiteral("t"), 5, 6), QVariant(56));
}

QTEST_GUILESS_MAIN(tst_VariableContainer)
#include "tst_variablecontainer.moc"
