#ifndef G826PAGE_H
#define G826PAGE_H

#include <QWidget>

class DemoUnit;
class QStandardItemModel;
class QTableView;

// The G.826 error-performance counters of the four ports as a table.
class G826Page : public QWidget
{
    Q_OBJECT
public:
    explicit G826Page(DemoUnit *unit, QWidget *parent = nullptr);

    QStandardItemModel *tableModel() const { return model; }

public slots:
    void updateData();

private:
    DemoUnit *unit;
    QStandardItemModel *model;
    QTableView *tvwCounters;
};

#endif // G826PAGE_H
