#include "ui/trapvisual.h"

#include <QBrush>
#include <QColor>
#include <QDateTime>
#include <QSortFilterProxyModel>
#include <QStandardItem>
#include <QStandardItemModel>

namespace {

// An invalid colour leaves the view's own background.
QColor alarmBackground(quint8 alarm)
{
    switch (alarm) {
    case 0:
        return QColor(Qt::transparent);
    case 1:
    case 3:
        return QColor(254, 115, 107);
    case 2:
        return QColor(213, 213, 0);
    case 4:
        return QColor(100, 100, 100);
    default:
        return QColor();
    }
}

} // namespace

TrapVisual::TrapVisual(QObject *parent)
    : QObject(parent)
    , model(new QStandardItemModel(this))
    , proxy(new QSortFilterProxyModel(this))
{
    // Traps often reach the list through queued connections.
    qRegisterMetaType<TrapVisualUnit>("TrapVisualUnit");
    headerLabels << tr("Time") << tr("Device") << tr("Information");
    model->setHorizontalHeaderLabels(headerLabels);
    proxy->setSourceModel(model);
    proxy->setFilterKeyColumn(0);
}

QList<QStandardItem *> TrapVisual::makeTrapRow(TrapVisualUnit unit)
{
    auto *device = new QStandardItem(unit.deviceName);
    device->setData(QVariant::fromValue<quint64>(unit.identifier), IdentifierRole);
    device->setData(int(unit.alarm), AlarmRole);

    auto *time = new QStandardItem;
    const QDateTime now = QDateTime::currentDateTime();
    time->setData(now, IdentifierRole);
    time->setData(now, Qt::DisplayRole);

    QString text;
    for (auto it = unit.variables.cbegin(); it != unit.variables.cend(); ++it)
        text += QStringLiteral("%1:%2:%3;   ").arg(unit.prefix, it.key(), it.value().toString());
    auto *information = new QStandardItem(text);

    const QList<QStandardItem *> row {time, device, information};
    if (colors) {
        const QColor background = alarmBackground(unit.alarm);
        if (background.isValid()) {
            for (QStandardItem *item : row)
                item->setBackground(background);
        }
    }
    return row;
}

QString TrapVisual::getFilter()
{
    return filter;
}

QSortFilterProxyModel *TrapVisual::getModel()
{
    return proxy;
}

bool TrapVisual::isColorsShown()
{
    return colors;
}

bool TrapVisual::isTrapsOverlap()
{
    return overlap;
}

int TrapVisual::maximumRows() const
{
    return maxRows;
}

void TrapVisual::setTrap(TrapVisualUnit unit)
{
    if (overlap)
        return;
    model->appendRow(makeTrapRow(unit));
    dropOldestRows();
}

void TrapVisual::clear()
{
    model->clear();
    model->setHorizontalHeaderLabels(headerLabels);
}

void TrapVisual::setFilter(QString filter)
{
    this->filter = filter;
    proxy->setFilterRegularExpression(filter);
}

void TrapVisual::showColors(bool show)
{
    colors = show;
}

void TrapVisual::trapsOverlap(bool overlap)
{
    this->overlap = overlap;
}

void TrapVisual::setMaximumRows(int count)
{
    maxRows = qMax(0, count);
    dropOldestRows();
}

void TrapVisual::dropOldestRows()
{
    // Rows are appended at the bottom of the source model, so the oldest are on top.
    const int surplus = maxRows > 0 ? model->rowCount() - maxRows : 0;
    if (surplus > 0)
        model->removeRows(0, surplus);
}
