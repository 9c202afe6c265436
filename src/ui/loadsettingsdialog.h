#ifndef LOADSETTINGSDIALOG_H
#define LOADSETTINGSDIALOG_H

#include "muxcore_export.h"

#include <QDialog>
#include <QString>

namespace Ui {
class LoadSettingsDialog;
}

// Asks for a device settings file to load and whether its addresses are skipped.
class MUXCORE_EXPORT LoadSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    explicit LoadSettingsDialog(QWidget *parent = nullptr);
    ~LoadSettingsDialog() override;

    void setPath(const QString &path);
    QString getPath() const;
    // Extension without the dot; the file chooser offers only such files.
    void setFileExtension(const QString &extension);
    void setNotLoadAddresses(bool on);
    bool getNotLoadAddresses() const;

private slots:
    void on_tbtLoad_clicked();

private:
    Ui::LoadSettingsDialog *ui;
    QString fileExtension;
};

#endif // LOADSETTINGSDIALOG_H
