#ifndef DATETIMEDIALOG_H
#define DATETIMEDIALOG_H

#include "muxcore_export.h"

#include <QDateTime>
#include <QDialog>

namespace Ui {
class DatetimeDialog;
}

/// Asks for the date and time to set on a unit's clock (DeviceMainWindow's "Set date time").
class MUXCORE_EXPORT DatetimeDialog : public QDialog
{
    Q_OBJECT
public:
    /// A dialog whose editor starts at the current local time.
    explicit DatetimeDialog(QWidget *parent = nullptr);
    /// Frees the form.
    ~DatetimeDialog() override;

    /// The editor's last value; the moment the dialog opened until edited.
    QDateTime dateTime() const;

private slots:
    void on_dateTimeEdit_dateTimeChanged(QDateTime dateTime);

private:
    Ui::DatetimeDialog *ui;
    QDateTime value;
};

#endif // DATETIMEDIALOG_H
