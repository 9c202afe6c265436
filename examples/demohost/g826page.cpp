#include "g826page.h"

#include "demounit.h"

#include <memory/tg826.h>

#include <QHeaderView>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

G826Page::G826Page(DemoUnit *unit, QWidget *parent)
    : QWidget(parent)
    , unit(unit)
    , model(new QStandardItemModel(0, 10, this))
    , tvwCounters(new QTableView(this))
{
    tvwCounters->setObjectName(QStringLiteral("tvwCounters"));
    model->setHorizontalHeaderLabels(
        {tr("EB\nCRC-4"), tr("ES\nCRC-4"), tr("SES\nCRC-4"), tr("AvT\nCRC-4"), tr("UnavT\nCRC-4"),
            tr("EB\nE-bit"), tr("ES\nE-bit"), tr("SES\nE-bit"), tr("AvT\nE-bit"), tr("UnavT\nE-bit")});
    for (int port = 0; port < UnitLayout::portCount; ++port) {
        QList<QStandardItem *> row;
        for (int column = 0; column < 10; ++column) {
            auto *cell = new QStandardItem;
            cell->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            cell->setEditable(false);
            row << cell;
        }
        model->appendRow(row);
        model->setHeaderData(port, Qt::Vertical, tr("Port %1").arg(port + 1));
    }
    tvwCounters->setModel(model);
    tvwCounters->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    tvwCounters->setEditTriggers(QAbstractItemView::NoEditTriggers);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tvwCounters);
    updateData();
}

namespace {

// The ten counter families in the order of the table's columns.
unsigned int counter(Tg826 *g, int family, unsigned char port)
{
    switch (family) {
    case 0:
        return g->EBCrc4(port);
    case 1:
        return g->ESCrc4(port);
    case 2:
        return g->SESCrc4(port);
    case 3:
        return g->AvTCrc4(port);
    case 4:
        return g->UnavTCrc4(port);
    case 5:
        return g->EBEbit(port);
    case 6:
        return g->ESEbit(port);
    case 7:
        return g->SESEbit(port);
    case 8:
        return g->AvTEbit(port);
    default:
        return g->UnavTEbit(port);
    }
}

} // namespace

void G826Page::updateData()
{
    Tg826 *g = unit->g826();
    for (int port = 0; port < UnitLayout::portCount; ++port) {
        for (int column = 0; column < 10; ++column) {
            const unsigned int value = counter(g, column, static_cast<unsigned char>(port));
            model->item(port, column)->setData(value, Qt::DisplayRole);
        }
    }
}
