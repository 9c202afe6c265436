#include "demounit.h"

#include "unitwindow.h"

#include <core/convert.h>
#include <memory/configmemorymap.h>
#include <memory/statusmemorymap.h>
#include <memory/tg826.h>
#include <memory/u16item.h>
#include <memory/u8array.h>
#include <storage/devicesettingsex.h>
#include <storage/savesettings.h>

#include <QCheckBox>
#include <QDataStream>
#include <QIODevice>
#include <QIcon>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>

using namespace UnitLayout;

namespace {

// A unit that misses this many polls in a row is shown as not responding.
constexpr int missedPollLimit = 3;
// Not one of the named levels: the topology draws it as a wide black frame
// and the trap list in grey, which is how the suite shows a silent unit.
const auto alarmNoAnswer = static_cast<Core::AlarmType>(4);

QString firmwareText(unsigned short firmware)
{
    unsigned char major = 0;
    unsigned char minor = 0;
    DeviceDescriptor::splitVersion(firmware, major, minor);
    return QStringLiteral("%1.%2").arg(major).arg(minor);
}

// Item names in the memory maps.
const char *const itemPorts = "ports";
const char *const itemIp = "ip";
const char *const itemMask = "mask";
const char *const itemLabel = "label";
const char *const itemAlarms = "alarms";
const char *const itemPortState = "portState";
const char *const itemTemperature = "temperature";
const char *const itemLoad = "load";
const char *const itemEthernet = "ethernet";
const char *const itemClock = "clock";
const char *const itemFirmware = "firmware";
const char *const itemG826 = "g826";

template<typename Item> Item *makeItem(unsigned int start, unsigned int count, const QString &oid)
{
    auto *item = new Item;
    item->setStartAddress(start);
    if (count > 0)
        item->setItemsCount(count);
    item->setStartAddress(oid);
    return item;
}

// An item in SNMP mode holds the variables the unit last delivered, not bytes
// of its memory image; every accessor reads whichever the item holds.
bool holdsVariables(BaseRawType *item)
{
    return item->getMode() == 1;
}

// Text for a front-panel parameter: commas and semicolons belong to the description language.
QString panelText(QString text)
{
    text.replace(QLatin1Char(','), QLatin1Char(' '));
    text.replace(QLatin1Char(';'), QLatin1Char(' '));
    text.replace(QLatin1Char(':'), QLatin1Char(' '));
    return text;
}

} // namespace

DemoUnit::DemoUnit(
    Core::InterfaceProtocolType protocol, const QString &address, unsigned short firmware, QObject *parent)
    : DeviceDescriptor(parent)
{
    setCurrentProtocolType(protocol);
    setDeviceTypeCode(static_cast<unsigned int>(UnitLayout::deviceCode));
    setParameter(DP_TYPE, modelName());
    setParameter(DP_ADDRESS, address);
    setParameter(DP_DESCRIPTION, tr("Four-port E1 multiplexer"));
    setParameter(DP_ICON,
        QIcon(protocol == Core::IPT_SERIAL ? QStringLiteral(":/images/serial-port.png")
                                           : QStringLiteral(":/images/ethernet.png")));
    setBaseRootOid(productArc());
    // Firmware from 2.3 on asks for a password; 2.3.7 was shipped without the check.
    firmwareVersion = firmware;
    authRequiredVersions = {0x0203};
    authExemptVersions = {0x0207};
    buildMemoryMaps();
}

DemoUnit::~DemoUnit()
{
    delete unitWindow.data();
}

void DemoUnit::buildMemoryMaps()
{
    // Each item knows both its place in the serial memory image and the OID
    // of its SNMP variables; the map's loadData picks whichever arrived.
    ConfigMemoryMap *config = getConfigMap();
    config->addItem(QLatin1String(itemPorts), makeItem<U8Array>(cfgPorts, portCount, oidPortTable()));
    config->addItem(QLatin1String(itemIp), makeItem<U8Array>(cfgIp, 4, oidSystem() + QStringLiteral(".1")));
    config->addItem(
        QLatin1String(itemMask), makeItem<U8Array>(cfgMask, 4, oidSystem() + QStringLiteral(".2")));
    config->addItem(QLatin1String(itemLabel),
        makeItem<U8Array>(cfgLabel, cfgLabelSize, oidSystem() + QStringLiteral(".3")));

    StatusMemoryMap *status = getStatusMap();
    status->addItem(QLatin1String(itemAlarms), makeItem<U8Array>(stAlarms, 2, oidAlarms()));
    status->addItem(QLatin1String(itemPortState), makeItem<U8Array>(stPortState, portCount, oidPortStatus()));
    status->addItem(QLatin1String(itemTemperature), makeItem<U16Item>(stTemperature, 0, oidTemperature()));
    status->addItem(QLatin1String(itemLoad), makeItem<U16Item>(stLoad, 0, oidLoad()));
    status->addItem(QLatin1String(itemEthernet), makeItem<U16Item>(stEthernet, 0, oidEthernet()));
    status->addItem(QLatin1String(itemClock), makeItem<U8Array>(stClock, 8, oidClock()));
    status->addItem(QLatin1String(itemFirmware), makeItem<U16Item>(stFirmware, 0, oidFirmware()));
    counters = makeItem<Tg826>(stG826, 0, oidG826());
    status->addItem(QLatin1String(itemG826), counters);

    // Blank images give the byte copies their size, so that edits made
    // before the first read have somewhere to go.
    QByteArray blankConfig(configSize, '\0');
    config->loadData(&blankConfig);
    QByteArray blankStatus(statusSize, '\0');
    status->loadData(&blankStatus);
}

