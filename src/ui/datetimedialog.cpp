#include "datetimedialog.h"
#include "ui_datetimedialog.h"

DatetimeDialog::DatetimeDialog(QWidget *parent)
    : QDialog(parent)
    , ui(new Ui::DatetimeDialog)
{
    ui->setupUi(this);
    setWindowFlags(Qt::Dialog | Qt::WindowCloseButtonHint);
    // Set after the form has connected the editor, so the value starts as now.
    ui->dateTimeEdit->setDateTime(QDateTime::currentDateTime());
}

DatetimeDialog::~DatetimeDialog()
{
    delete ui;
}

QDateTime DatetimeDialog::dateTime() const
{
    return value;
}

void DatetimeDialog::on_dateTimeEdit_dateTimeChanged(QDateTime dateTime)
{
    value = dateTime;
}
