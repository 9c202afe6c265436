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

// A named set of items that together cover one memory area of a unit, moved
// in and out as a whole: byte images, SNMP variable sets and JSON. Items are
// visited in no defined order and the first failing item stops the walk.
class MUXCORE_EXPORT MemoryMap : public QObject
{
    Q_OBJECT
public:
    explicit MemoryMap(QObject *parent = nullptr);
    ~MemoryMap() override;

    // Takes ownership; an item already stored under the name is destroyed.
    // A null item, or one the map already holds under another name, is refused.
    void addItem(QString name, BaseRawType *item);
    BaseRawType *getItem(QString name);
    bool contains(QString name);

    bool loadData(QByteArray *image);
    bool saveData(QByteArray *image);
    // The received variables also count as sent, so that they are not sent
    // back unchanged. Each OID is read once for all items. Start addresses
    // that lie within one another, and a set of which no item takes
    // anything, are reported in the muxcore.memory logging category.
    bool loadData(QHash<QString, QVariant> *variables);
    // Adds only the variables that changed since last received or sent.
    bool saveData(QHash<QString, QVariant> *toSend);

    // The item values as an indented JSON document.
    QByteArray serialise();
    // Text that does not parse as a JSON object restores from an empty object.
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
