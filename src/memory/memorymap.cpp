#include "memory/memorymap.h"

#include "memory/baserawtype.h"

#include <QJsonDocument>
#include <QJsonObject>

MemoryMap::MemoryMap(QObject *parent)
    : QObject(parent)
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
        order[order.indexOf(existing.value())] = item;
        delete existing.value();
    } else {
        order.append(item);
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
    for (auto it = variables->cbegin(); it != variables->cend(); ++it)
        lastSent.insert(it.key(), it.value());
    for (BaseRawType *item : qAsConst(order)) {
        if (!item->readData(variables))
            return false;
    }
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
