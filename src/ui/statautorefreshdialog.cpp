#include "statautorefreshdialog.h"
#include "ui_statautorefreshdialog.h"

StatAutoRefreshDialog::StatAutoRefreshDialog(QWidget *parent)
    : QDialog(parent)
    , ui(new Ui::StatAutoRefreshDialog)
{
    ui->setupUi(this);
    setWindowFlags(Qt::Dialog | Qt::WindowCloseButtonHint);
}

StatAutoRefreshDialog::~StatAutoRefreshDialog()
{
    delete ui;
}

void StatAutoRefreshDialog::setPeriod(int seconds)
{
    ui->sbxPeriod->setValue(seconds);
}

int StatAutoRefreshDialog::getPeriod() const
{
    return ui->sbxPeriod->value();
}
