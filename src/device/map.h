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

/**
 * Every managed unit under a 16-bit key, arranged in a tree of named groups.
 *
 * The host owns one map. The map owns a DeviceMapItem per unit and the
 * group tree model; it deletes a unit's descriptor (deleteLater()) when the
 * unit is removed, but not when the map itself is destroyed.
 *
 * The map polls the units one after another (startScan()), routes the host's
 * answers back to them (answer(), replyError()) and relays their signals
 * tagged with the key. All connections from the units are queued, so nothing
 * a unit emits is handled inside its emission. Keys are issued from 1
 * upward; 65535 stands for no unit in the scene's lookups.
 */
class MUXCORE_EXPORT Map : public QObject
{
    Q_OBJECT
public:
    /// Model role holding a unit's key as int; -1 marks a group.
    static constexpr int ITEM_KEY_ROLE = Qt::UserRole + 1;

    /// An empty map with an empty group tree.
    explicit Map(QObject *parent = nullptr);
    /// Deletes the tree and the bindings; the descriptors are left to their owner.
    ~Map() override;

    /// The group tree for the host's view, owned by the map; change it only through the map.
    QStandardItemModel *getModel() const;
    /// The unit's descriptor; null for an unknown key.
    DeviceDescriptor *getDevice(unsigned short key) const;
    /// The binding of a unit, for the host's own values; null for an unknown key.
    DeviceMapItem *getMapItem(unsigned short key) const;
    /// Whether a unit is registered under @p key.
    bool contains(unsigned short key) const;
    /// The registered keys, in no particular order.
    QList<unsigned short> getDeviceIdList() const;
    /// The number of registered units.
    int getDeviceCount() const;
    /// The tree index of the unit's row (the first one found by findItem()); invalid when there is none.
    QModelIndex getItemIndex(unsigned short key);
    /**
     * The first item at or below @p from with this key, depth-first, the item itself first; null if none.
     *
     * The key role is cut to 16 bits, so a group (-1) answers to 65535 and
     * the invisible root to 0.
     */
    QStandardItem *findItem(QStandardItem *from, unsigned short key) const;
    /// Appends the unit keys at and below @p index to @p out, descendants before their parent.
    void getGroupItemList(const QModelIndex &index, QList<unsigned short> &out) const;
    /// The same as getGroupItemList(), from an item.
    void groupItems(QStandardItem *item, QList<unsigned short> &out) const;

    /**
     * Whether a unit has this address (its DeviceDescriptor::DP_ADDRESS).
     *
     * Texts shorter than 4 characters (serial addresses) are compared as
     * numbers, so "5" finds "005"; longer ones must match exactly.
     */
    bool contains(QString address) const;
    /// The same, for units of one device type code only.
    bool containsWithName(QString address, unsigned int typeCode) const;
    /// Always false: kept for hosts that call it.
    bool contains(QString first, QString second) const;

    /**
     * Registers a unit under the next key and adds its row.
     *
     * The row goes inside the group at @p parent, beside the unit at @p parent,
     * or at the top level for an invalid index. The map takes over deleting
     * @p device. Emits activeDeviceCountChanged(). @return the key (1 for the first unit).
     */
    unsigned short addItem(QModelIndex parent, DeviceDescriptor *device, QVector<QString> strings);
    /**
     * The same under a given key, for example one read back from the host's store.
     *
     * Later automatic keys continue from it. A key in use is taken over in
     * the registry, so keep keys unique.
     */
    unsigned short addItem(
        QModelIndex parent, DeviceDescriptor *device, unsigned short key, QVector<QString> strings);
    /// Adds a group row named @p name, placed as addItem() places a unit; returns its item.
    QStandardItem *addGroup(QModelIndex parent, QString name);
    /// Adds a group where the user is: inside the current group, beside the current unit.
    /// @return the key counter, which a group leaves unchanged.
    unsigned short addItem(QItemSelectionModel *selection, QString name);
    /// Renames a row; a unit's new name is also given to its descriptor as DeviceDescriptor::DP_NAME.
    void renameItem(QModelIndex index, QString name);
    /**
     * Removes the row at @p index with every unit below it.
     *
     * Their descriptors and bindings are deleted later (deleteLater());
     * activeDeviceCountChanged() follows once per unit. @return their keys, descendants first.
     */
    QList<unsigned short> remove(QModelIndex index);
    /// Takes the units at and below @p item out of the registry (not the rows), appending their keys to @p
    /// out.
    void removeItem(QStandardItem *item, QList<unsigned short> &out);
    /// Removes a unit by key as remove() does; false for an unknown key.
    bool deleteDevice(unsigned short key);

    /// Whether a scan pass is running.
    bool scanInproccess() const;
    /// Marks a unit busy (for example while its window exchanges data): a scan pass ends at it.
    void addDeviceKey(unsigned short key);
    /// Takes back one addDeviceKey() of this key.
    void removeDeviceKey(unsigned short key);
    /// Opens or closes a unit's serial connection (DeviceDescriptor::setSerialState()).
    void setSerialState(unsigned short key, bool on);
    /// Every unit's own alarm level by key, for DeviceScene::setAlarmMap().
    QHash<unsigned short, Core::AlarmType> getAlarmMap() const;
    /// Sets the level of the first unit with exactly this address; nothing when none has it.
    void setAlarm(QString address, Core::AlarmType alarm);

signals:
    /// A unit has a request: send @p data to the unit @p key, then call answer() or replyError().
    void request(int key, QByteArray data);
    /// A unit's front panel changed; @p text is its new description (for DeviceScene::setFrontPanel()).
    void frontpanel(unsigned short key, QString text);
    /// A unit's system message, with its text.
    void systemMessage(unsigned short key, QString text);
    /// A unit's alarm level changed; read getAlarmMap().
    void alarmStateChanged(unsigned short key);
    /// A unit's interface settings changed.
    void settingsChanged(unsigned short key);
    /// A unit's configuration window was closed.
    void uiClosed(unsigned short key);
    /// A unit's serial connection was opened or closed.
    void serialState(unsigned short key, bool on);
    /// A unit's alarm poll was started (its answer comes later).
    void updateAlarmFinished(unsigned short value);
    /// The number of registered units changed.
    void activeDeviceCountChanged(unsigned int count);

public slots:
    /// Hands the reply to the unit's DeviceDescriptor::setData() on a later pass of the event loop; unknown
    /// keys are ignored.
    void answer(unsigned short key, const QByteArray &data);
    /// Tells the unit its request failed (DeviceDescriptor::setError(), queued); unknown keys are ignored.
    void replyError(unsigned short key);
    /**
     * Starts a pass over a snapshot of the registered keys.
     *
     * Each unit is asked to poll its alarm level, and updateAlarmFinished()
     * follows at once; the next unit is taken when any unit emits
     * DeviceDescriptor::statusUpdated(). The pass ends at the end of the
     * snapshot, at a removed or busy unit, or on stopScan(). The map has no
     * timer: repeating passes is the host's business.
     */
    void startScan();
    /// Ends the running pass; later statusUpdated() signals poll nothing.
    void stopScan();
    /// Cuts the unit's signals off from the map (used on removal).
    void disconnectDevice(int id);
    /// Tells the unit whether the address it proposes is still free (its own counts as taken).
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
    /// Connects a newly added unit's signals to the map, queued.
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
