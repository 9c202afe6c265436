#ifndef VARIABLECONTAINER_H
#define VARIABLECONTAINER_H

#include "muxcore_export.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QVariant>

/**
 * Named values and named tables of values for a device model.
 *
 * Table rows and columns are keys, not positions: any int, and tables may be
 * sparse. Reads never insert.
 */
class MUXCORE_EXPORT VariableContainer
{
public:
    /// One table, copied by value.
    struct TableItem
    {
        /// The table's name; addTable() stores it under this.
        QString name;
        /// Row number to (column number to value).
        QHash<int, QHash<int, QVariant>> cells;
        /// Kept for the device model; the container only copies it.
        QHash<QString, int> firstNameIndex;
        /// Kept for the device model, as the first.
        QHash<QString, int> secondNameIndex;
    };

    /// An empty container.
    VariableContainer();

    /// Stores a variable, inserting or replacing it.
    void setValue(QString name, QVariant value);
    /// A variable's value; invalid when there is no such variable.
    QVariant getValue(QString name);
    /// Whether a variable of that name exists.
    bool hasVariable(QString &name);
    /// The names of all variables, in no particular order.
    QList<QString> getValiableList();

    /// Stores a copy of a table under its name, replacing a table of the same name whole.
    void addTable(VariableContainer::TableItem item);
    /// The names of all tables, in no particular order.
    QList<QString> getTableList();
    /// A cell's value; invalid when the table, row or column is missing.
    QVariant getValue(QString table, int row, int column);
    /// Stores a cell, creating the table (with an empty name field), row and cell as needed.
    void setValue(QString table, int row, int column, QVariant value);

private:
    QHash<QString, QVariant> variables;
    QHash<QString, VariableContainer::TableItem> tables;
};

#endif // VARIABLECONTAINER_H
