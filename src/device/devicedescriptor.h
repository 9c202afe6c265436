#ifndef DEVICEDESCRIPTOR_H
#define DEVICEDESCRIPTOR_H

#include "muxcore_export.h"

#include "core/core.h"

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>

class ConfigMemoryMap;
class ConnectMemoryMap;
class DeviceMainWindow;
class StatusMemoryMap;
class QWidget;

/**
 * One managed unit: identity, parameters, interface settings, password and
 * the request cycle.
 *
 * A host derives one class per device model and creates an instance per
 * unit, then hands it to Map::addItem(), which relays its signals under the
 * unit's key and deletes it (deleteLater()) when the unit is removed. The
 * descriptor owns its four memory maps for its whole life.
 *
 * Request cycle: the model writes the request into getRequestData() and
 * emits newRequest(); the host's transport sends the bytes and passes the
 * reply to Map::answer() (or a failure to Map::replyError()); the map then
 * invokes setData() (or setError()) by name, queued. The model decodes the
 * reply into its memory maps and emits statusUpdated(), alarmStateChanged() or
 * frontPanelChanged() as the case may be.
 *
 * The order of the virtual functions is part of the interface device models
 * build on.
 */
class MUXCORE_EXPORT DeviceDescriptor : public QObject
{
    Q_OBJECT
public:
    /**
     * Keys of the parameter table. Values 3 to 7 belong to the device models
     * and carry no names here (4 to 7 default to "0", 3 has no entry).
     */
    enum DeviceParameter {
        DP_NAME = 0, ///< Name shown in the map tree (QString, default "No Name").
        DP_TYPE = 1, ///< Model name (QString, default "No type").
        DP_ADDRESS = 2, ///< Address the map finds the unit by (QString, default empty).
        DP_DESCRIPTION = 8, ///< Free description (QString, default "No Description").
        DP_ICON = 9 ///< Icon in the map tree (QIcon, default ":/images/no_icon.png").
    };

    /// Creates the four memory maps and fills the parameter defaults.
    explicit DeviceDescriptor(QObject *parent = nullptr);
    /// Deletes the memory maps.
    ~DeviceDescriptor() override;

    /// Stores the level; emits alarmStateChanged() only when it really changes.
    virtual void setAlarmState(Core::AlarmType alarm);
    /// The unit's current alarm level; #Core::ALARM_OK at first.
    virtual Core::AlarmType getAlarmState();
    /// A copy of a parameter; an invalid QVariant for one never set, and no entry is created.
    virtual QVariant getParameter(DeviceParameter parameter);
    /// Inserts or replaces a parameter; emits nothing.
    virtual void setParameter(DeviceParameter parameter, QVariant value);
    /// Stores the widget dialogs of the model may use as parent; not owned.
    virtual void setParentWidget(QWidget *widget);
    /// Creates or raises the unit's configuration window.
    virtual void showUi() = 0;
    /// The unit's front-panel description as it is now; the map reads it on frontPanelChanged().
    virtual QString getFrontPanel() = 0;
    /// Closes the unit's configuration window.
    virtual void closeUi() = 0;
    /// The protocol the unit is reached over now; #Core::IPT_SERIAL at first.
    virtual Core::InterfaceProtocolType getCurrentProtocolType();
    /// Sets the protocol the unit is reached over; emits nothing.
    virtual void setCurrentProtocolType(Core::InterfaceProtocolType type);
    /**
     * Stores the settings text of one protocol, replacing any earlier one.
     *
     * The text is opaque here: whoever opens the connection reads it. Emits
     * nothing; the model emits interfSettingsChanged() when the map should hear of it.
     */
    virtual void setInterfaceSettings(Core::InterfaceProtocolType type, QString settings);
    /// The settings text of a protocol; empty when nothing is stored for it.
    virtual QString getInterfaceSettings(Core::InterfaceProtocolType type);
    /// The next request's bytes: the model writes them here before emitting newRequest().
    virtual QByteArray &getRequestData();
    /// The text of the last system message, set before systemMessage() is emitted.
    virtual QString getSystemMessage();
    /// Sets the numeric model code Map::containsWithName() matches.
    virtual void setDeviceTypeCode(unsigned int code);
    /// Whether the unit's serial connection is open; the map reads it on serialState().
    virtual bool getSerialState() = 0;
    /// Opens or closes the unit's serial connection; called by Map::setSerialState().
    virtual void setSerialState(bool state) = 0;
    /// The command that restores factory settings; empty when the model has none.
    virtual QByteArray cmdFactoryCode();
    /// Shows the progress of a long exchange, @p value of @p maximum steps; does nothing here.
    virtual void showProgress(int value, int maximum);
    /// Sets the label of the running progress.
    virtual void setProgressName(QString name);
    /// Shows the unit's front panel; does nothing here.
    virtual void showFrontPanel();
    /// True while a request is outstanding; the model sets it, the base class never does.
    virtual bool requestInProgress();
    /// Clears the request-in-progress flag.
    virtual void stopRequestProgress();
    /**
     * Applies an access mode to the configuration window: only #Core::ACM_READ
     * makes it read-only and disables its actions.
     *
     * Over the web the unit's own pages decide, so the window is left alone.
     * The window must be set before.
     */
    virtual void setPermission(Core::AccessMode mode);
    /// Whether identify() can make the unit show itself; true here.
    virtual bool canBeIdentified();
    /// Stores the password as it is and returns true; a model may transform it or refuse it by returning
    /// false.
    virtual bool setPassword(QString password);
    /// Sets the SNMP base object identifier under which the model's variables lie.
    virtual void setBaseRootOid(QString oid);

