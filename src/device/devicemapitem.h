#ifndef DEVICEMAPITEM_H
#define DEVICEMAPITEM_H

#include "muxcore_export.h"

#include <QObject>
#include <QString>
#include <QVector>

class DeviceDescriptor;

// Binds one unit's descriptor to its key inside a Map. The two numbers and the
// strings belong to the host (for example what it stores with the map).
class MUXCORE_EXPORT DeviceMapItem : public QObject
{
    Q_OBJECT
public:
    explicit DeviceMapItem(QObject *parent = nullptr);
    ~DeviceMapItem() override;

    // Not owned: the Map deletes the descriptor alongside the item.
    DeviceDescriptor *getDescriptor() const;
    void setDescriptor(DeviceDescriptor *descriptor);

    double getFirstNumber() const;
    void setFirstNumber(double value);
    double getSecondNumber() const;
    void setSecondNumber(double value);

    QVector<QString> getStrings() const;
    void setStrings(const QVector<QString> &strings);

    // The unit's 16-bit key.
    unsigned int getKey() const;
    void setKey(unsigned int key);

private:
    DeviceDescriptor *descriptor = nullptr;
    double firstNumber = 0.0;
    double secondNumber = 0.0;
    QVector<QString> strings;
    unsigned int key = 0;
};

#endif // DEVICEMAPITEM_H
