#ifndef VARIABLECONTAINER_H
#define VARIABLECONTAINER_H

#include "muxcore_export.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QVariant>

// Named values and named tables of values for a device model. Table rows
// and columns are keys, not positions: any int, and tables may be sparse.
class MUXCORE_EXPORT VariableContainer
{
public:
    struct TableItem
    {
        QString name;
        // Row number to (column number to value).
        QHash<int, QHash<int, QVariant>> cells;
        // Kept for the device model; the container only copies them.
        QHash<QString, int> firstNameIndex;
        QHash<QString, int> secondNameIndex;
    };

    VariableContainer();

    // Inserts or replaces.
    void setValue(QString name, QVariant value);
    // Invalid when there is no such variable.
    QVariant getValue(QString name);
    bool hasVariable(QString &name);
    QList<QString> getValiableList();

    // Replaces a table of the same name whole.
    void addTable(VariableContainer::TableItem item);
    QList<QString> getTableList();
    // Invalid when the table, row or column is missing; a read never inserts.
    QVariant getValue(QString table, int row, int column);
    // Creates the table (with an empty name field), row and cell as needed.
    void setValue(QString table, int row, int column, QVariant value);

private:
    QHash<QString, QVariant> variables;
    QHash<QString, VariableContainer::TableItem> tables;
};

#endif // VARIABLECONTAINER_H
