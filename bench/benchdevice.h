#ifndef BENCHDEVICE_H
#define BENCHDEVICE_H

#include <device/devicedescriptor.h>

#include <QObject>

// A device model whose poll finishes at once: each poll's statusUpdated()
// goes through the event loop to the map, which polls the next unit. What is
// left to measure is the map's own work per step.
class BenchDevice : public DeviceDescriptor
{
    Q_OBJECT
public:
    using DeviceDescriptor::DeviceDescriptor;

    void showUi() override { }
    QString getFrontPanel() override { return QString(); }
    void closeUi() override { }
    bool getSerialState() override { return false; }
    void setSerialState(bool) override { }

    void setData(QByteArray) override { }
    void setError() override { }
    void update() override { }
    void updateStatus() override { }
    void updateAlarmStatus(bool) override { emit statusUpdated(); }
    void setDateTime(QDateTime) override { }
    void resetStatistics() override { }
    void identify() override { }
    void upload() override { }
    void saveMemory() override { }
    void applyChanges() override { }
    void toFactory(bool) override { }
    void restartDevice() override { }
    void restoreDevice() override { }
    void loadSettingsFile(QString, bool) override { }
    void saveSettingsFile(QString) override { }
    void switchToActive() override { }
};

// The anchor of the scan: the same shape of step without the map. The pinger
// emits a queued signal; the echo's slot calls the pinger back directly, as the
// map calls the next unit's poll.
class Pinger : public QObject
{
    Q_OBJECT
public:
    int remaining = 0;

    void poll()
    {
        if (remaining-- > 0)
            emit ping();
        else
            emit done();
    }

signals:
    void ping();
    void done();
};

class Echo : public QObject
{
    Q_OBJECT
public:
    Pinger *pinger = nullptr;

public slots:
    void onPing() { pinger->poll(); }
};

#endif // BENCHDEVICE_H
