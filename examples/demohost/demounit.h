#ifndef DEMOUNIT_H
#define DEMOUNIT_H

#include "unitlayout.h"
#include "unitwindow.h"

#include <device/devicedescriptor.h>

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QPointer>
#include <QString>
#include <QStringList>

class BaseRawType;
class Tg826;
struct DeviceSettingsEx;

// The device model of a "DemoMux-4E1": four E1 ports, an Ethernet port and
// G.826 statistics. This is the class a host writes once per kind of unit:
// it lays its items over the descriptor's memory maps, turns every
// operation into a request for the host's transport, decodes the answers,
// and tells the map what changed (status, alarm, front panel).
//
// Requests go out one at a time: the descriptor holds a single request
// buffer, so further operations wait in a queue until the answer (or the
// error) of the one in flight has come back.
class DemoUnit : public DeviceDescriptor
{
    Q_OBJECT
public:
    // A unit reached over a serial line (a bus address or a device path) or
    // over SNMP (its agent's address).
    DemoUnit(Core::InterfaceProtocolType protocol, const QString &address, unsigned short firmware,
        QObject *parent = nullptr);
    ~DemoUnit() override;

    // The model's part of the descriptor interface.
    void showUi() override;
    QString getFrontPanel() override;
    void closeUi() override;
    bool getSerialState() override;
    void setSerialState(bool state) override;
    void upload() override;
    void saveMemory() override;
    void applyChanges() override;
    void toFactory(bool keepAddresses) override;
    void restartDevice() override;
    void restoreDevice() override;
    void loadSettingsFile(QString path, bool skipAddresses) override;
    void saveSettingsFile(QString path) override;
    void switchToActive() override;
    // Also redraws the front panel, whether the level came from a poll or a trap.
    void setAlarmState(Core::AlarmType alarm) override;
    // Refuses an empty password when the firmware asks for one.
    bool setPassword(QString password) override;

    // What the configuration pages show and edit. Edits change the memory
    // maps only; Apply or Write data sends them to the unit.
    bool isSnmp();
    bool hasAnswered() const { return answered; }
    bool portEnabled(int port);
    void setPortEnabled(int port, bool on);
    bool portCrc4(int port);
    void setPortCrc4(int port, bool on);
    bool portAmi(int port);
    void setPortAmi(int port, bool on);
    QString ipAddress();
    bool setIpAddress(const QString &text);
    QString subnetMask();
    bool setSubnetMask(const QString &text);
    QString label();
    void setLabel(const QString &text);

    UnitLayout::PortState portState(int port);
    bool portActivity(int port);
    int temperature();
    int load();
    bool ethernetActivity();
    QDateTime unitClock();
    unsigned short unitFirmware();
    // A two-cell panel for networks too large for full panels side by side.
    void setCompactPanel(bool on) { compact = on; }
    bool isCompactPanel() const { return compact; }
    // The open configuration window, or null.
    UnitWindow *configWindow() const { return unitWindow; }
    // The counters of the last status read; never null.
    Tg826 *g826() const { return counters; }

    // The configuration as the byte image of a settings file.
    QByteArray configImage();
    // Puts an image into the configuration map, keeping the unit's own
    // addresses when asked. False for an image of the wrong size.
    bool setConfigImage(const QByteArray &image, bool keepAddresses);

    // Requests sent and polls finished, for the host's status line and tests.
    int requestCount() const { return requests; }
    int failedCount() const { return failures; }

    // When the unit last answered a status read; invalid until it has.
    QDateTime lastAnswered() const { return lastAnswer; }
    // Whether the host has not heard from the unit for too long; shown on
    // the panel and in its tooltip.
    bool isStale() const { return stale; }
    void setStale(bool on);
    // False while the unit's serial line is closed, and after that until it
    // answers again: what the panel shows may be long out of date.
    bool isMonitored() const { return monitored; }
    // When the unit last answered, or why its state is not current.
    QString monitoringNote() const;

public slots:
    void setData(QByteArray data) override;
    void setError() override;
    void update() override;
    void updateStatus() override;
    void updateAlarmStatus(bool isNeedToEmit = true) override;
    void setDateTime(QDateTime dateTime) override;
    void resetStatistics() override;
    void identify() override;

signals:
    void configRead();
    void statusRead();
    // The outcome of an operation the user asked for, as a sentence.
    void operationDone(const QString &text, bool ok);

private:
    enum Kind { ReadConfig, ReadStatus, WriteConfig, Command };
    struct Operation
    {
        Kind kind;
        unsigned char command; // UnitLayout::Command
        QByteArray argument;
        QString description; // for the user; empty for routine reads
        bool poll; // a status read whose end the map's scan waits for
    };

    void buildMemoryMaps();
    void enqueue(const Operation &operation);
    void sendNext();
    QByteArray encode(const Operation &operation);
    void finish(bool ok);
    bool decodeStatus(const QByteArray &payload);
    bool decodeConfig(const QByteArray &payload);
    void writeConfig(const QString &description);
    void runCommand(unsigned char command, const QByteArray &argument, const QString &description,
        Core::SystemEvens event);
    void statusPollEnded();
    Core::AlarmType alarmFromStatus();
    BaseRawType *configItem(const char *name);
    BaseRawType *statusItem(const char *name);
    bool portFlag(int port, unsigned char bit, const char *column);
    void setPortFlag(int port, unsigned char bit, const char *column, bool on);
    void report(const QString &text, bool ok);
    // How a settings file differs from this unit, in words; empty when it is the unit's own.
    QStringList differencesFrom(const DeviceSettingsEx &settings);
    // Asks before another unit's settings are loaded; may set skipAddresses.
    bool confirmForeignSettings(const QString &path, const QStringList &differences, bool &skipAddresses);
    void refreshFrontPanel();
    QString compactFrontPanel();
    QString panelTooltip();
    // The alarm lamp's colour; silent for a unit that does not answer.
    QString alarmColour(const QString &silent);
    void noteAnswer();
    QString monitoringEntries();

    QPointer<UnitWindow> unitWindow;
    Tg826 *counters = nullptr;
    QList<Operation> queue;
    bool inFlight = false;
    Operation current {};
    bool serialOpen = true;
    bool answered = false;
    int missedPolls = 0;
    int requests = 0;
    int failures = 0;
    QString lastFrontPanel;
    bool compact = false;
    QDateTime lastAnswer;
    bool stale = false;
    bool monitored = true;
};

#endif // DEMOUNIT_H