BaseRawType *DemoUnit::configItem(const char *name)
{
    return getConfigMap()->getItem(QLatin1String(name));
}

BaseRawType *DemoUnit::statusItem(const char *name)
{
    return getStatusMap()->getItem(QLatin1String(name));
}

bool DemoUnit::isSnmp()
{
    return getCurrentProtocolType() != Core::IPT_SERIAL;
}

// ---------------------------------------------------------------------------
// Requests

void DemoUnit::enqueue(const Operation &operation)
{
    // A status read already waiting will do for a second one.
    if (operation.kind == ReadStatus) {
        for (Operation &waiting : queue) {
            if (waiting.kind == ReadStatus) {
                waiting.poll = waiting.poll || operation.poll;
                return;
            }
        }
        if (inFlight && current.kind == ReadStatus && !operation.poll)
            return;
    }
    queue.append(operation);
    if (!inFlight)
        sendNext();
}

QByteArray DemoUnit::encode(const Operation &operation)
{
    if (!isSnmp()) {
        QByteArray bytes(1, static_cast<char>(operation.command));
        bytes.append(operation.argument);
        return bytes;
    }
    // Over SNMP a read is a walk of a subtree and everything else a set.
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    switch (operation.kind) {
    case ReadConfig:
        out << quint8(SnmpGet) << productArc() + QStringLiteral(".2");
        break;
    case ReadStatus:
        out << quint8(SnmpGet) << enterpriseArc();
        break;
    case WriteConfig: {
        QHash<QString, QVariant> toSend;
        QDataStream in(operation.argument);
        in >> toSend;
        out << quint8(SnmpSet) << toSend;
        break;
    }
    case Command: {
        QHash<QString, QVariant> toSend;
        if (operation.command == CmdSetClock) {
            toSend.insert(oidClock() + QStringLiteral(".0"), byteString(operation.argument));
        } else {
            const int argument
                = operation.argument.isEmpty() ? 0 : static_cast<unsigned char>(operation.argument.at(0));
            toSend.insert(oidControl(), operation.command | (argument << 8));
        }
        out << quint8(SnmpSet) << toSend;
        break;
    }
    }
    return bytes;
}

void DemoUnit::sendNext()
{
    if (queue.isEmpty()) {
        inFlight = false;
        if (unitWindow)
            unitWindow->disableInteractUi(false);
        return;
    }
    current = queue.takeFirst();
    inFlight = true;
    requestPending = true;
    ++requests;
    // The map reads the request through this reference when it relays newRequest().
    getRequestData() = encode(current);
    emit newRequest();
}

void DemoUnit::setData(QByteArray data)
{
    if (!inFlight)
        return; // an answer nobody waits for any more
    bool ok = false;
    QByteArray payload;
    if (!isSnmp()) {
        ok = data.size() >= 2 && static_cast<unsigned char>(data.at(0)) == (current.command | answerBit)
            && data.at(1) == static_cast<char>(resultDone);
        payload = data.mid(2);
    } else {
        QDataStream in(data);
        quint8 result = resultRefused;
        QHash<QString, QVariant> variables;
        in >> result >> variables;
        ok = in.status() == QDataStream::Ok && result == resultDone;
        QDataStream out(&payload, QIODevice::WriteOnly);
        out << variables;
    }
    if (ok && current.kind == ReadStatus)
        ok = decodeStatus(payload);
    else if (ok && current.kind == ReadConfig)
        ok = decodeConfig(payload);
    finish(ok);
}

void DemoUnit::setError()
{
    if (inFlight)
        finish(false);
}

