#include "ui/printing.h"

#include <QDialog>
#include <QPrintDialog>
#include <QPrinter>
#include <QStandardItemModel>
#include <QTextDocument>

Printing::Printing(QObject *parent)
    : QObject(parent)
    , tableTemplate(QStringLiteral("<table width=\"100%\" border=0 cellspacing=5>\n%1\n</table>"))
    , cellTemplate(QStringLiteral("<td>%1</td>"))
    , rowTemplate(QStringLiteral("<tr>%1</tr>"))
{
}

void Printing::setModel(QStandardItemModel *model)
{
    this->model = model;
}

void Printing::print(QWidget *parent)
{
    QPrinter printer(QPrinter::ScreenResolution);
    QPrintDialog dialog(&printer, parent);
    if (dialog.exec() != QDialog::Accepted)
        return;
    printDocument(&printer);
}

QString Printing::toHtml() const
{
    QString body;
    if (model) {
        const int rows = model->rowCount();
        const int columns = model->columnCount();
        for (int row = 0; row < rows; ++row) {
            QString cells;
            // Through the index rather than item(): a cell without an item
            // simply reads as empty text.
            for (int column = 0; column < columns; ++column)
                cells += cellTemplate.arg(model->index(row, column).data(Qt::DisplayRole).toString());
            body += rowTemplate.arg(cells);
        }
    }
    return tableTemplate.arg(body);
}

void Printing::printDocument(QPrinter *printer) const
{
    if (!printer)
        return;
    QTextDocument document;
    document.setHtml(toHtml());
    document.print(printer);
}
