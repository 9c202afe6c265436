#include "device/map.h"

#include "device/devicedescriptor.h"
#include "device/devicemapitem.h"

#include <QCoreApplication>
#include <QEvent>
#include <QIcon>
#include <QItemSelectionModel>
#include <QPersistentModelIndex>
#include <QSignalMapper>
#include <QStandardItem>
#include <QStandardItemModel>

namespace {
constexpr int GroupKey = -1;

// The key an item answers to: its role value cut to 16 bits, so that groups
// (-1) read as 65535 and items without a key as 0.
unsigned short itemKey(const QStandardItem *item)
{
    return static_cast<unsigned short>(item->data(Map::ITEM_KEY_ROLE).toUInt() & 0xFFFF);
}

bool isUnitItem(const QStandardItem *item)
{
    const QVariant key = item->data(Map::ITEM_KEY_ROLE);
    return key.isValid() && key.toInt() != GroupKey;
}

bool isUnitKey(int id)
{
    return id >= 0 && id <= 0xFFFF;
}
} // namespace

Map::Map(QObject *parent)
    : QObject(parent)
    , model(new QStandardItemModel(this))
    , newRequestMapper(new QSignalMapper(this))
    , frontPanelMapper(new QSignalMapper(this))
    , systemMessageMapper(new QSignalMapper(this))
    , alarmStateMapper(new QSignalMapper(this))
    , settingsChangeMapper(new QSignalMapper(this))
    , uiClosedMapper(new QSignalMapper(this))
    , serialStateMapper(new QSignalMapper(this))
    , checkAddressMapper(new QSignalMapper(this))
{
    connect(newRequestMapper, &QSignalMapper::mappedInt, this, &Map::newRequest);
    connect(frontPanelMapper, &QSignalMapper::mappedInt, this, &Map::frontPanelChange);
    connect(systemMessageMapper, &QSignalMapper::mappedInt, this, &Map::systemEvent);
    connect(alarmStateMapper, &QSignalMapper::mappedInt, this, &Map::alarmStateEvent);
    connect(settingsChangeMapper, &QSignalMapper::mappedInt, this, &Map::settingsChangeEvent);
    connect(uiClosedMapper, &QSignalMapper::mappedInt, this, &Map::uiClosedEvent);
    connect(serialStateMapper, &QSignalMapper::mappedInt, this, &Map::serialStateEvent);
    connect(checkAddressMapper, &QSignalMapper::mappedInt, this, &Map::setAddress);

    connect(model, &QStandardItemModel::rowsInserted, this, &Map::onRowsInserted);
    connect(model, &QStandardItemModel::rowsAboutToBeRemoved, this, &Map::onRowsAboutToBeRemoved);
    connect(model, &QStandardItemModel::modelAboutToBeReset, this, &Map::onModelReset);
}

// The model, the mappers and the bindings are children; the descriptors stay
// with the host.
Map::~Map()
{
    // The model's destruction must not call back into a half-destroyed map.
    model->disconnect(this);
}

QStandardItemModel *Map::getModel() const
{
    return model;
}

DeviceDescriptor *Map::getDevice(unsigned short key) const
{
    DeviceMapItem *item = devices.value(key);
    return item ? item->getDescriptor() : nullptr;
}

DeviceMapItem *Map::getMapItem(unsigned short key) const
{
    return devices.value(key);
}

bool Map::contains(unsigned short key) const
{
    return devices.contains(key);
}

QList<unsigned short> Map::getDeviceIdList() const
{
    return devices.keys();
}

int Map::getDeviceCount() const
{
    return devices.size();
}

QModelIndex Map::getItemIndex(unsigned short key)
{
    // The invisible root answers to 0 and has no index.
    if (key == 0)
        return QModelIndex();
    // A key held by exactly one unit row is found there without walking the
    // tree; groups answer to 65535 and always need the walk.
    if (key != 0xFFFF && unitRowCount.value(key) == 1) {
        QStandardItem *cached = unitRowCache.value(key);
        if (cached && isUnitItem(cached) && itemKey(cached) == key)
            return cached->index();
        QStandardItem *found = findItem(model->invisibleRootItem(), key);
        if (!found)
            return QModelIndex();
        unitRowCache.insert(key, found);
        return found->index();
    }
    QStandardItem *found = findItem(model->invisibleRootItem(), key);
    return found ? found->index() : QModelIndex();
}