void DemoUnit::finish(bool ok)
{
    const Operation done = current;
    if (ok) {
        answered = true;
        missedPolls = 0;
    } else {
        ++failures;
    }
    if (done.kind == ReadStatus) {
        if (ok)
            noteAnswer();
        else
            ++missedPolls;
        if (ok)
            emit statusRead();
        statusPollEnded();
    } else if (done.kind == ReadConfig && ok) {
        emit configRead();
    }
    if (!done.description.isEmpty()) {
        report(ok ? tr("%1: done.").arg(done.description)
                  : tr("%1: the unit did not confirm. Check the connection and try again.")
                        .arg(done.description),
            ok);
    }
    if (unitWindow && !queue.isEmpty())
        unitWindow->setProgres(100 / (queue.size() + 1));
    stopRequestProgress();
    sendNext();
}

void DemoUnit::statusPollEnded()
{
    // Alarm and front panel first, so that the map relays them before it
    // moves on to the next unit of its scan.
    setAlarmState(
        missedPolls >= missedPollLimit ? alarmNoAnswer : (answered ? alarmFromStatus() : getAlarmState()));
    refreshFrontPanel();
    // Ends this unit's step of the map's scan, also after a failed poll.
    emit statusUpdated();
}

void DemoUnit::noteAnswer()
{
    lastAnswer = QDateTime::currentDateTime();
    if (stale || (!monitored && serialOpen)) {
        stale = false;
        monitored = true;
        // The map relays this, and the host redraws how the unit is shown.
        emit alarmStateChanged();
    }
}

void DemoUnit::setStale(bool on)
{
    if (on == stale)
        return;
    stale = on;
    refreshFrontPanel();
    emit alarmStateChanged();
}

void DemoUnit::setAlarmState(Core::AlarmType alarm)
{
    DeviceDescriptor::setAlarmState(alarm);
    refreshFrontPanel();
}

void DemoUnit::refreshFrontPanel()
{
    // The map reads the text through getFrontPanel() when it relays the signal.
    const QString panel = getFrontPanel();
    if (panel == lastFrontPanel)
        return;
    lastFrontPanel = panel;
    emit frontPanelChanged();
}

bool DemoUnit::decodeStatus(const QByteArray &payload)
{
    StatusMemoryMap *status = getStatusMap();
    if (!isSnmp()) {
        QByteArray image = payload;
        return image.size() >= statusSize && status->loadData(&image);
    }
    QHash<QString, QVariant> variables;
    QDataStream in(payload);
    in >> variables;
    return status->loadData(&variables);
}

bool DemoUnit::decodeConfig(const QByteArray &payload)
{
    ConfigMemoryMap *config = getConfigMap();
    if (!isSnmp()) {
        QByteArray image = payload;
        return image.size() >= configSize && config->loadData(&image);
    }
    QHash<QString, QVariant> variables;
    QDataStream in(payload);
    in >> variables;
    return config->loadData(&variables);
}

void DemoUnit::report(const QString &text, bool ok)
{
    emit operationDone(text, ok);
    if (!unitWindow)
        return;
    if (ok)
        unitWindow->statusBar()->showMessage(text, 8000);
    else
        unitWindow->showMessage(text, 1);
}

// ---------------------------------------------------------------------------
// Operations of the descriptor and of the configuration window

void DemoUnit::update()
{
    if (unitWindow) {
        unitWindow->disableInteractUi(true);
        unitWindow->setProgres(10);
    }
    enqueue({ReadConfig, CmdReadConfig, QByteArray(), QString(), false});
    enqueue({ReadStatus, CmdReadStatus, QByteArray(), QString(), false});
}

void DemoUnit::updateStatus()
{
    enqueue({ReadStatus, CmdReadStatus, QByteArray(), QString(), false});
}

void DemoUnit::updateAlarmStatus(bool isNeedToEmit)
{
    Q_UNUSED(isNeedToEmit)
    if (!serialOpen && !isSnmp()) {
        // No line, no poll: report the step as done so that the scan moves on.
        emit statusUpdated();
        return;
    }
    enqueue({ReadStatus, CmdReadStatus, QByteArray(), QString(), true});
}

void DemoUnit::writeConfig(const QString &description)
{
    QByteArray argument;
    if (!isSnmp()) {
        argument = QByteArray(configSize, '\0');
        if (!getConfigMap()->saveData(&argument)) {
            report(tr("%1: the configuration could not be prepared.").arg(description), false);
            return;
        }
    } else {
        // Only what changed since the last read or write goes out.
        QHash<QString, QVariant> toSend;
        getConfigMap()->saveData(&toSend);
        if (toSend.isEmpty()) {
            report(tr("%1: nothing has changed.").arg(description), true);
            return;
        }
        QDataStream out(&argument, QIODevice::WriteOnly);
        out << toSend;
    }
    enqueue({WriteConfig, CmdWriteConfig, argument, description, false});
    emitAddEvent(Core::SE_DEVICE_WRITE_ALL);
}

