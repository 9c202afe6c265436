#ifndef STATAUTOREFRESHDIALOG_H
#define STATAUTOREFRESHDIALOG_H

#include "muxcore_export.h"

#include <QDialog>

namespace Ui {
class StatAutoRefreshDialog;
}

// Asks for the statistics refresh period, 1 to 120 seconds.
class MUXCORE_EXPORT StatAutoRefreshDialog : public QDialog
{
    Q_OBJECT
public:
    explicit StatAutoRefreshDialog(QWidget *parent = nullptr);
    ~StatAutoRefreshDialog() override;

    // Values outside 1 to 120 are clamped.
    void setPeriod(int seconds);
    int getPeriod() const;

private:
    Ui::StatAutoRefreshDialog *ui;
};

#endif // STATAUTOREFRESHDIALOG_H