QStandardItem *Map::findItem(QStandardItem *from, unsigned short key) const
{
    if (!from)
        return nullptr;
    if (itemKey(from) == key)
        return from;
    for (int row = 0; row < from->rowCount(); ++row) {
        if (QStandardItem *found = findItem(from->child(row), key))
            return found;
    }
    return nullptr;
}

void Map::getGroupItemList(const QModelIndex &index, QList<unsigned short> &out) const
{
    if (!index.isValid())
        return;
    if (QStandardItem *item = model->itemFromIndex(index))
        groupItems(item, out);
}

void Map::groupItems(QStandardItem *item, QList<unsigned short> &out) const
{
    if (!item)
        return;
    for (int row = 0; row < item->rowCount(); ++row)
        groupItems(item->child(row), out);
    if (isUnitItem(item))
        out.append(itemKey(item));
}

bool Map::addressMatches(DeviceDescriptor *device, const QString &address) const
{
    const QString own = device->getParameter(DeviceDescriptor::DP_ADDRESS).toString();
    // Serial addresses are short numbers that may be written with leading zeros.
    if (address.size() < 4) {
        bool ok = false;
        const int ownNumber = own.toInt(&ok, 10);
        return ok && ownNumber == address.toInt(nullptr, 10);
    }
    return own == address;
}

bool Map::contains(QString address) const
{
    for (DeviceMapItem *item : devices) {
        if (addressMatches(item->getDescriptor(), address))
            return true;
    }
    return false;
}

bool Map::containsWithName(QString address, unsigned int typeCode) const
{
    for (DeviceMapItem *item : devices) {
        DeviceDescriptor *device = item->getDescriptor();
        if (device->getDeviceTypeCode() == typeCode && addressMatches(device, address))
            return true;
    }
    return false;
}

bool Map::contains(QString first, QString second) const
{
    // Hosts rely on this answering false.
    Q_UNUSED(first)
    Q_UNUSED(second)
    return false;
}

QStandardItem *Map::parentItemFor(const QModelIndex &index) const
{
    QStandardItem *root = model->invisibleRootItem();
    QStandardItem *item = index.isValid() ? model->itemFromIndex(index) : nullptr;
    if (!item)
        return root;
    // A unit never gets children: its siblings' parent is used instead.
    if (item->data(ITEM_KEY_ROLE).toInt() != GroupKey)
        return item->parent() ? item->parent() : root;
    return item;
}

unsigned short Map::addItem(QModelIndex parent, DeviceDescriptor *device, QVector<QString> strings)
{
    return insertDevice(parent, device, static_cast<unsigned short>(keyCounter + 1), strings);
}

unsigned short Map::addItem(
    QModelIndex parent, DeviceDescriptor *device, unsigned short key, QVector<QString> strings)
{
    return insertDevice(parent, device, key, strings);
}

unsigned short Map::insertDevice(
    QModelIndex parent, DeviceDescriptor *device, unsigned short key, const QVector<QString> &strings)
{
    // A descriptor may be registered once only: removing one of two entries
    // would delete it under the other.
    if (!device || registeredDevices.contains(device))
        return 0;

    QStandardItem *parentItem = parentItemFor(parent);

    auto *mapItem = new DeviceMapItem(this);
    mapItem->setDescriptor(device);
    mapItem->setStrings(strings);

    keyCounter = key;

    const QVariant iconValue = device->getParameter(DeviceDescriptor::DP_ICON);
    const QIcon icon = iconValue.canConvert<QIcon>() ? iconValue.value<QIcon>() : QIcon();
    auto *row = new QStandardItem(icon, device->getParameter(DeviceDescriptor::DP_NAME).toString());
    row->setData(int(key), ITEM_KEY_ROLE);
    parentItem->appendRow(row);
    if (unitRowCount.value(key) == 1)
        unitRowCache.insert(key, row);

    mapItem->setKey(key);
    // A key in use is taken over; the unit it named keeps its row only. Its
    // signals are cut first: they would otherwise be relayed under the key,
    // with its successor's request bytes.
    if (DeviceMapItem *previous = devices.value(key)) {
        disconnectDevice(key);
        registeredDevices.remove(previous->getDescriptor());
        previous->deleteLater();
    }
    connectDevice(mapItem);
    devices.insert(key, mapItem);
    registeredDevices.insert(device, key);

    refreshScanList();
    emit activeDeviceCountChanged(static_cast<unsigned int>(devices.size()));
    return key;
}