    /**
     * Makes sure a usable password is set, asking the user when the firmware needs one.
     *
     * With an empty password and a firmware version that needs one, a
     * password dialog opens over the configuration window. The password is
     * then passed to setPassword(). On false, getAutorisationResult() tells
     * why: 3 refused (the password is cleared), 4 cancelled.
     */
    bool autorise();
    /**
     * Stores and returns whether this firmware version needs a password.
     *
     * An exact entry of the exempt versions needs none; otherwise the first
     * required entry with the same major and a minor not above the version's decides.
     */
    bool checkForNeedAutorisation(unsigned short version);
    /// The last answer of checkForNeedAutorisation(); false before it ran.
    bool needAutorisation() const;
    /// Result of the last autorise(): 0 accepted, 3 refused, 4 cancelled.
    int getAutorisationResult() const;

    /// The stored password.
    QString getPassword() const;
    /// The same stored password: no encoding is applied at this level.
    QString getPasswordEnc() const;
    /// Stores the password as it is; always true.
    bool setPasswordEnc(QString password);
    /// The numeric model code; 0 until set.
    unsigned int getDeviceTypeCode() const;
    /// The SNMP base object identifier; empty until the model sets it.
    QString getBaseRootOid() const;

    /// Emits newEvent() for @p event with the text "name:address" of the unit.
    void emitAddEvent(Core::SystemEvens event);

    /// The first configuration memory map; owned by the descriptor, never null.
    ConfigMemoryMap *getConfigMap() const;
    /// The second configuration memory map (for example the stored image); owned, never null.
    ConfigMemoryMap *getSecondConfigMap() const;
    /// The status memory map; owned, never null.
    StatusMemoryMap *getStatusMap() const;
    /// The connection memory map; owned, never null.
    ConnectMemoryMap *getConnectMap() const;

