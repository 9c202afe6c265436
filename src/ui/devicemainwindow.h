#ifndef DEVICEMAINWINDOW_H
#define DEVICEMAINWINDOW_H

#include "muxcore_export.h"

#include "core/core.h"

#include <QDateTime>
#include <QHash>
#include <QMainWindow>
#include <QString>

class QCloseEvent;
class QEvent;
class QModelIndex;
class QProgressBar;
class QStandardItemModel;
class QTimer;

namespace Ui {
class DeviceMainWindow;
}

// The frame every unit's configuration window shares: a tree of pages, the
// page stack, the standard device actions and the window's saved state.
// The window never talks to a unit; each device operation leaves it as a
// signal for the host's device model to carry out.
class MUXCORE_EXPORT DeviceMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    // Data roles of the page tree items besides their text.
    enum PageRole {
        PageIndexRole = Qt::UserRole + 1, // int; -1 for a grouping node without a page
        PagePathRole = Qt::UserRole + 2 // the full dotted path given to addPanel
    };

    explicit DeviceMainWindow(QWidget *parent = nullptr);
    ~DeviceMainWindow() override;

    // Adds a page under a dotted path such as "Interfaces.E1.Port 1". A path
    // that is already in the tree adds nothing; the widget then stays with
    // the caller.
    void addPanel(QString path, QWidget *widget);
    // Removes every page; the page widgets are deleted later.
    void clearPanels();

    // Read-only windows keep their device actions disabled when a transfer ends.
    void setReadOnly(bool on);
    void setInterface(Core::InterfaceProtocolType type);
    // Allows the factory reset on units reached over SNMP.
    void enableSnmpResetToFactory();
    // Whether the refresh timer may ask for the visible page to be refreshed.
    void alowAutoUpdate(bool on);
    void setSwitchVisible(bool visible);
    // Enables or disables the device actions; Exit, Set date time, Reset
    // statistics and the serial connection are left alone.
    void enableActions(bool on);
    bool getSerialState() const;

    static void incCounter();
    // Never goes below zero; returns the new count.
    static quint8 decCounter();
    // Shown configuration windows; the count is eight bits wide and wraps.
    static quint8 getWindowsCount();

public slots:
    // Checks or unchecks the serial connection action; only its toggle follows.
    void serialState(bool on);
    void setProgres(int value);
    // Busy: shows the progress bar and locks the actions until the transfer ends.
    void disableInteractUi(bool busy);
    // Type 0 informs, 1 warns, 2 reports an error; other types show nothing.
    void showMessage(QString text, int type);
    // Shows the window and counts it as open.
    void show();

    void trvRowChanged(const QModelIndex &current, const QModelIndex &previous);
    // Asks the host to refresh the page in view, when this window is active.
    void autoRefreshByTimer();
    void applyChangesEmitted();
    void saveChangesEmitted();

    void on_actionLoad_settings_triggered();
    void on_actionSave_settings_triggered();
    void on_actionTo_factory_triggered();
    void on_actionRestart_triggered();
    void on_actionLoad_last_saved_triggered();
    void on_actionSet_date_time_triggered();
    void on_actionReset_statistics_triggered();
    void on_actionSerial_port_connection_toggled(bool checked);
    void on_actionSwitch_to_Active_triggered();
    void on_actionStatistics_autorefresh_triggered();

signals:
    void reload();
    // Not raised by this class: subclasses offer their own way to write.
    void upload();
    void saveMemory();
    void applyChanges();
    // The flag is true when the unit's network addresses must be kept.
    void toFactory(bool keepAddresses);
    void restartDevice();
    void restoreDevice();
    // The flag is true when the addresses in the file must not be loaded.
    void loadSettingsFile(QString path, bool notLoadAddresses);
    void saveSettingsFile(QString path);
    void closeSignal();
    void setDateTime(QDateTime dateTime);
    void resetStatistics();
    // Read the new state with getSerialState().
    void serialStateChanged();
    void switchToActive();
    // The dotted path of the page in view; empty for a grouping node.
    void sendTreeItemPath(QString path);

protected:
    // Moves the focus to the page in view so that an editor still open
    // elsewhere commits its value before the page is sent.
    void changeWidgetFocus();
    // Runs the refresh timer only when asked to and auto refresh is on.
    void startStopTimer(bool start);
    void closeEvent(QCloseEvent *event) override;
    bool event(QEvent *event) override;

    Ui::DeviceMainWindow *ui;
    QProgressBar *progressBar;
    QStandardItemModel *model;
    QHash<int, QWidget *> panels;
    int panelCount;
    bool readOnly;
    QString fileExtension;
    Core::InterfaceProtocolType interfaceType;
    bool snmpResetToFactory;
    QString settingsApplication;
    QString settingsOrganization;
    QString settingsGroup;
    QTimer *refreshTimer;
    bool autoUpdate;

private:
    static quint8 windowCounter;
};

#endif // DEVICEMAINWINDOW_H
