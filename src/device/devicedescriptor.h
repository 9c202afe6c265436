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

// One managed unit. A host derives one class per device model and creates an
// instance per unit; the Map relays its signals under the unit's key. The order
// of the virtual functions is part of the interface device models build on.
class MUXCORE_EXPORT DeviceDescriptor : public QObject
{
    Q_OBJECT
public:
    enum DeviceParameter {
        DP_NAME = 0,
        DP_TYPE = 1,
        DP_ADDRESS = 2,
        // 3 to 7 belong to the device models and carry no names here.
        DP_DESCRIPTION = 8,
        DP_ICON = 9
    };

    explicit DeviceDescriptor(QObject *parent = nullptr);
    ~DeviceDescriptor() override;

    // Emits alarmStateChanged() only when the level really changes.
    virtual void setAlarmState(Core::AlarmType alarm);
    virtual Core::AlarmType getAlarmState();
    // An invalid QVariant for a parameter never set; no entry is created.
    virtual QVariant getParameter(DeviceParameter parameter);
    virtual void setParameter(DeviceParameter parameter, QVariant value);
    // Not owned.
    virtual void setParentWidget(QWidget *widget);
    // Creates or raises the unit's configuration window.
    virtual void showUi() = 0;
    // The front-panel description text of the unit as it is now.
    virtual QString getFrontPanel() = 0;
    // Closes the unit's configuration window.
    virtual void closeUi() = 0;
    virtual Core::InterfaceProtocolType getCurrentProtocolType();
    virtual void setCurrentProtocolType(Core::InterfaceProtocolType type);
    // The text is opaque here: whoever opens the connection reads it.
    virtual void setInterfaceSettings(Core::InterfaceProtocolType type, QString settings);
    // Empty when nothing is stored for the protocol.
    virtual QString getInterfaceSettings(Core::InterfaceProtocolType type);
    // The model writes its next request here before emitting newRequest().
    virtual QByteArray &getRequestData();
    virtual QString getSystemMessage();
    virtual void setDeviceTypeCode(unsigned int code);
    // Whether the serial connection of the unit is open.
    virtual bool getSerialState() = 0;
    // Opens or closes the serial connection of the unit.
    virtual void setSerialState(bool state) = 0;
    // The command that restores factory settings; empty when the model has none.
    virtual QByteArray cmdFactoryCode();
    virtual void showProgress(int value, int maximum);
    // The label of the running progress.
    virtual void setProgressName(QString name);
    virtual void showFrontPanel();
    // Set by the model when it starts a request.
    virtual bool requestInProgress();
    virtual void stopRequestProgress();
    // Applies an access mode to the configuration window; over the web the
    // unit's own pages decide, so the window is left alone.
    virtual void setPermission(Core::AccessMode mode);
    virtual bool canBeIdentified();
    // A model may transform the password or refuse it by returning false.
    virtual bool setPassword(QString password);
    virtual void setBaseRootOid(QString oid);

    // Makes sure a usable password is set, asking the user when the firmware
    // needs one. On false, getAutorisationResult() tells why: 3 refused, 4 cancelled.
    bool autorise();
    // Stores and returns whether this firmware version needs a password.
    bool checkForNeedAutorisation(unsigned short version);
    // The last answer of checkForNeedAutorisation(); false before it ran.
    bool needAutorisation() const;
    // 0 accepted, 3 refused, 4 cancelled.
    int getAutorisationResult() const;

    QString getPassword() const;
    QString getPasswordEnc() const;
    bool setPasswordEnc(QString password);
    unsigned int getDeviceTypeCode() const;
    QString getBaseRootOid() const;

    // Journal event with the text "name:address".
    void emitAddEvent(Core::SystemEvens event);

    // The memory areas of the unit, owned by the descriptor.
    ConfigMemoryMap *getConfigMap() const;
    ConfigMemoryMap *getSecondConfigMap() const;
    StatusMemoryMap *getStatusMap() const;
    ConnectMemoryMap *getConnectMap() const;

