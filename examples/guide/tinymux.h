#ifndef TINYMUX_H
#define TINYMUX_H

#include <device/devicedescriptor.h>

class U16Item;
class U8Item;

// The smallest useful device model: an alarm byte and a temperature in the
// status memory, read with a one-byte request. Real models follow the same
// pattern with more items and more requests.
//! [model-class]
class TinyMux : public DeviceDescriptor
{
    Q_OBJECT
public:
    explicit TinyMux(const QString &address, QObject *parent = nullptr);
    ~TinyMux() override;

    int temperature();

    // What every model provides: its window, its front panel, its transport state.
    void showUi() override;
    QString getFrontPanel() override;
    void closeUi() override;
    bool getSerialState() override { return serialOpen; }
    void setSerialState(bool state) override { serialOpen = state; }

    // The window's device operations; this unit has none of its own.
    void upload() override { }
    void saveMemory() override { }
    void applyChanges() override { }
    void toFactory(bool) override { }
    void restartDevice() override { }
    void restoreDevice() override { }
    void loadSettingsFile(QString, bool) override { }
    void saveSettingsFile(QString) override { }
    void switchToActive() override { }

public slots:
    void setData(QByteArray data) override;
    void setError() override;
    void update() override { updateStatus(); }
    void updateStatus() override;
    void updateAlarmStatus(bool isNeedToEmit = true) override;
    void setDateTime(QDateTime) override { }
    void resetStatistics() override { }
    void identify() override { }

private:
    bool isSnmp();
    QByteArray snmpStatusRequest();
    bool decodeStatus(QByteArray &data);

    U8Item *alarm;
    U16Item *celsius;
    bool serialOpen = false;
};
//! [model-class]

#endif // TINYMUX_H
