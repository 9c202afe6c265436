#ifndef RESETSETTINGSDIALOG_H
#define RESETSETTINGSDIALOG_H

#include "muxcore_export.h"

#include <QDialog>

namespace Ui {
class ResetSettingsDialog;
}

/// Confirms a factory reset and asks whether network addresses are kept.
class MUXCORE_EXPORT ResetSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    /// The question with its check box cleared.
    explicit ResetSettingsDialog(QWidget *parent = nullptr);
    /// Frees the form.
    ~ResetSettingsDialog() override;

    /// Sets the "Do not reset all network addresses" check box.
    void setNotResetAddresses(bool on);
    /// Whether the network addresses must be kept.
    bool getNotResetAddresses() const;

private:
    Ui::ResetSettingsDialog *ui;
};

#endif // RESETSETTINGSDIALOG_H
