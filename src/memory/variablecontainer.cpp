#include "memory/variablecontainer.h"

VariableContainer::VariableContainer() = default;

void VariableContainer::setValue(QString name, QVariant value)
{
    variables[name] = value;
}

QVariant VariableContainer::getValue(QString name)
{
    return variables.value(name);
}

bool VariableContainer::hasVariable(QString &name)
{
    return variables.contains(name);
}

QList<QString> VariableContainer::getValiableList()
{
    return variables.keys();
}

void VariableContainer::addTable(VariableContainer::TableItem item)
{
    tables.insert(item.name, item);
}

QList<QString> VariableContainer::getTableList()
{
    return tables.keys();
}

QVariant VariableContainer::getValue(QString table, int row, int column)
{
    const auto t = tables.constFind(table);
    if (t == tables.cend())
        return QVariant();
    const auto r = t->cells.constFind(row);
    if (r == t->cells.cend())
        return QVariant();
    return r->value(column);
}

void VariableContainer::setValue(QString table, int row, int column, QVariant value)
{
    tables[table].cells[row][column] = value;
}