    /// Splits a packed firmware version: major from the high byte, minor from the low one.
    static void splitVersion(const unsigned short &version, unsigned char &major, unsigned char &minor);
    /// Splits a 24-bit version into bits 16-23, 8-15 and 0-7; bits 24 to 31 are dropped.
    static void splitVersion(
        const unsigned int &version, unsigned char &high, unsigned char &middle, unsigned char &low);

signals:
    /// A request waits in getRequestData(); the map relays it as Map::request().
    void newRequest();
    /// Bytes for the host's transport; the map does not relay it.
    void send(QByteArray data);
    /// getSystemMessage() has a new text.
    void systemMessage();
    /// getFrontPanel() has changed.
    void frontPanelChanged();
    /// An error text for the user; the map does not relay it.
    void errorMessage(QString text);
    /// setAlarmState() changed the level.
    void alarmStateChanged();
    /// One status poll is over, also when it failed; drives the map's scan.
    void statusUpdated();
    /// The interface settings were changed.
    void interfSettingsChanged();
    /// The unit's configuration window was closed.
    void uiClosed();
    /// The serial connection was opened or closed; read getSerialState().
    void serialState();
    /// A new address (getNewAddr()) waits for the uniqueness check.
    void checkAddr();
    /// Result of the uniqueness check: true when the proposed address is free.
    void setIP(bool free);
    /// A journal event, for example from emitAddEvent().
    void newEvent(Core::SystemEvens event, QString text);

public slots:
    /// The answer to the outstanding request; invoked by the map, queued.
    virtual void setData(QByteArray data) = 0;
    /// The outstanding request failed; invoked by the map, queued.
    virtual void setError() = 0;
    /// Reads the unit's data.
    virtual void update() = 0;
    /// Reads the unit's status.
    virtual void updateStatus() = 0;
    /// Polls the alarm level; must end with statusUpdated(), also on failure, or the scan stalls.
    virtual void updateAlarmStatus(bool isNeedToEmit = true) = 0;
    /// Sets the unit's clock.
    virtual void setDateTime(QDateTime dateTime) = 0;
    /// Clears the unit's error-performance counters.
    virtual void resetStatistics() = 0;
    /// Makes the unit show itself, for example by blinking.
    virtual void identify() = 0;
    /// Stores the proposed address and emits checkAddr().
    virtual void checkAdr(QString address);
    /// Answer of the uniqueness check, passed on as setIP().
    virtual void setNewIP(bool free);
    /// The address stored by checkAdr().
    virtual QString getNewAddr();

public:
    /**
     * @name Device operations
     * The operations the configuration window asks for, in its order; a host
     * connects the window's signals to these.
     */
    ///@{
    /// Writes the whole configuration to the unit.
    virtual void upload() = 0;
    /// Makes the unit store its running configuration.
    virtual void saveMemory() = 0;
    /// Makes the unit take the written configuration into use.
    virtual void applyChanges() = 0;
    /// Restores factory settings, keeping the unit's addresses when asked.
    virtual void toFactory(bool keepAddresses) = 0;
    /// Called after the user confirmed the restart question.
    virtual void restartDevice() = 0;
    /// Makes the unit return to its last stored configuration.
    virtual void restoreDevice() = 0;
    /// Reads a settings file into the configuration, optionally without addresses.
    virtual void loadSettingsFile(QString path, bool skipAddresses) = 0;
    /// Writes the configuration to a settings file.
    virtual void saveSettingsFile(QString path) = 0;
    /// Makes the standby part of a redundant unit the active one.
    virtual void switchToActive() = 0;
    ///@}

protected:
    /// The unit's configuration window; set by the model before autorise() or setPermission() run.
    DeviceMainWindow *window = nullptr;
    /// 0 accepted, 3 refused, 4 cancelled; a setPassword() override may set it.
    int autorisationResult = 0;
    /// Set by setParentWidget(); not owned.
    QWidget *parentWidget = nullptr;
    /// See getAlarmState().
    Core::AlarmType alarmState = Core::ALARM_OK;
    /// See getCurrentProtocolType().
    Core::InterfaceProtocolType currentProtocol = Core::IPT_SERIAL;
    /// See getRequestData().
    QByteArray requestData;
    /// See getParameter().
    QHash<DeviceParameter, QVariant> parameters;
    /// See getInterfaceSettings().
    QHash<Core::InterfaceProtocolType, QString> interfaceSettings;
    /// Packed major and minor, set by the model; what autorise() checks.
    unsigned short firmwareVersion = 0;
    /// Set before emitting systemMessage().
    QString systemMessageText;
    /// See setProgressName().
    QString progressName;
    /// See getConfigMap().
    ConfigMemoryMap *configMap = nullptr;
    /// See getSecondConfigMap().
    ConfigMemoryMap *secondConfigMap = nullptr;
    /// See getStatusMap().
    StatusMemoryMap *statusMap = nullptr;
    /// See getConnectMap().
    ConnectMemoryMap *connectMap = nullptr;
    /// See getBaseRootOid().
    QString baseRootOid;
    /// See getDeviceTypeCode().
    unsigned int deviceTypeCode = 0;
    /// Set by the model when a request leaves, cleared by stopRequestProgress().
    bool requestPending = false;
    /// See getNewAddr().
    QString newAddress;
    /// See needAutorisation().
    bool needAuth = false;
    /// See getPassword().
    QString password;
    /// A version needs a password from an entry's minor upwards within its major.
    QList<unsigned short> authRequiredVersions;
    /// Exact versions that never need one, whatever the thresholds say.
    QList<unsigned short> authExemptVersions;
};

#endif // DEVICEDESCRIPTOR_H
