#include "device/devicedescriptor.h"

#include "memory/configmemorymap.h"
#include "memory/connectmemorymap.h"
#include "memory/statusmemorymap.h"
#include "ui/devicemainwindow.h"

#include <QIcon>
#include <QInputDialog>
#include <QLineEdit>

namespace {
// Parameters 4 to 7 are model-specific; they start as the text "0".
constexpr int FirstModelParameter = 4;
constexpr int LastModelParameter = 7;

constexpr int AutorisationAccepted = 0;
constexpr int AutorisationRefused = 3;
constexpr int AutorisationCancelled = 4;
} // namespace

DeviceDescriptor::DeviceDescriptor(QObject *parent)
    : QObject(parent)
    , configMap(new ConfigMemoryMap(this))
    , secondConfigMap(new ConfigMemoryMap(this))
    , statusMap(new StatusMemoryMap(this))
    // Takes no parent whatever it is given: deleted in the destructor.
    , connectMap(new ConnectMemoryMap(this))
{
    parameters.insert(DP_NAME, QStringLiteral("No Name"));
    parameters.insert(DP_TYPE, QStringLiteral("No type"));
    parameters.insert(DP_ADDRESS, QString());
    for (int p = FirstModelParameter; p <= LastModelParameter; ++p)
        parameters.insert(static_cast<DeviceParameter>(p), QStringLiteral("0"));
    parameters.insert(DP_DESCRIPTION, QStringLiteral("No Description"));
    parameters.insert(DP_ICON, QIcon(QStringLiteral("://images/no_icon.png")));
}

DeviceDescriptor::~DeviceDescriptor()
{
    if (connectMap && !connectMap->parent())
        delete connectMap;
}

void DeviceDescriptor::setAlarmState(Core::AlarmType alarm)
{
    if (alarm == alarmState)
        return;
    alarmState = alarm;
    emit alarmStateChanged();
}

Core::AlarmType DeviceDescriptor::getAlarmState()
{
    return alarmState;
}

QVariant DeviceDescriptor::getParameter(DeviceParameter parameter)
{
    return parameters.value(parameter);
}

void DeviceDescriptor::setParameter(DeviceParameter parameter, QVariant value)
{
    parameters.insert(parameter, value);
}

void DeviceDescriptor::setParentWidget(QWidget *widget)
{
    parentWidget = widget;
}

Core::InterfaceProtocolType DeviceDescriptor::getCurrentProtocolType()
{
    return currentProtocol;
}

void DeviceDescriptor::setCurrentProtocolType(Core::InterfaceProtocolType type)
{
    currentProtocol = type;
}

void DeviceDescriptor::setInterfaceSettings(Core::InterfaceProtocolType type, QString settings)
{
    interfaceSettings.insert(type, settings);
}

QString DeviceDescriptor::getInterfaceSettings(Core::InterfaceProtocolType type)
{
    return interfaceSettings.value(type);
}

QByteArray &DeviceDescriptor::getRequestData()
{
    return requestData;
}

QString DeviceDescriptor::getSystemMessage()
{
    return systemMessageText;
}

void DeviceDescriptor::setDeviceTypeCode(unsigned int code)
{
    deviceTypeCode = code;
}

QByteArray DeviceDescriptor::cmdFactoryCode()
{
    return QByteArray();
}

void DeviceDescriptor::showProgress(int, int) { }

void DeviceDescriptor::setProgressName(QString name)
{
    progressName = name;
}

void DeviceDescriptor::showFrontPanel() { }

bool DeviceDescriptor::requestInProgress()
{
    return requestPending;
}

void DeviceDescriptor::stopRequestProgress()
{
    requestPending = false;
}

void DeviceDescriptor::setPermission(Core::AccessMode mode)
{
    if (currentProtocol == Core::IPT_WEB || !window)
        return;
    // Deny and full access both leave the window editable: a unit that may not
    // be reached at all never gets this far.
    const bool readOnly = mode == Core::ACM_READ;
    window->setReadOnly(readOnly);
    window->enableActions(!readOnly);
}

