#ifndef DEVICEMAPITEM_H
#define DEVICEMAPITEM_H

#include "muxcore_export.h"

#include <QObject>
#include <QString>
#include <QVector>

class DeviceDescriptor;

/**
 * Binds one unit's descriptor to its key inside a Map.
 *
 * The map creates one per unit (as its child) in Map::addItem() and deletes
 * it, after the descriptor, when the unit is removed. The two numbers and the
 * strings belong to the host (for example what it stores with the map); the
 * library only carries them.
 */
class MUXCORE_EXPORT DeviceMapItem : public QObject
{
    Q_OBJECT
public:
    /// An empty binding: no descriptor, numbers 0.0, key 0.
    explicit DeviceMapItem(QObject *parent = nullptr);
    /// Leaves the descriptor alone: the map deletes it.
    ~DeviceMapItem() override;

    /// The unit's descriptor; not owned: the map deletes it alongside the item.
    DeviceDescriptor *getDescriptor() const;
    /// Binds a descriptor; not owned.
    void setDescriptor(DeviceDescriptor *descriptor);

    /// The host's first number; 0.0 until set.
    double getFirstNumber() const;
    /// Sets the host's first number.
    void setFirstNumber(double value);
    /// The host's second number; 0.0 until set.
    double getSecondNumber() const;
    /// Sets the host's second number.
    void setSecondNumber(double value);

    /// The host's strings, as given to Map::addItem().
    QVector<QString> getStrings() const;
    /// Replaces the host's strings.
    void setStrings(const QVector<QString> &strings);

    /// The unit's key as the map issued it; it always fits 16 bits.
    unsigned int getKey() const;
    /// Set by the map; a host never needs to.
    void setKey(unsigned int key);

private:
    DeviceDescriptor *descriptor = nullptr;
    double firstNumber = 0.0;
    double secondNumber = 0.0;
    QVector<QString> strings;
    unsigned int key = 0;
};

#endif // DEVICEMAPITEM_H
