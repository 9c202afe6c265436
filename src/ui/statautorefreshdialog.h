#ifndef STATAUTOREFRESHDIALOG_H
#define STATAUTOREFRESHDIALOG_H

#include "muxcore_export.h"

#include <QDialog>

namespace Ui {
class StatAutoRefreshDialog;
}

/// Asks for the statistics refresh period, 1 to 120 seconds.
class MUXCORE_EXPORT StatAutoRefreshDialog : public QDialog
{
    Q_OBJECT
public:
    /// A dialog with the period at 1 second.
    explicit StatAutoRefreshDialog(QWidget *parent = nullptr);
    /// Frees the form.
    ~StatAutoRefreshDialog() override;

    /// Sets the period in seconds; values outside 1 to 120 are clamped.
    void setPeriod(int seconds);
    /// The period in seconds, 1 to 120.
    int getPeriod() const;

private:
    Ui::StatAutoRefreshDialog *ui;
};

#endif // STATAUTOREFRESHDIALOG_H