bool DeviceDescriptor::canBeIdentified()
{
    return true;
}

bool DeviceDescriptor::setPassword(QString text)
{
    password = text;
    return true;
}

void DeviceDescriptor::setBaseRootOid(QString oid)
{
    baseRootOid = oid;
}

bool DeviceDescriptor::autorise()
{
    autorisationResult = AutorisationAccepted;
    if (password.isEmpty() && checkForNeedAutorisation(firmwareVersion)) {
        bool ok = false;
        // The dialog's answer is kept even when cancelled: the password is then empty.
        password = QInputDialog::getText(window, tr("Autorisation"), tr("Password"), QLineEdit::Password,
            QString(), &ok, Qt::WindowCloseButtonHint, Qt::ImhNone);
        if (!ok) {
            autorisationResult = AutorisationCancelled;
            return false;
        }
    }
    // A model's setPassword() may refuse the text or report an error code.
    const bool accepted = setPassword(QString(password));
    if (!accepted || autorisationResult != AutorisationAccepted) {
        password.clear();
        autorisationResult = AutorisationRefused;
        return false;
    }
    return true;
}

bool DeviceDescriptor::checkForNeedAutorisation(unsigned short version)
{
    unsigned char major = 0;
    unsigned char minor = 0;
    splitVersion(version, major, minor);

    // An exact exemption wins over any threshold.
    for (unsigned short exempt : qAsConst(authExemptVersions)) {
        if (exempt == version) {
            needAuth = false;
            return false;
        }
    }
    for (unsigned short required : qAsConst(authRequiredVersions)) {
        unsigned char requiredMajor = 0;
        unsigned char requiredMinor = 0;
        splitVersion(required, requiredMajor, requiredMinor);
        if (requiredMajor == major && requiredMinor <= minor) {
            needAuth = true;
            return true;
        }
    }
    needAuth = false;
    return false;
}

bool DeviceDescriptor::needAutorisation() const
{
    return needAuth;
}

int DeviceDescriptor::getAutorisationResult() const
{
    return autorisationResult;
}

QString DeviceDescriptor::getPassword() const
{
    return password;
}

QString DeviceDescriptor::getPasswordEnc() const
{
    return password;
}

bool DeviceDescriptor::setPasswordEnc(QString text)
{
    password = text;
    return true;
}

unsigned int DeviceDescriptor::getDeviceTypeCode() const
{
    return deviceTypeCode;
}

QString DeviceDescriptor::getBaseRootOid() const
{
    return baseRootOid;
}

void DeviceDescriptor::emitAddEvent(Core::SystemEvens event)
{
    const QString text = QStringLiteral("%1:%2").arg(
        parameters.value(DP_NAME).toString(), parameters.value(DP_ADDRESS).toString());
    emit newEvent(event, text);
}

ConfigMemoryMap *DeviceDescriptor::getConfigMap() const
{
    return configMap;
}

ConfigMemoryMap *DeviceDescriptor::getSecondConfigMap() const
{
    return secondConfigMap;
}

StatusMemoryMap *DeviceDescriptor::getStatusMap() const
{
    return statusMap;
}

ConnectMemoryMap *DeviceDescriptor::getConnectMap() const
{
    return connectMap;
}

void DeviceDescriptor::splitVersion(const unsigned short &version, unsigned char &major, unsigned char &minor)
{
    major = static_cast<unsigned char>((version >> 8) & 0xFF);
    minor = static_cast<unsigned char>(version & 0xFF);
}

void DeviceDescriptor::splitVersion(
    const unsigned int &version, unsigned char &high, unsigned char &middle, unsigned char &low)
{
    high = static_cast<unsigned char>((version >> 16) & 0xFF);
    middle = static_cast<unsigned char>((version >> 8) & 0xFF);
    low = static_cast<unsigned char>(version & 0xFF);
}

void DeviceDescriptor::checkAdr(QString address)
{
    newAddress = address;
    emit checkAddr();
}

void DeviceDescriptor::setNewIP(bool free)
{
    emit setIP(free);
}

QString DeviceDescriptor::getNewAddr()
{
    return newAddress;
}
