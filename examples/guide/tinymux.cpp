#include "tinymux.h"

#include <memory/statusmemorymap.h>
#include <memory/u16item.h>
#include <memory/u8item.h>
#include <ui/devicemainwindow.h>

#include <QDataStream>
#include <QLabel>
#include <QStringList>

namespace {
const int statusImageSize = 4;
const QString alarmOid = QStringLiteral(".1.3.6.1.4.1.32473.1.11");
const QString celsiusOid = QStringLiteral(".1.3.6.1.4.1.32473.1.12");
} // namespace

//! [model-items]
TinyMux::TinyMux(const QString &address, QObject *parent)
    : DeviceDescriptor(parent)
    , alarm(new U8Item)
    , celsius(new U16Item)
{
    setParameter(DP_NAME, QStringLiteral("TinyMux %1").arg(address));
    setParameter(DP_ADDRESS, address);

    // Status image: byte 0 the alarm level, bytes 2 and 3 the temperature;
    // over SNMP the scalars alarmOid.0 and celsiusOid.0.
    alarm->setStartAddress(0u);
    alarm->setStartAddress(alarmOid);
    celsius->setStartAddress(2u);
    celsius->setStartAddress(celsiusOid);
    getStatusMap()->addItem(QStringLiteral("alarm"), alarm); // the map owns its items
    getStatusMap()->addItem(QStringLiteral("celsius"), celsius);
}
//! [model-items]

TinyMux::~TinyMux()
{
    // The window has no parent: the model that made it deletes it.
    delete window;
}

int TinyMux::temperature()
{
    return celsius->get();
}

//! [model-request]
void TinyMux::updateStatus()
{
    // On the serial bus: 'S' and the unit's bus address, so only that unit answers.
    getRequestData() = isSnmp() ? snmpStatusRequest() : "S" + getParameter(DP_ADDRESS).toString().toLatin1();
    requestPending = true;
    emit newRequest(); // the map relays it to the host as Map::request(key, bytes)
}

void TinyMux::setData(QByteArray data)
{
    stopRequestProgress();
    if (decodeStatus(data)) {
        setAlarmState(static_cast<Core::AlarmType>(alarm->get() & 3)); // emits alarmStateChanged() on change
        emit frontPanelChanged();
    }
    emit statusUpdated(); // always, or the map's scan stops at this unit
}

void TinyMux::setError()
{
    stopRequestProgress();
    emit statusUpdated();
}
//! [model-request]

//! [model-snmp]
bool TinyMux::isSnmp()
{
    return getCurrentProtocolType() == Core::IPT_SNMP_V1 || getCurrentProtocolType() == Core::IPT_SNMP_V3;
}

// Over SNMP the request names the variables to read and the answer carries
// them as a variable set; the host's SNMP transport does the exchange.
QByteArray TinyMux::snmpStatusRequest()
{
    QByteArray request;
    QDataStream out(&request, QIODevice::WriteOnly);
    out << QStringList {alarmOid + ".0", celsiusOid + ".0"};
    return request;
}

bool TinyMux::decodeStatus(QByteArray &data)
{
    if (!isSnmp())
        return data.size() >= statusImageSize && getStatusMap()->loadData(&data);
    QHash<QString, QVariant> variables;
    QDataStream in(data);
    in >> variables;
    return !variables.isEmpty() && getStatusMap()->loadData(&variables);
}
//! [model-snmp]

void TinyMux::updateAlarmStatus(bool)
{
    updateStatus();
}

//! [model-panel]
QString TinyMux::getFrontPanel()
{
    const QString led
        = getAlarmState() == Core::ALARM_OK ? QStringLiteral("0,200,0") : QStringLiteral("220,0,0");
    return QStringLiteral("dimension: 8x3; 1x1(led): %1; 3x1(text): %2 C,6; tooltip: %3")
        .arg(led)
        .arg(temperature())
        .arg(getParameter(DP_NAME).toString());
}
//! [model-panel]

//! [model-window]
void TinyMux::showUi()
{
    if (!window) {
        window = new DeviceMainWindow;
        window->setWindowTitle(getParameter(DP_NAME).toString());
        window->setInterface(getCurrentProtocolType());
        window->addPanel(QStringLiteral("Status.Temperature"), new QLabel(QStringLiteral("-")));
        connect(window, &DeviceMainWindow::reload, this, &TinyMux::update);
        connect(window, &DeviceMainWindow::closeSignal, this, &DeviceDescriptor::uiClosed);
    }
    window->show();
    window->raise();
}
//! [model-window]

void TinyMux::closeUi()
{
    if (window)
        window->close();
}