void DemoUnit::runCommand(
    unsigned char command, const QByteArray &argument, const QString &description, Core::SystemEvens event)
{
    enqueue({Command, command, argument, description, false});
    emitAddEvent(event);
}

void DemoUnit::upload()
{
    writeConfig(tr("Write data"));
}

void DemoUnit::applyChanges()
{
    writeConfig(tr("Apply"));
    emitAddEvent(Core::SE_DEVICE_APPLY);
}

void DemoUnit::saveMemory()
{
    runCommand(CmdSave, QByteArray(), tr("Save"), Core::SE_DEVICE_SAVE);
}

void DemoUnit::toFactory(bool keepAddresses)
{
    runCommand(
        CmdFactory, QByteArray(1, keepAddresses ? 1 : 0), tr("Factory settings"), Core::SE_DEVICE_FACTORY);
    enqueue({ReadConfig, CmdReadConfig, QByteArray(), QString(), false});
}

void DemoUnit::restartDevice()
{
    runCommand(CmdRestart, QByteArray(), tr("Restart"), Core::SE_DEVICE_RESTART);
}

void DemoUnit::restoreDevice()
{
    runCommand(CmdRestoreSaved, QByteArray(), tr("Load last saved"), Core::SE_DEVICE_RESTORE_SAVED);
    enqueue({ReadConfig, CmdReadConfig, QByteArray(), QString(), false});
}

void DemoUnit::setDateTime(QDateTime dateTime)
{
    QByteArray date = Convert::dateToString(dateTime).toLatin1();
    runCommand(CmdSetClock, date, tr("Set date and time"), Core::SE_DEVICE);
}

void DemoUnit::resetStatistics()
{
    runCommand(CmdResetStatistics, QByteArray(), tr("Reset statistics"), Core::SE_DEVICE);
    updateStatus();
}

void DemoUnit::identify()
{
    runCommand(CmdIdentify, QByteArray(), tr("Identify"), Core::SE_DEVICE);
}

void DemoUnit::switchToActive()
{
    runCommand(CmdSwitchToActive, QByteArray(), tr("Switch to active"), Core::SE_DEVICE);
}

void DemoUnit::saveSettingsFile(QString path)
{
    DeviceSettingsEx settings;
    settings.deviceCode = UnitLayout::deviceCode;
    settings.deviceName = modelName();
    settings.param16 = static_cast<qint16>(unitFirmware());
    settings.param32 = configSize;
    settings.data = configImage();
    if (!SaveSettings::save(settings, path)) {
        report(tr("The settings could not be written to %1.").arg(path), false);
        return;
    }
    emitAddEvent(Core::SE_EXPORT_TO_FILE);
    report(tr("Settings saved to %1.").arg(path), true);
}

void DemoUnit::loadSettingsFile(QString path, bool skipAddresses)
{
    DeviceSettingsEx settings;
    if (!SaveSettings::read(settings, path)) {
        report(tr("%1 is not a device settings file that can be read.").arg(path), false);
        return;
    }
    if (settings.isCorrupted()) {
        report(tr("%1 is damaged: its contents do not match its checksum. Nothing was loaded.").arg(path),
            false);
        return;
    }
    if (settings.deviceName != modelName()) {
        report(tr("%1 holds settings of a %2, not of a %3. Nothing was loaded.")
                   .arg(path, settings.deviceName, modelName()),
            false);
        return;
    }
    if (settings.data.size() != configSize) {
        report(tr("%1 holds a configuration of the wrong size. Nothing was loaded.").arg(path), false);
        return;
    }
    const QStringList differences = differencesFrom(settings);
    if (!differences.isEmpty() && !confirmForeignSettings(path, differences, skipAddresses)) {
        report(tr("Loading %1 was cancelled. Nothing was loaded.").arg(path), false);
        return;
    }
    setConfigImage(settings.data, skipAddresses);
    emit configRead();
    writeConfig(tr("Load settings from %1").arg(path));
}

