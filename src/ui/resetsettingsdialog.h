#ifndef RESETSETTINGSDIALOG_H
#define RESETSETTINGSDIALOG_H

#include "muxcore_export.h"

#include <QDialog>

namespace Ui {
class ResetSettingsDialog;
}

// Confirms a factory reset and asks whether network addresses are kept.
class MUXCORE_EXPORT ResetSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    explicit ResetSettingsDialog(QWidget *parent = nullptr);
    ~ResetSettingsDialog() override;

    void setNotResetAddresses(bool on);
    bool getNotResetAddresses() const;

private:
    Ui::ResetSettingsDialog *ui;
};

#endif // RESETSETTINGSDIALOG_H
