#ifndef TESTDEVICE_H
#define TESTDEVICE_H

#include <device/devicedescriptor.h>

#include <QStringList>

class DeviceMainWindow;

// A device model that records what is asked of it and lets a test trigger
// the signals a real model would emit.
class TestDevice : public DeviceDescriptor
{
    Q_OBJECT
public:
    explicit TestDevice(const QString &address = QString(), QObject *parent = nullptr)
        : DeviceDescriptor(parent)
    {
        if (!address.isEmpty())
            setParameter(DP_ADDRESS, address);
    }

    // Every call in order, as "name(arguments)".
    QStringList calls;
    QList<QByteArray> answers;
    QStringList passwordsOffered;
    bool acceptPassword = true;
    // Error code a setPassword() override leaves behind, as a model that
    // fails to log in would.
    int codeAfterPassword = 0;
    bool serialOn = false;
    QString frontPanel = QStringLiteral("dimension:2,1;");
    // Whether updateAlarmStatus() finishes its poll at once.
    bool finishPollAtOnce = false;

    void setWindow(DeviceMainWindow *w) { window = w; }
    void setFirmware(unsigned short version) { firmwareVersion = version; }
    void setVersionLists(const QList<unsigned short> &required, const QList<unsigned short> &exempt)
    {
        authRequiredVersions = required;
        authExemptVersions = exempt;
    }
    int parameterCount() const { return parameters.size(); }

    // What a model does to send: fill the request, then tell the map.
    void sendRequest(const QByteArray &bytes)
    {
        getRequestData() = bytes;
        emit newRequest();
    }
    void announce(const QString &message)
    {
        systemMessageText = message;
        emit systemMessage();
    }

    void showUi() override { calls << QStringLiteral("showUi()"); }
    QString getFrontPanel() override { return frontPanel; }
    void closeUi() override { calls << QStringLiteral("closeUi()"); }
    bool getSerialState() override { return serialOn; }
    void setSerialState(bool state) override
    {
        serialOn = state;
        calls << QStringLiteral("setSerialState(%1)").arg(state);
    }
    bool setPassword(QString text) override
    {
        passwordsOffered << text;
        autorisationResult = codeAfterPassword;
        return acceptPassword && DeviceDescriptor::setPassword(text);
    }

    void setData(QByteArray data) override
    {
        answers << data;
        calls << QStringLiteral("setData()");
    }
    void setError() override { calls << QStringLiteral("setError()"); }
    void update() override { calls << QStringLiteral("update()"); }
    void updateStatus() override { calls << QStringLiteral("updateStatus()"); }
    void updateAlarmStatus(bool isNeedToEmit = true) override
    {
        calls << QStringLiteral("updateAlarmStatus(%1)").arg(isNeedToEmit);
        if (finishPollAtOnce)
            emit statusUpdated();
    }
    void setDateTime(QDateTime) override { calls << QStringLiteral("setDateTime()"); }
    void resetStatistics() override { calls << QStringLiteral("resetStatistics()"); }
    void identify() override { calls << QStringLiteral("identify()"); }

    void upload() override { calls << QStringLiteral("upload()"); }
    void saveMemory() override { calls << QStringLiteral("saveMemory()"); }
    void applyChanges() override { calls << QStringLiteral("applyChanges()"); }
    void toFactory(bool) override { }
    void restartDevice() override { calls << QStringLiteral("restartDevice()"); }
    void restoreDevice() override { calls << QStringLiteral("restoreDevice()"); }
    void loadSettingsFile(QString, bool) override { }
    void saveSettingsFile(QString) override { }
    void switchToActive() override { calls << QStringLiteral("switchToActive()"); }
};

#endif // TESTDEVICE_H
