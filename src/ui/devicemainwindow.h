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

/**
 * The frame every unit's configuration window shares: a tree of pages, the
 * page stack, the standard device actions and the window's saved state.
 *
 * The window never talks to a unit; each device operation leaves it as a
 * signal for the host's device model to carry out (reload(), saveMemory(),
 * applyChanges(), ...). The host creates one window per unit, adds its pages
 * with addPanel() and drives it with setInterface(), setReadOnly(),
 * enableActions(), disableInteractUi(), setProgres() and showMessage().
 *
 * Geometry, state and user choices (last settings path, refresh period) are
 * kept in the platform settings store under organisation "Core",
 * application "DLL", group "DeviceWindowState". A page widget that has a slot
 * updateData() is refreshed when it comes into view and by the auto-refresh
 * timer (1 to 120 s) while the window is active.
 */
class MUXCORE_EXPORT DeviceMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    /// Data roles of the page tree items besides their text.
    enum PageRole {
        PageIndexRole = Qt::UserRole + 1, ///< int; -1 for a grouping node without a page.
        PagePathRole = Qt::UserRole + 2 ///< The full dotted path given to addPanel().
    };

    /// An empty window, hidden until show(); serial interface, all device actions enabled.
    explicit DeviceMainWindow(QWidget *parent = nullptr);
    /// Stops the timer and counts the window as closed (not below zero).
    ~DeviceMainWindow() override;

    /**
     * Adds a page under a dotted path such as "Interfaces.E1.Port 1" and takes the widget over.
     *
     * A path that is already in the tree adds nothing; the widget then stays
     * with the caller.
     */
    void addPanel(QString path, QWidget *widget);
    /// Removes every page; the page widgets are deleted later.
    void clearPanels();

    /// Read-only windows keep their device actions disabled when a transfer ends.
    void setReadOnly(bool on);
    /// Sets how the unit is reached; "Serial port connection" shows only for #Core::IPT_SERIAL.
    void setInterface(Core::InterfaceProtocolType type);
    /// Allows the factory reset on units reached over SNMP.
    void enableSnmpResetToFactory();
    /// Whether the refresh timer may ask for the visible page to be refreshed.
    void alowAutoUpdate(bool on);
    /// Shows or hides "Switch to Active", for units of a redundant pair.
    void setSwitchVisible(bool visible);
    /// Enables or disables the device actions; Exit, Set date time, Reset
    /// statistics and the serial connection are left alone.
    void enableActions(bool on);
    /// Whether "Serial port connection" is checked.
    bool getSerialState() const;

    /// Counts one more open configuration window.
    static void incCounter();
    /// Counts one fewer; never goes below zero; returns the new count.
    static quint8 decCounter();
    /// Shown configuration windows; the count is eight bits wide and wraps.
    static quint8 getWindowsCount();

public slots:
    /// Checks or unchecks the serial connection action; only its toggle follows.
    void serialState(bool on);
    /// Sets the progress bar's value (shown while disableInteractUi(true) is in force).
    void setProgres(int value);
    /// Busy: shows the progress bar and locks the actions until the transfer ends.
    void disableInteractUi(bool busy);
    /// Shows a message box: type 0 informs, 1 warns, 2 reports an error; other types show nothing.
    void showMessage(QString text, int type);
    /// Shows the window and counts it as open.
    void show();

    /// Shows the page of the tree's new current row and asks for its refresh.
    void trvRowChanged(const QModelIndex &current, const QModelIndex &previous);
    /// Asks the host to refresh the page in view (sendTreeItemPath()), when this window is active.
    void autoRefreshByTimer();
    /// Commits open editors, then emits applyChanges().
    void applyChangesEmitted();
    /// Commits open editors, then emits saveMemory().
    void saveChangesEmitted();

    /// Asks for a settings file and emits loadSettingsFile().
    void on_actionLoad_settings_triggered();
    /// Asks for a file name and emits saveSettingsFile(), adding the extension when missing.
    void on_actionSave_settings_triggered();
    /// Asks for confirmation and emits toFactory(); over SNMP only after enableSnmpResetToFactory().
    void on_actionTo_factory_triggered();
    /// Asks for confirmation and emits restartDevice().
    void on_actionRestart_triggered();
    /// Asks for confirmation and emits restoreDevice().
    void on_actionLoad_last_saved_triggered();
    /// Asks for the date and time and emits setDateTime().
    void on_actionSet_date_time_triggered();
    /// Emits resetStatistics() without asking.
    void on_actionReset_statistics_triggered();
    /// Emits serialStateChanged().
    void on_actionSerial_port_connection_toggled(bool checked);
    /// Emits switchToActive().
    void on_actionSwitch_to_Active_triggered();
    /// Asks for the refresh period and starts or stops the auto refresh.
    void on_actionStatistics_autorefresh_triggered();

signals:
    /// "Read data": read the unit's configuration and status into the memory maps.
    void reload();
    /// Write the memory maps to the unit. Not raised by this class: subclasses offer their own way to write.
    void upload();
    /// "Save": make the unit store its configuration permanently.
    void saveMemory();
    /// "Apply": send the edited values to the unit and apply them.
    void applyChanges();
    /// "To factory settings", confirmed; the flag is true when the unit's network addresses must be kept.
    void toFactory(bool keepAddresses);
    /// "Restart", confirmed.
    void restartDevice();
    /// "Load last saved", confirmed: the unit returns to its last saved configuration.
    void restoreDevice();
    /// "Load settings": load that file into the unit; the flag is true when its addresses must not be loaded.
    void loadSettingsFile(QString path, bool notLoadAddresses);
    /// "Save settings": save the unit's settings to that file.
    void saveSettingsFile(QString path);
    /// The window was closed; its state is saved already.
    void closeSignal();
    /// "Set date time": set the unit's clock.
    void setDateTime(QDateTime dateTime);
    /// "Reset statistics": clear the unit's error counters.
    void resetStatistics();
    /// "Serial port connection" toggled; read the new state with getSerialState().
    void serialStateChanged();
    /// "Switch to Active": make this unit the active one of a redundant pair.
    void switchToActive();
    /// Refresh the page with this dotted path; empty for a grouping node.
    void sendTreeItemPath(QString path);

protected:
    /// Moves the focus to the page in view so that an editor still open
    /// elsewhere commits its value before the page is sent.
    void changeWidgetFocus();
    /// Runs the refresh timer only when asked to and auto refresh is on.
    void startStopTimer(bool start);
    /// Saves geometry and state, counts the window as closed and emits closeSignal().
    void closeEvent(QCloseEvent *event) override;
    /// Runs the refresh timer only while the window is active.
    bool event(QEvent *event) override;

    Ui::DeviceMainWindow *ui; ///< The form.
    QProgressBar *progressBar; ///< In the status bar, shown while busy.
    QStandardItemModel *model; ///< The page tree.
    QHash<int, QWidget *> panels; ///< Page widgets by page index.
    int panelCount; ///< The next page index.
    bool readOnly; ///< See setReadOnly().
    QString fileExtension; ///< Extension of settings files, "dvsf".
    Core::InterfaceProtocolType interfaceType; ///< See setInterface().
    bool snmpResetToFactory; ///< See enableSnmpResetToFactory().
    QString settingsApplication; ///< Settings store application, "DLL".
    QString settingsOrganization; ///< Settings store organisation, "Core".
    QString settingsGroup; ///< Settings store group, "DeviceWindowState".
    QTimer *refreshTimer; ///< The auto-refresh timer.
    bool autoUpdate; ///< See alowAutoUpdate().

private:
    static quint8 windowCounter;
};

#endif // DEVICEMAINWINDOW_H