QStandardItem *Map::addGroup(QModelIndex parent, QString name)
{
    QStandardItem *parentItem = parentItemFor(parent);
    auto *group = new QStandardItem(QIcon(QStringLiteral(":/images/folder.png")), name);
    group->setData(GroupKey, ITEM_KEY_ROLE);
    parentItem->appendRow(group);
    return group;
}

unsigned short Map::addItem(QItemSelectionModel *selection, QString name)
{
    const bool inside = selection && selection->hasSelection();
    addGroup(inside ? selection->currentIndex() : QModelIndex(), name);
    return keyCounter;
}

void Map::renameItem(QModelIndex index, QString name)
{
    if (!index.isValid())
        return;
    QStandardItem *item = model->itemFromIndex(index);
    if (!item)
        return;
    item->setText(name);
    if (!isUnitItem(item))
        return;
    if (DeviceDescriptor *device = getDevice(itemKey(item)))
        device->setParameter(DeviceDescriptor::DP_NAME, name);
}

QList<unsigned short> Map::remove(QModelIndex index)
{
    QList<unsigned short> removed;
    if (!index.isValid())
        return removed;
    QStandardItem *item = model->itemFromIndex(index);
    if (!item)
        return removed;
    // Listeners of the count signal may change the model meanwhile.
    const QPersistentModelIndex row(index);
    removeItem(item, removed);
    if (row.isValid())
        model->removeRow(row.row(), row.parent());
    return removed;
}

void Map::removeItem(QStandardItem *item, QList<unsigned short> &out)
{
    if (!item)
        return;
    for (int row = 0; row < item->rowCount(); ++row)
        removeItem(item->child(row), out);
    if (!isUnitItem(item))
        return;

    const unsigned short key = itemKey(item);
    out.append(key);
    pendingRemovalKey = -1;
    if (DeviceMapItem *mapItem = devices.value(key)) {
        disconnectDevice(key);
        devices.remove(key);
        if (DeviceDescriptor *device = mapItem->getDescriptor()) {
            registeredDevices.remove(device);
            // Answers still queued for the unit are dropped with it.
            QCoreApplication::removePostedEvents(device, QEvent::MetaCall);
            device->deleteLater();
        }
        mapItem->deleteLater();
    }
    refreshScanList();
    emit activeDeviceCountChanged(static_cast<unsigned int>(devices.size()));
}

bool Map::deleteDevice(unsigned short key)
{
    const QModelIndex index = getItemIndex(key);
    // Key 65535 also names the first group; deleting a unit never takes a
    // whole group with it.
    QStandardItem *item = model->itemFromIndex(index);
    if (!item || !isUnitItem(item))
        return false;
    return remove(index).contains(key);
}

bool Map::scanInproccess() const
{
    return scanning;
}

void Map::addDeviceKey(unsigned short key)
{
    busyKeys.append(key);
}

void Map::removeDeviceKey(unsigned short key)
{
    busyKeys.removeOne(key);
}

void Map::setSerialState(unsigned short key, bool on)
{
    if (DeviceDescriptor *device = getDevice(key))
        device->setSerialState(on);
}

QHash<unsigned short, Core::AlarmType> Map::getAlarmMap() const
{
    QHash<unsigned short, Core::AlarmType> alarms;
    alarms.reserve(devices.size());
    for (auto it = devices.constBegin(); it != devices.constEnd(); ++it)
        alarms.insert(it.key(), it.value()->getDescriptor()->getAlarmState());
    return alarms;
}

void Map::setAlarm(QString address, Core::AlarmType alarm)
{
    for (DeviceMapItem *item : qAsConst(devices)) {
        DeviceDescriptor *device = item->getDescriptor();
        if (device->getParameter(DeviceDescriptor::DP_ADDRESS).toString() == address) {
            device->setAlarmState(alarm);
            return;
        }
    }
}

void Map::answer(unsigned short key, const QByteArray &data)
{
    if (DeviceDescriptor *device = getDevice(key))
        QMetaObject::invokeMethod(device, "setData", Qt::QueuedConnection, Q_ARG(const QByteArray &, data));
}

void Map::replyError(unsigned short key)
{
    if (DeviceDescriptor *device = getDevice(key))
        QMetaObject::invokeMethod(device, "setError", Qt::QueuedConnection);
}