QStringList DemoUnit::differencesFrom(const DeviceSettingsEx &settings)
{
    // Only what the unit has told us can be compared.
    if (!answered)
        return {};
    QStringList differences;
    const auto firmware = static_cast<unsigned short>(settings.param16);
    if (firmware != unitFirmware()) {
        differences << tr("firmware %1 in the file, %2 in the unit")
                           .arg(firmwareText(firmware), firmwareText(unitFirmware()));
    }
    const QString address = Convert::ipToString(byteString(settings.data.mid(cfgIp, 4)));
    if (address != ipAddress())
        differences << tr("address %1 in the file, %2 in the unit").arg(address, ipAddress());
    return differences;
}

bool DemoUnit::confirmForeignSettings(
    const QString &path, const QStringList &differences, bool &skipAddresses)
{
    // A file of another unit would give this one the other's address, and two
    // units with one address take each other's traps: addresses stay unless
    // the user clears the box.
    QMessageBox box(QMessageBox::Warning, tr("Settings of another unit"),
        tr("%1 was not saved from %2:\n%3.\n\nLoad it anyway?")
            .arg(path, getParameter(DP_NAME).toString(), differences.join(QStringLiteral(";\n"))),
        QMessageBox::Yes | QMessageBox::Cancel, unitWindow);
    box.button(QMessageBox::Yes)->setText(tr("Load"));
    box.setDefaultButton(QMessageBox::Cancel);
    auto *keep = new QCheckBox(tr("Do not load addresses"));
    keep->setChecked(true);
    box.setCheckBox(keep);
    if (box.exec() != QMessageBox::Yes)
        return false;
    skipAddresses = keep->isChecked();
    return true;
}

bool DemoUnit::setPassword(QString password)
{
    if (needAutorisation() && password.isEmpty())
        return false;
    return DeviceDescriptor::setPassword(password);
}

// ---------------------------------------------------------------------------
// The configuration window

void DemoUnit::showUi()
{
    if (unitWindow) {
        unitWindow->raise();
        unitWindow->activateWindow();
        return;
    }
    unitWindow = new UnitWindow(this);
    // The descriptor parents the password dialog to its window and applies
    // access rights to it, so it is set before autorise() and setPermission().
    window = unitWindow;
    if (!autorise()) {
        delete unitWindow.data();
        window = nullptr;
        return;
    }
    unitWindow->setInterface(getCurrentProtocolType());
    if (isSnmp())
        unitWindow->enableSnmpResetToFactory();
    setPermission(Core::ACM_READ_AND_WRITE);

    // The window only emits; the model does the work. Plain virtual
    // functions connect with the function-pointer form of connect.
    connect(unitWindow, &DeviceMainWindow::reload, this, &DemoUnit::update);
    connect(unitWindow, &DeviceMainWindow::upload, this, &DemoUnit::upload);
    connect(unitWindow, &DeviceMainWindow::saveMemory, this, &DemoUnit::saveMemory);
    connect(unitWindow, &DeviceMainWindow::applyChanges, this, &DemoUnit::applyChanges);
    connect(unitWindow, &DeviceMainWindow::toFactory, this, &DemoUnit::toFactory);
    connect(unitWindow, &DeviceMainWindow::restartDevice, this, &DemoUnit::restartDevice);
    connect(unitWindow, &DeviceMainWindow::restoreDevice, this, &DemoUnit::restoreDevice);
    connect(unitWindow, &DeviceMainWindow::loadSettingsFile, this, &DemoUnit::loadSettingsFile);
    connect(unitWindow, &DeviceMainWindow::saveSettingsFile, this, &DemoUnit::saveSettingsFile);
    connect(unitWindow, &DeviceMainWindow::setDateTime, this, &DemoUnit::setDateTime);
    connect(unitWindow, &DeviceMainWindow::resetStatistics, this, &DemoUnit::resetStatistics);
    connect(unitWindow, &DeviceMainWindow::switchToActive, this, &DemoUnit::switchToActive);
    connect(unitWindow, &DeviceMainWindow::serialStateChanged, this,
        [this] { setSerialState(unitWindow->getSerialState()); });
    // The refresh timer names the page in view; every page here shows status.
    connect(unitWindow, &DeviceMainWindow::sendTreeItemPath, this, [this](const QString &path) {
        if (!path.isEmpty())
            updateStatus();
    });
    connect(unitWindow, &DeviceMainWindow::closeSignal, this, [this] {
        window = nullptr;
        if (unitWindow)
            unitWindow->deleteLater();
        emit uiClosed();
    });

    unitWindow->serialState(serialOpen);
    unitWindow->show();
    update();
}

void DemoUnit::closeUi()
{
    if (unitWindow)
        unitWindow->close();
}

bool DemoUnit::getSerialState()
{
    return serialOpen;
}

