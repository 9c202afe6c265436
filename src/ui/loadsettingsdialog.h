#ifndef LOADSETTINGSDIALOG_H
#define LOADSETTINGSDIALOG_H

#include "muxcore_export.h"

#include <QDialog>
#include <QString>

namespace Ui {
class LoadSettingsDialog;
}

/// Asks for a device settings file to load and whether its addresses are skipped.
class MUXCORE_EXPORT LoadSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    /// An empty path, addresses loaded.
    explicit LoadSettingsDialog(QWidget *parent = nullptr);
    /// Frees the form.
    ~LoadSettingsDialog() override;

    /// Sets the path shown, where the file chooser also starts.
    void setPath(const QString &path);
    /// The path shown or chosen.
    QString getPath() const;
    /// Extension without the dot; the file chooser offers only such files.
    void setFileExtension(const QString &extension);
    /// Sets the "Do not load addresses" check box.
    void setNotLoadAddresses(bool on);
    /// Whether the addresses in the file must not be loaded.
    bool getNotLoadAddresses() const;

private slots:
    void on_tbtLoad_clicked();

private:
    Ui::LoadSettingsDialog *ui;
    QString fileExtension;
};

#endif // LOADSETTINGSDIALOG_H
