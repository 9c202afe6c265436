#include "loadsettingsdialog.h"
#include "ui_loadsettingsdialog.h"

#include <QFileDialog>

LoadSettingsDialog::LoadSettingsDialog(QWidget *parent)
    : QDialog(parent)
    , ui(new Ui::LoadSettingsDialog)
    , fileExtension(QStringLiteral("dvsf"))
{
    ui->setupUi(this);
}

LoadSettingsDialog::~LoadSettingsDialog()
{
    delete ui;
}

void LoadSettingsDialog::setPath(const QString &path)
{
    ui->lePath->setText(path);
}

QString LoadSettingsDialog::getPath() const
{
    return ui->lePath->text();
}

void LoadSettingsDialog::setFileExtension(const QString &extension)
{
    fileExtension = extension;
}

void LoadSettingsDialog::setNotLoadAddresses(bool on)
{
    ui->chbNotLoad->setChecked(on);
}

bool LoadSettingsDialog::getNotLoadAddresses() const
{
    return ui->chbNotLoad->isChecked();
}

void LoadSettingsDialog::on_tbtLoad_clicked()
{
    const QString fileName = QFileDialog::getOpenFileName(
        this, tr("Select file."), ui->lePath->text(), tr("Device settings file(*.%1)").arg(fileExtension));
    if (!fileName.isEmpty())
        ui->lePath->setText(fileName);
}