void DemoUnit::setSerialState(bool state)
{
    if (state == serialOpen)
        return;
    serialOpen = state;
    if (unitWindow && unitWindow->getSerialState() != state)
        unitWindow->serialState(state);
    // Closed, the unit is not polled and its panel would keep its last look;
    // reopened, it counts as monitored again once it has answered.
    if (!state && !isSnmp() && monitored) {
        monitored = false;
        refreshFrontPanel();
        emit alarmStateChanged();
    }
    // The host's transport opens or closes the line when the map relays this.
    emit serialState();
}

// ---------------------------------------------------------------------------
// Values

bool DemoUnit::portFlag(int port, unsigned char bit, const char *column)
{
    BaseRawType *ports = configItem(itemPorts);
    if (!holdsVariables(ports))
        return ports->getBit(static_cast<unsigned int>(port), bit);
    const int value = ports->getValue(QLatin1String(column), port).toInt();
    // The line code column is an enumeration (1 HDB3, 2 AMI), the others truth values.
    return bit == portAmiBit ? value == 2 : Convert::intToBool(value);
}

void DemoUnit::setPortFlag(int port, unsigned char bit, const char *column, bool on)
{
    BaseRawType *ports = configItem(itemPorts);
    if (!holdsVariables(ports)) {
        ports->setBit(static_cast<unsigned int>(port), bit, on);
        return;
    }
    const int value = bit == portAmiBit ? (on ? 2 : 1) : Convert::boolToInt(on);
    ports->setValue(QLatin1String(column), port, value);
}

bool DemoUnit::portEnabled(int port)
{
    return portFlag(port, portEnabledBit, colPortEnabled);
}
void DemoUnit::setPortEnabled(int port, bool on)
{
    setPortFlag(port, portEnabledBit, colPortEnabled, on);
}
bool DemoUnit::portCrc4(int port)
{
    return portFlag(port, portCrc4Bit, colPortCrc4);
}
void DemoUnit::setPortCrc4(int port, bool on)
{
    setPortFlag(port, portCrc4Bit, colPortCrc4, on);
}
bool DemoUnit::portAmi(int port)
{
    return portFlag(port, portAmiBit, colPortLineCode);
}
void DemoUnit::setPortAmi(int port, bool on)
{
    setPortFlag(port, portAmiBit, colPortLineCode, on);
}

namespace {

// An address item holds four bytes in memory and dotted text over SNMP.
QString addressOf(BaseRawType *item)
{
    if (holdsVariables(item))
        return item->getValue(QString()).toString();
    const QByteArray &bytes = item->getLocalCopy();
    return Convert::ipToString(byteString(bytes));
}

// False, changing nothing, for text that is not a valid address of its kind.
bool setAddressOf(BaseRawType *item, const QString &text, bool valid)
{
    if (!valid)
        return false;
    if (holdsVariables(item)) {
        item->setValue(QString(), text);
        return true;
    }
    const QString bytes = Convert::stringToIp(text);
    for (int i = 0; i < 4 && i < bytes.size(); ++i)
        item->setInteger(static_cast<unsigned int>(i), 0, 1, bytes.at(i).unicode() & 0xFF);
    return true;
}

} // namespace

QString DemoUnit::ipAddress()
{
    return addressOf(configItem(itemIp));
}

bool DemoUnit::setIpAddress(const QString &text)
{
    return setAddressOf(configItem(itemIp), text, Convert::validateIP(text));
}

QString DemoUnit::subnetMask()
{
    return addressOf(configItem(itemMask));
}

bool DemoUnit::setSubnetMask(const QString &text)
{
    return setAddressOf(configItem(itemMask), text, Convert::validateSubnetMask(text));
}

QString DemoUnit::label()
{
    BaseRawType *item = configItem(itemLabel);
    if (holdsVariables(item))
        return item->getValue(QString()).toString();
    const QByteArray &bytes = item->getLocalCopy();
    return paddedText(bytes);
}

void DemoUnit::setLabel(const QString &text)
{
    BaseRawType *item = configItem(itemLabel);
    const QString cut = text.left(cfgLabelSize);
    if (holdsVariables(item)) {
        item->setValue(QString(), cut);
        return;
    }
    const QByteArray bytes = cut.toLatin1();
    for (int i = 0; i < cfgLabelSize; ++i)
        item->setInteger(static_cast<unsigned int>(i), 0, 1,
            i < bytes.size() ? static_cast<unsigned char>(bytes.at(i)) : 0);
}

