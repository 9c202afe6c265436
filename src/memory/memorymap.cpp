#include "memory/memorymap.h"

#include "core/logging_p.h"
#include "memory/baserawtype.h"
#include "memory/snmpindex_p.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

// The hazard of overlapping start addresses is the host's to fix, so it is
// named item by item.
void warnOverlaps(const QHash<QString, BaseRawType *> &items, const QVector<BaseRawType *> &order,
    const QVector<QPair<int, int>> &overlaps)
{
    if (overlaps.isEmpty())
        return;
    QHash<const BaseRawType *, QString> names;
    for (auto it = items.cbegin(); it != items.cend(); ++it)
        names.insert(it.value(), it.key());
    for (int k = 0; k < overlaps.size() && k < SnmpIndex::maxOverlaps; ++k) {
        const BaseRawType *inner = order.at(overlaps.at(k).first);
        const BaseRawType *outer = order.at(overlaps.at(k).second);
        qCWarning(lcMemory).noquote()
            << QStringLiteral("SNMP start address \"%1\" of item \"%2\" lies within \"%3\" of item \"%4\": "
                              "the first item also takes the second one's variables and may send stale "
                              "values for them")
                   .arg(inner->getSnmpStartAddress(), names.value(inner), outer->getSnmpStartAddress(),
                       names.value(outer));
    }
    if (overlaps.size() > SnmpIndex::maxOverlaps)
        qCWarning(lcMemory) << "More items with overlapping SNMP start addresses are not listed";
}

} // namespace

MemoryMap::MemoryMap(QObject *parent)
    : QObject(parent)
    , snmpIndex(new SnmpIndex)
{
}

MemoryMap::~MemoryMap()
{
    qDeleteAll(items);
}

void MemoryMap::addItem(QString name, BaseRawType *item)
{
    if (!item)
        return;
    const auto existing = items.constFind(name);
    if (existing != items.cend() && existing.value() == item)
        return;
    // Held under another name, it would be destroyed twice.
    if (order.contains(item))
        return;
    if (existing != items.cend()) {
        // The new item takes the old one's place in the walk.
        const int slot = order.indexOf(existing.value());
        order[slot] = item;
        delete existing.value();
        snmpIndex->itemAdded(slot);
    } else {
        order.append(item);
        snmpIndex->itemAdded(order.size() - 1);
    }
    items.insert(name, item);
}

BaseRawType *MemoryMap::getItem(QString name)
{
    return items.value(name, nullptr);
}

bool MemoryMap::contains(QString name)
{
    return items.contains(name);
}

bool MemoryMap::loadData(QByteArray *image)
{
    if (!image)
        return false;
    for (BaseRawType *item : qAsConst(order)) {
        if (!item->readData(image))
            return false;
    }
    return true;
}

bool MemoryMap::saveData(QByteArray *image)
{
    if (!image)
        return false;
    for (BaseRawType *item : qAsConst(order)) {
        if (!item->writeData(image))
            return false;
    }
    return true;
}

bool MemoryMap::loadData(QHash<QString, QVariant> *variables)
{
    if (!variables)
        return false;
    warnOverlaps(items, order, snmpIndex->refresh(order));
    // Every item still gets the set through its own readData, which device
    // models may override; the base one takes its share of the pass. The
    // pass also records the set as last sent.
    SnmpIndex::Pass pass(*snmpIndex, variables, lastSent);
    for (int slot = 0; slot < order.size(); ++slot) {
        BaseRawType *item = order.at(slot);
        pass.visit(slot, item);
        if (!item->readData(variables))
            return false;
    }
    // OIDs in another form than the start addresses (with or without the
    // leading dot) match nothing and leave every value at its default.
    const QString address = snmpIndex->anAddress();
    const bool missed = !variables->isEmpty() && !address.isEmpty() && pass.tookNothing();
    if (missed && !snmpIndex->missReported) {
        qCWarning(lcMemory).noquote()
            << QStringLiteral("No item took any of the %1 variables received: no OID contains an item's "
                              "SNMP start address (OID \"%2\", start address \"%3\")")
                   .arg(variables->size())
                   .arg(variables->cbegin().key(), address);
    }
    snmpIndex->missReported = missed;
    return true;
}

bool MemoryMap::saveData(QHash<QString, QVariant> *toSend)
{
    if (!toSend)
        return false;
    for (BaseRawType *item : qAsConst(order)) {
        if (!item->writeData(toSend, lastSent))
            return false;
    }
    return true;
}

QByteArray MemoryMap::serialise()
{
    QJsonObject object;
    for (BaseRawType *item : qAsConst(order))
        item->serialise(object);
    return QJsonDocument(object).toJson();
}

bool MemoryMap::deserialise(const QByteArray &text)
{
    // Anything but a JSON object (a parse error, an array) reads as {}.
    const QJsonObject object = QJsonDocument::fromJson(text).object();
    for (BaseRawType *item : qAsConst(order)) {
        if (!item->deserialise(object))
            return false;
    }
    return true;
}