void Map::startScan()
{
    scanning = true;
    scanList = devices.keys();
    scanListStale = false;
    scanIndex = 0;
    scanNextItem();
}

void Map::stopScan()
{
    scanning = false;
    deletePendingRemoval();
}

void Map::scanNextItem()
{
    if (scanning) {
        if (scanListStale) {
            scanList = devices.keys();
            scanListStale = false;
        }
        if (scanIndex >= scanList.size()) {
            scanIndex = 0;
            scanning = false;
            return;
        }
        currentScanKey = scanList.at(scanIndex++);
        DeviceDescriptor *device = getDevice(currentScanKey);
        // A unit that left or is busy ends the pass: the host starts the next.
        if (!device || busyKeys.contains(currentScanKey)) {
            scanning = false;
        } else {
            device->updateAlarmStatus(true);
            emit updateAlarmFinished(currentScanKey);
        }
    }
    deletePendingRemoval();
}

void Map::deletePendingRemoval()
{
    if (!isUnitKey(pendingRemovalKey))
        return;
    const auto key = static_cast<unsigned short>(pendingRemovalKey);
    pendingRemovalKey = -1;
    DeviceMapItem *item = devices.take(key);
    if (!item)
        return;
    if (DeviceDescriptor *device = item->getDescriptor()) {
        registeredDevices.remove(device);
        newRequestMapper->removeMappings(device);
        device->deleteLater();
    }
    item->deleteLater();
    refreshScanList();
}

// A host's parent object may delete a unit while the map still holds it: the
// unit then leaves as on removal. Only its QObject part is left by now, so
// the binding is cleared first and nothing treats it as a descriptor.
void Map::forgetDevice(QObject *device)
{
    const auto found = registeredDevices.constFind(device);
    if (found == registeredDevices.constEnd())
        return;
    const unsigned short key = found.value();
    registeredDevices.erase(found);
    DeviceMapItem *item = devices.value(key);
    if (!item)
        return;
    item->setDescriptor(nullptr);
    if (deleteDevice(key) || devices.value(key) != item)
        return;
    // No unit row answers to the key (0, or 65535 behind a group): the unit
    // still leaves the registry and the scan.
    devices.remove(key);
    item->deleteLater();
    refreshScanList();
    emit activeDeviceCountChanged(static_cast<unsigned int>(devices.size()));
}

void Map::connectDevice(DeviceMapItem *item)
{
    DeviceDescriptor *device = item ? item->getDescriptor() : nullptr;
    if (!device)
        return;
    const int key = static_cast<int>(item->getKey());
    for (QSignalMapper *mapper : mappers())
        mapper->setMapping(device, key);

    const auto map = qOverload<>(&QSignalMapper::map);
    connect(device, &DeviceDescriptor::newRequest, newRequestMapper, map, Qt::QueuedConnection);
    connect(device, &DeviceDescriptor::frontPanelChanged, frontPanelMapper, map, Qt::QueuedConnection);
    connect(device, &DeviceDescriptor::systemMessage, systemMessageMapper, map, Qt::QueuedConnection);
    connect(device, &DeviceDescriptor::alarmStateChanged, alarmStateMapper, map, Qt::QueuedConnection);
    connect(
        device, &DeviceDescriptor::interfSettingsChanged, settingsChangeMapper, map, Qt::QueuedConnection);
    connect(device, &DeviceDescriptor::checkAddr, checkAddressMapper, map, Qt::QueuedConnection);
    connect(device, &DeviceDescriptor::uiClosed, uiClosedMapper, map, Qt::QueuedConnection);
    connect(device, &DeviceDescriptor::serialState, serialStateMapper, map, Qt::QueuedConnection);
    connect(device, &DeviceDescriptor::statusUpdated, this, &Map::scanNextItem, Qt::QueuedConnection);
    // Direct: the unit must be out of the registry before the pointer dangles.
    connect(device, &QObject::destroyed, this, &Map::forgetDevice);
}