UnitLayout::PortState DemoUnit::portState(int port)
{
    BaseRawType *item = statusItem(itemPortState);
    const int state = holdsVariables(item)
        ? item->getValue(QLatin1String(colPortState), port).toInt() - 1
        : static_cast<int>(item->getBits(static_cast<unsigned int>(port), 0, 7));
    return state >= PortDisabled && state <= PortAis ? static_cast<PortState>(state) : PortDisabled;
}

bool DemoUnit::portActivity(int port)
{
    BaseRawType *item = statusItem(itemPortState);
    if (holdsVariables(item))
        return Convert::intToBool(item->getValue(QLatin1String(colPortActivity), port).toInt());
    return item->getBit(static_cast<unsigned int>(port), portActivityBit);
}

int DemoUnit::temperature()
{
    return static_cast<qint16>(static_cast<U16Item *>(statusItem(itemTemperature))->get());
}
int DemoUnit::load()
{
    return static_cast<U16Item *>(statusItem(itemLoad))->get();
}
bool DemoUnit::ethernetActivity()
{
    return static_cast<U16Item *>(statusItem(itemEthernet))->get() & 2;
}
unsigned short DemoUnit::unitFirmware()
{
    return static_cast<U16Item *>(statusItem(itemFirmware))->get();
}

QDateTime DemoUnit::unitClock()
{
    BaseRawType *item = statusItem(itemClock);
    if (holdsVariables(item))
        return Convert::strToDate(item->getValue().toString());
    const QByteArray &bytes = item->getLocalCopy();
    return Convert::strToDate(byteString(bytes));
}

Core::AlarmType DemoUnit::alarmFromStatus()
{
    BaseRawType *alarms = statusItem(itemAlarms);
    unsigned int lines = 0;
    unsigned int unit = 0;
    if (holdsVariables(alarms)) {
        lines = alarms->getValue(QStringLiteral("1")).toUInt();
        unit = alarms->getValue(QStringLiteral("2")).toUInt();
    } else {
        lines = static_cast<unsigned int>(alarms->getInteger(0, 0, 1));
        unit = static_cast<unsigned int>(alarms->getInteger(1, 0, 1));
    }
    // Loss of signal and a failed supply take traffic down; AIS and heat do not (yet).
    const bool major = (lines & 0x0F) || (unit & (1u << alarmPowerBit));
    const bool minor = (lines & 0xF0) || (unit & ((1u << alarmTemperatureBit) | (1u << alarmClockBit)));
    return static_cast<Core::AlarmType>((major ? Core::ALARM_MAJOR : 0) | (minor ? Core::ALARM_MINOR : 0));
}

QByteArray DemoUnit::configImage()
{
    // The same layout for both kinds of unit, so a file from a serial unit
    // loads into an SNMP one and back.
    QByteArray image(configSize, '\0');
    for (int port = 0; port < portCount; ++port) {
        image[cfgPorts + port] = static_cast<char>((portEnabled(port) ? 1u << portEnabledBit : 0u)
            | (portCrc4(port) ? 1u << portCrc4Bit : 0u) | (portAmi(port) ? 1u << portAmiBit : 0u));
    }
    image.replace(cfgIp, 4, Convert::stringToIp(ipAddress()).toLatin1().leftJustified(4, '\0', true));
    image.replace(cfgMask, 4, Convert::stringToIp(subnetMask()).toLatin1().leftJustified(4, '\0', true));
    image.replace(cfgLabel, cfgLabelSize, label().toLatin1().leftJustified(cfgLabelSize, '\0', true));
    return image;
}

bool DemoUnit::setConfigImage(const QByteArray &image, bool keepAddresses)
{
    if (image.size() != configSize)
        return false;
    for (int port = 0; port < portCount; ++port) {
        const auto bits = static_cast<unsigned char>(image.at(cfgPorts + port));
        setPortEnabled(port, (bits >> portEnabledBit) & 1u);
        setPortCrc4(port, (bits >> portCrc4Bit) & 1u);
        setPortAmi(port, (bits >> portAmiBit) & 1u);
    }
    if (!keepAddresses) {
        setIpAddress(Convert::ipToString(byteString(image.mid(cfgIp, 4))));
        setSubnetMask(Convert::ipToString(byteString(image.mid(cfgMask, 4))));
    }
    setLabel(paddedText(image.mid(cfgLabel, cfgLabelSize)));
    return true;
}

QString DemoUnit::alarmColour(const QString &silent)
{
    // Not heard from yet: green would claim a health nobody has seen.
    if (!answered)
        return silent;
    switch (static_cast<int>(getAlarmState())) {
    case Core::ALARM_OK:
        return QStringLiteral("0,200,0");
    case Core::ALARM_MINOR:
        return QStringLiteral("240,200,0");
    case Core::ALARM_MAJOR:
    case Core::ALARM_MAJOR_MINOR:
        return QStringLiteral("230,0,0");
    default:
        return silent;
    }
}

