#ifndef MEMORYMAP_H
#define MEMORYMAP_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QVariant>
#include <QVector>

#include <memory>

class BaseRawType;
class SnmpIndex;

/**
 * A named set of items that together cover one memory area of a unit, moved
 * in and out as a whole: byte images, SNMP variable sets and JSON.
 *
 * A device model fills the map once with its items; the map owns and deletes
 * them. Items are visited in no defined order and the first failing item
 * stops a walk: the items visited before keep what they did.
 */
class MUXCORE_EXPORT MemoryMap : public QObject
{
    Q_OBJECT
public:
    /// An empty map.
    explicit MemoryMap(QObject *parent = nullptr);
    /// Deletes every item.
    ~MemoryMap() override;

    /**
     * Stores @p item under @p name and takes ownership of it.
     *
     * An item already stored under the name is destroyed. A null item, or one
     * the map already holds under another name, is refused.
     */
    void addItem(QString name, BaseRawType *item);
    /// The item stored under @p name; null when there is none.
    BaseRawType *getItem(QString name);
    /// Whether an item is stored under @p name.
    bool contains(QString name);

    /// Fills every item from a memory image (BaseRawType::readData()); false when the image is too short for
    /// an item.
    bool loadData(QByteArray *image);
    /// Writes every item into a memory image, which is never grown; false when it is too short for an item.
    bool saveData(QByteArray *image);
    /**
     * Gives every item its variables from a received set and puts the items in SNMP mode.
     *
     * The received variables also count as sent, so that they are not sent back unchanged.
     * Each OID is examined once for all items. Start addresses that lie within one another,
     * and a set of which no item takes anything, are reported in the muxcore.memory logging
     * category.
     */
    bool loadData(QHash<QString, QVariant> *variables);
    /// Adds to @p toSend only the variables that changed since last received or sent.
    bool saveData(QHash<QString, QVariant> *toSend);

    /**
     * The item values as an indented JSON document.
     *
     * The library's items all write under one key (BaseRawType::name), so of
     * several scalar items only one value survives: keep one scalar per map
     * you serialise.
     */
    QByteArray serialise();
    /// Restores the item values from serialise() text; text that does not parse restores from an empty
    /// object.
    bool deserialise(const QByteArray &text);

private:
    QHash<QString, BaseRawType *> items;
    QHash<QString, QVariant> lastSent;
    // The same items in the order they were added: whole-map walks run over
    // a flat list rather than the hash's buckets.
    QVector<BaseRawType *> order;
    std::unique_ptr<SnmpIndex> snmpIndex;
};

#endif // MEMORYMAP_H
