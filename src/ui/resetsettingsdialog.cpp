#include "resetsettingsdialog.h"
#include "ui_resetsettingsdialog.h"

ResetSettingsDialog::ResetSettingsDialog(QWidget *parent)
    : QDialog(parent)
    , ui(new Ui::ResetSettingsDialog)
{
    ui->setupUi(this);
}

ResetSettingsDialog::~ResetSettingsDialog()
{
    delete ui;
}

void ResetSettingsDialog::setNotResetAddresses(bool on)
{
    ui->chbNotReset->setChecked(on);
}

bool ResetSettingsDialog::getNotResetAddresses() const
{
    return ui->chbNotReset->isChecked();
}