    // Packed firmware versions: major in the high byte, minor in the low one.
    static void splitVersion(const unsigned short &version, unsigned char &major, unsigned char &minor);
    // Bits 24 to 31 carry nothing and are dropped.
    static void splitVersion(
        const unsigned int &version, unsigned char &high, unsigned char &middle, unsigned char &low);

signals:
    void newRequest();
    // Bytes for the host's transport; the Map does not relay it.
    void send(QByteArray data);
    void systemMessage();
    void frontPanelChanged();
    void errorMessage(QString text);
    void alarmStateChanged();
    // One status poll is over, also when it failed; drives the Map's scan.
    void statusUpdated();
    void interfSettingsChanged();
    void uiClosed();
    void serialState();
    // A new address waits for the uniqueness check.
    void checkAddr();
    // true when the proposed address is free.
    void setIP(bool free);
    void newEvent(Core::SystemEvens event, QString text);

public slots:
    // The answer to the outstanding request.
    virtual void setData(QByteArray data) = 0;
    // The outstanding request failed.
    virtual void setError() = 0;
    // Reads the unit's data.
    virtual void update() = 0;
    // Reads the unit's status.
    virtual void updateStatus() = 0;
    // Polls the alarm level; ends with statusUpdated(), also on failure.
    virtual void updateAlarmStatus(bool isNeedToEmit = true) = 0;
    // Sets the unit's clock.
    virtual void setDateTime(QDateTime dateTime) = 0;
    // Clears the unit's error-performance counters.
    virtual void resetStatistics() = 0;
    // Makes the unit show itself, for example by blinking.
    virtual void identify() = 0;
    // Stores the proposed address and asks for the uniqueness check.
    virtual void checkAdr(QString address);
    // Answer of the uniqueness check, passed on as setIP().
    virtual void setNewIP(bool free);
    virtual QString getNewAddr();

public:
    // The device operations the configuration window asks for, in its order;
    // a host connects the window's signals to these.
    // Writes the whole configuration to the unit.
    virtual void upload() = 0;
    // Makes the unit store its running configuration.
    virtual void saveMemory() = 0;
    // Makes the unit take the written configuration into use.
    virtual void applyChanges() = 0;
    // Restores factory settings, keeping the unit's addresses when asked.
    virtual void toFactory(bool keepAddresses) = 0;
    // Restarts the unit.
    virtual void restartDevice() = 0;
    // Makes the unit return to its last stored configuration.
    virtual void restoreDevice() = 0;
    // Reads a settings file into the configuration, optionally without addresses.
    virtual void loadSettingsFile(QString path, bool skipAddresses) = 0;
    // Writes the configuration to a settings file.
    virtual void saveSettingsFile(QString path) = 0;
    // Makes the standby part of a redundant unit the active one.
    virtual void switchToActive() = 0;

protected:
    // Set by the model before autorise() or setPermission() run.
    DeviceMainWindow *window = nullptr;
    // 0 accepted, 3 refused, 4 cancelled; a setPassword() override may set it.
    int autorisationResult = 0;
    QWidget *parentWidget = nullptr;
    Core::AlarmType alarmState = Core::ALARM_OK;
    Core::InterfaceProtocolType currentProtocol = Core::IPT_SERIAL;
    QByteArray requestData;
    QHash<DeviceParameter, QVariant> parameters;
    QHash<Core::InterfaceProtocolType, QString> interfaceSettings;
    // Packed major and minor; what autorise() checks.
    unsigned short firmwareVersion = 0;
    // Set before emitting systemMessage().
    QString systemMessageText;
    QString progressName;
    ConfigMemoryMap *configMap = nullptr;
    ConfigMemoryMap *secondConfigMap = nullptr;
    StatusMemoryMap *statusMap = nullptr;
    ConnectMemoryMap *connectMap = nullptr;
    QString baseRootOid;
    unsigned int deviceTypeCode = 0;
    // Set by the model when a request leaves, cleared by stopRequestProgress().
    bool requestPending = false;
    QString newAddress;
    bool needAuth = false;
    QString password;
    // A version needs a password from an entry's minor upwards within its major.
    QList<unsigned short> authRequiredVersions;
    // Exact versions that never need one, whatever the thresholds say.
    QList<unsigned short> authExemptVersions;
};

#endif // DEVICEDESCRIPTOR_H
