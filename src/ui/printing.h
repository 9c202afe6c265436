#ifndef PRINTING_H
#define PRINTING_H

#include "muxcore_export.h"

#include <QObject>
#include <QPointer>
#include <QString>

class QPrinter;
class QStandardItemModel;
class QWidget;

/**
 * Prints a table model as a plain HTML table through the print dialog.
 *
 * Typical use: the trap list or a statistics table of a configuration page.
 */
class MUXCORE_EXPORT Printing : public QObject
{
    Q_OBJECT
public:
    /// Without a model, which prints an empty table.
    explicit Printing(QObject *parent = nullptr);

    /// Sets the model to print; not owned, and a model deleted meanwhile prints as an empty table.
    void setModel(QStandardItemModel *model);
    /// Shows the print dialog over @p parent and prints only if the user accepts it.
    void print(QWidget *parent);

    /// The document that print() sends to the printer: every cell's display
    /// text in a row-by-row table, inserted as markup, without the headers.
    QString toHtml() const;

private:
    void printDocument(QPrinter *printer) const;

    QPointer<QStandardItemModel> model;
    QString tableTemplate;
    QString cellTemplate;
    QString rowTemplate;
};

#endif // PRINTING_H
