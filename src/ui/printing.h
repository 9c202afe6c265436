#ifndef PRINTING_H
#define PRINTING_H

#include "muxcore_export.h"

#include <QObject>
#include <QPointer>
#include <QString>

class QPrinter;
class QStandardItemModel;
class QWidget;

// Prints a table model as a plain HTML table through the print dialog.
class MUXCORE_EXPORT Printing : public QObject
{
    Q_OBJECT
public:
    explicit Printing(QObject *parent = nullptr);

    // Not owned; a model deleted meanwhile prints as an empty table.
    void setModel(QStandardItemModel *model);
    // Shows the print dialog and prints only if the user accepts it.
    void print(QWidget *parent);

    // The document that print() sends to the printer: every cell's display
    // text in a row-by-row table, inserted as markup, without the headers.
    QString toHtml() const;

private:
    void printDocument(QPrinter *printer) const;

    QPointer<QStandardItemModel> model;
    QString tableTemplate;
    QString cellTemplate;
    QString rowTemplate;
};

#endif // PRINTING_H
