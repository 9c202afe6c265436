#ifndef MAP_H
#define MAP_H

#include "muxcore_export.h"

#include "core/core.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QModelIndex>
#include <QObject>
#include <QString>
#include <QVector>

#include <array>

class DeviceDescriptor;
class DeviceMapItem;
class QItemSelectionModel;
class QSignalMapper;
class QStandardItem;
class QStandardItemModel;

// Every managed unit under a 16-bit key, arranged in a tree of named groups.
// The map polls the units one after another, routes the host's answers back to
// them and relays their signals tagged with the key. All connections from the
// units are queued, so nothing a unit emits is handled inside its emission.
class MUXCORE_EXPORT Map : public QObject
{
    Q_OBJECT
public:
    // Model role holding a unit's key as int; -1 marks a group.
    static constexpr int ITEM_KEY_ROLE = Qt::UserRole + 1;

    explicit Map(QObject *parent = nullptr);
    ~Map() override;

    // The group tree for the host's view; change it only through the map.
    QStandardItemModel *getModel() const;
    // Null for an unknown key.
    DeviceDescriptor *getDevice(unsigned short key) const;
    // The binding of a unit, for the host's own values; null for an unknown key.
    DeviceMapItem *getMapItem(unsigned short key) const;
    bool contains(unsigned short key) const;
    QList<unsigned short> getDeviceIdList() const;
    int getDeviceCount() const;
    QModelIndex getItemIndex(unsigned short key);
    // Depth-first, the item itself first. The key role is cut to 16 bits, so a
    // group (-1) answers to 65535 and the invisible root to 0.
    QStandardItem *findItem(QStandardItem *from, unsigned short key) const;
    // The unit keys at and below index, descendants before their parent.
    void getGroupItemList(const QModelIndex &index, QList<unsigned short> &out) const;
    void groupItems(QStandardItem *item, QList<unsigned short> &out) const;

    // Whether a unit has this address. Short texts (serial addresses) are
    // compared as numbers, so "5" finds "005"; longer ones must match exactly.
    bool contains(QString address) const;
    // The same, for units of one device type only.
    bool containsWithName(QString address, unsigned int typeCode) const;
    // Always false: kept for hosts that call it.
    bool contains(QString first, QString second) const;

    // Adds a unit under the next key, inside the group at parent or beside the
    // unit at parent. Returns the key.
    unsigned short addItem(QModelIndex parent, DeviceDescriptor *device, QVector<QString> strings);
    // The same under a given key; later automatic keys continue from it. A key
    // in use is taken over in the registry.
    unsigned short addItem(
        QModelIndex parent, DeviceDescriptor *device, unsigned short key, QVector<QString> strings);
    QStandardItem *addGroup(QModelIndex parent, QString name);
    // Adds a group where the user is: inside the current group, beside the
    // current unit. Returns the key counter, which a group leaves unchanged.
    unsigned short addItem(QItemSelectionModel *selection, QString name);
    // A unit's new name is also given to its descriptor.
    void renameItem(QModelIndex index, QString name);
    // Removes the row at index with every unit below it; returns their keys.
    QList<unsigned short> remove(QModelIndex index);
    // Takes the units at and below item out of the registry (not the rows).
    void removeItem(QStandardItem *item, QList<unsigned short> &out);
    bool deleteDevice(unsigned short key);

    bool scanInproccess() const;
    // A busy unit ends a scan pass when its turn comes.
    void addDeviceKey(unsigned short key);
    void removeDeviceKey(unsigned short key);
    void setSerialState(unsigned short key, bool on);
    // Every unit's own alarm level by key.
    QHash<unsigned short, Core::AlarmType> getAlarmMap() const;
    // Sets the level of the first unit with exactly this address.
    void setAlarm(QString address, Core::AlarmType alarm);

signals:
    void request(int key, QByteArray data);
    void frontpanel(unsigned short key, QString text);
    void systemMessage(unsigned short key, QString text);
    void alarmStateChanged(unsigned short key);
    void settingsChanged(unsigned short key);
    void uiClosed(unsigned short key);
    void serialState(unsigned short key, bool on);
    // A unit's poll was started (its answer comes later).
    void updateAlarmFinished(unsigned short value);
    void activeDeviceCountChanged(unsigned int count);

public slots:
    // Hands the reply to the unit on a later pass of the event loop.
    void answer(unsigned short key, const QByteArray &data);
    void replyError(unsigned short key);
    void startScan();
    void stopScan();
    void disconnectDevice(int id);
    // Tells the unit whether the address it proposes is still free.
    void setAddress(int id);

private slots:
    void newRequest(int id);
    void frontPanelChange(int id);
    void systemEvent(int id);
    void alarmStateEvent(int id);
    void settingsChangeEvent(int id);
    void uiClosedEvent(int id);
    void serialStateEvent(int id);
    void scanNextItem();

protected:
    void connectDevice(DeviceMapItem *item);

private:
    unsigned short insertDevice(
        QModelIndex parent, DeviceDescriptor *device, unsigned short key, const QVector<QString> &strings);
    QStandardItem *parentItemFor(const QModelIndex &index) const;
    std::array<QSignalMapper *, 8> mappers() const;
    DeviceDescriptor *descriptorFor(int id) const;
    bool addressMatches(DeviceDescriptor *device, const QString &address) const;
    void refreshScanList();
    void deletePendingRemoval();
    void forgetDevice(QObject *device);
    void countUnitRows(QStandardItem *item, int delta);
    void onRowsInserted(const QModelIndex &parent, int first, int last);
    void onRowsAboutToBeRemoved(const QModelIndex &parent, int first, int last);
    void onModelReset();

    unsigned short keyCounter = 0;
    QHash<unsigned short, DeviceMapItem *> devices;
    QList<unsigned short> scanList;
    QList<unsigned short> busyKeys;
    QStandardItemModel *model;
    QSignalMapper *newRequestMapper;
    QSignalMapper *frontPanelMapper;
    QSignalMapper *systemMessageMapper;
    QSignalMapper *alarmStateMapper;
    QSignalMapper *settingsChangeMapper;
    QSignalMapper *uiClosedMapper;
    QSignalMapper *serialStateMapper;
    QSignalMapper *checkAddressMapper;
    bool scanning = false;
    int scanIndex = 0;
    unsigned short currentScanKey = 0;
    int pendingRemovalKey = -1;

    // The scan list is rebuilt when next read rather than on every add or
    // remove, which keeps bulk changes linear.
    bool scanListStale = false;
    // Unit rows per key, and the row of a key held by exactly one row: lets
    // getItemIndex() skip the tree walk without changing which row it finds.
    QHash<unsigned short, int> unitRowCount;
    QHash<unsigned short, QStandardItem *> unitRowCache;
    // Each registered descriptor's key. Held as QObject so that a descriptor
    // destroyed behind the map's back can still be looked up.
    QHash<const QObject *, unsigned short> registeredDevices;
};

#endif // MAP_H