QString DemoUnit::panelTooltip()
{
    return QStringLiteral("tooltip: %1 (%2) - %3")
        .arg(panelText(getParameter(DP_NAME).toString()), panelText(getParameter(DP_ADDRESS).toString()),
            monitoringNote());
}

QString DemoUnit::compactFrontPanel()
{
    // 2 x 1 cells: the unit's number on a strip of its alarm colour, so that
    // two thousand units fit the drawing side by side. The frame still
    // blinks and the tooltip names the unit; the full panel is one setting away.
    const QString number = panelText(getParameter(DP_NAME).toString().section(QLatin1Char(' '), -1));
    // No room for a mark: a unit nobody watches is orange, a stale one grey.
    const QString strip = !monitored ? QStringLiteral("255,140,0")
        : stale                      ? QStringLiteral("170,170,170")
                                     : alarmColour(QStringLiteral("170,170,170"));
    return QStringList {QStringLiteral("dimension: 2x1"), QStringLiteral("0x0(background): %1,2").arg(strip),
        QStringLiteral("0x0(text): %1,4").arg(number), panelTooltip()}
        .join(QLatin1Char(';'));
}

QString DemoUnit::getFrontPanel()
{
    if (compact)
        return compactFrontPanel();
    // 11 x 3 cells of 20 pixels: a title strip, the line interface, four
    // ports, the unit's alarm lamp and its management port, and a level bar
    // for the processor load.
    QStringList entries;
    entries << QStringLiteral("dimension: 11x3") << QStringLiteral("0x0(background): 222,226,232,11")
            << QStringLiteral("0.2x0(text): %1,18").arg(panelText(getParameter(DP_NAME).toString()))
            << QStringLiteral("0x1(interf): %1").arg(isSnmp() ? 1 : 0);
    // A port reads without colour: a small lamp while it is off, a large one
    // while it is in use, and under it a small lamp for traffic or the
    // letter of its fault.
    for (int port = 0; port < portCount; ++port) {
        const int x = 2 + port;
        switch (answered ? portState(port) : PortDisabled) {
        case PortDisabled:
            entries << QStringLiteral("%1x1(led): 150,150,150").arg(x);
            break;
        case PortUp:
            if (!portActivity(port)) {
                entries << QStringLiteral("%1x1(alarm): 0,150,0").arg(x);
                break;
            }
            entries << QStringLiteral("%1x1(alarm): 0,220,0").arg(x)
                    << QStringLiteral("%1x2(led): 0,220,0").arg(x);
            break;
        case PortLos:
            entries << QStringLiteral("%1x1(alarm): 230,0,0").arg(x)
                    << QStringLiteral("%1x2(text): %2").arg(x).arg(panelText(tr("L", "loss of signal")));
            break;
        case PortAis:
            entries
                << QStringLiteral("%1x1(alarm): 240,200,0").arg(x)
                << QStringLiteral("%1x2(text): %2").arg(x).arg(panelText(tr("A", "alarm indication signal")));
            break;
        }
    }
    entries << QStringLiteral("7x1(alarm): %1").arg(alarmColour(QStringLiteral("80,80,80")));
    if (isSnmp())
        entries << QStringLiteral("9x1(rj45): %1,%2").arg(ethernetActivity() ? 1 : 0).arg(answered ? 1 : 0);
    else
        entries << QStringLiteral("8x1(db9): 0");
    entries << QStringLiteral("7x2(progressbar): %1,4").arg(answered ? load() : 0) << panelTooltip();
    const QString mark = monitoringEntries();
    if (!mark.isEmpty())
        entries << mark;
    return entries.join(QLatin1Char(';'));
}

QString DemoUnit::monitoringNote() const
{
    const QString heard = lastAnswer.isValid() ? lastAnswer.toString(QStringLiteral("HH:mm:ss")) : QString();
    if (!monitored)
        return tr("serial line closed, not monitored");
    if (stale)
        return heard.isEmpty() ? tr("has never answered") : tr("not heard from since %1").arg(heard);
    return heard.isEmpty() ? tr("no answer yet") : tr("last answered at %1").arg(heard);
}

QString DemoUnit::monitoringEntries()
{
    // A mark in the top right corner of the title strip.
    if (!monitored)
        return QStringLiteral("10x0(background): 255,140,0,1;10x0(text): X");
    if (stale)
        return QStringLiteral("10x0(background): 150,150,150,1;10x0(text): ?");
    return QString();
}