void Map::disconnectDevice(int id)
{
    if (!isUnitKey(id))
        return;
    DeviceDescriptor *device = getDevice(static_cast<unsigned short>(id));
    if (!device)
        return;
    for (QSignalMapper *mapper : mappers()) {
        mapper->removeMappings(device);
        // A mapper keeps watching for the unit's destruction and then searches
        // all its senders: with thousands of units that adds up.
        disconnect(device, &QObject::destroyed, mapper, nullptr);
    }
    disconnect(device, &QObject::destroyed, this, &Map::forgetDevice);

    // The address check stays connected: the descriptor is deleted right after.
    const auto map = qOverload<>(&QSignalMapper::map);
    disconnect(device, &DeviceDescriptor::newRequest, newRequestMapper, map);
    disconnect(device, &DeviceDescriptor::frontPanelChanged, frontPanelMapper, map);
    disconnect(device, &DeviceDescriptor::systemMessage, systemMessageMapper, map);
    disconnect(device, &DeviceDescriptor::alarmStateChanged, alarmStateMapper, map);
    disconnect(device, &DeviceDescriptor::interfSettingsChanged, settingsChangeMapper, map);
    disconnect(device, &DeviceDescriptor::uiClosed, uiClosedMapper, map);
    disconnect(device, &DeviceDescriptor::serialState, serialStateMapper, map);
    disconnect(device, &DeviceDescriptor::statusUpdated, this, &Map::scanNextItem);
}

std::array<QSignalMapper *, 8> Map::mappers() const
{
    return {newRequestMapper, frontPanelMapper, systemMessageMapper, alarmStateMapper, settingsChangeMapper,
        uiClosedMapper, serialStateMapper, checkAddressMapper};
}

DeviceDescriptor *Map::descriptorFor(int id) const
{
    return isUnitKey(id) ? getDevice(static_cast<unsigned short>(id)) : nullptr;
}

void Map::setAddress(int id)
{
    DeviceDescriptor *device = descriptorFor(id);
    if (!device)
        return;
    // The unit's own address counts too: proposing it again is refused.
    device->setNewIP(!contains(device->getNewAddr()));
}

void Map::newRequest(int id)
{
    if (DeviceDescriptor *device = descriptorFor(id))
        emit request(id, device->getRequestData());
}

void Map::frontPanelChange(int id)
{
    if (DeviceDescriptor *device = descriptorFor(id))
        emit frontpanel(static_cast<unsigned short>(id), device->getFrontPanel());
}

void Map::systemEvent(int id)
{
    if (DeviceDescriptor *device = descriptorFor(id))
        emit systemMessage(static_cast<unsigned short>(id), device->getSystemMessage());
}

void Map::alarmStateEvent(int id)
{
    if (descriptorFor(id))
        emit alarmStateChanged(static_cast<unsigned short>(id));
}

void Map::settingsChangeEvent(int id)
{
    if (descriptorFor(id))
        emit settingsChanged(static_cast<unsigned short>(id));
}

void Map::uiClosedEvent(int id)
{
    if (descriptorFor(id))
        emit uiClosed(static_cast<unsigned short>(id));
}

void Map::serialStateEvent(int id)
{
    if (DeviceDescriptor *device = descriptorFor(id))
        emit serialState(static_cast<unsigned short>(id), device->getSerialState());
}

void Map::refreshScanList()
{
    scanListStale = true;
}

void Map::countUnitRows(QStandardItem *item, int delta)
{
    for (int row = 0; row < item->rowCount(); ++row) {
        if (QStandardItem *child = item->child(row))
            countUnitRows(child, delta);
    }
    if (!isUnitItem(item))
        return;
    const unsigned short key = itemKey(item);
    const int count = unitRowCount.value(key) + delta;
    if (count > 0)
        unitRowCount.insert(key, count);
    else
        unitRowCount.remove(key);
    if (delta < 0 && unitRowCache.value(key) == item)
        unitRowCache.remove(key);
}

void Map::onRowsInserted(const QModelIndex &parent, int first, int last)
{
    QStandardItem *parentItem = parent.isValid() ? model->itemFromIndex(parent) : model->invisibleRootItem();
    if (!parentItem)
        return;
    for (int row = first; row <= last; ++row) {
        if (QStandardItem *item = parentItem->child(row))
            countUnitRows(item, +1);
    }
}

void Map::onRowsAboutToBeRemoved(const QModelIndex &parent, int first, int last)
{
    QStandardItem *parentItem = parent.isValid() ? model->itemFromIndex(parent) : model->invisibleRootItem();
    if (!parentItem)
        return;
    for (int row = first; row <= last; ++row) {
        if (QStandardItem *item = parentItem->child(row))
            countUnitRows(item, -1);
    }
}

void Map::onModelReset()
{
    unitRowCount.clear();
    unitRowCache.clear();
}
