#include "device/devicemapitem.h"

DeviceMapItem::DeviceMapItem(QObject *parent)
    : QObject(parent)
{
}

DeviceMapItem::~DeviceMapItem() = default;

DeviceDescriptor *DeviceMapItem::getDescriptor() const
{
    return descriptor;
}

void DeviceMapItem::setDescriptor(DeviceDescriptor *value)
{
    descriptor = value;
}

double DeviceMapItem::getFirstNumber() const
{
    return firstNumber;
}

void DeviceMapItem::setFirstNumber(double value)
{
    firstNumber = value;
}

double DeviceMapItem::getSecondNumber() const
{
    return secondNumber;
}

void DeviceMapItem::setSecondNumber(double value)
{
    secondNumber = value;
}

QVector<QString> DeviceMapItem::getStrings() const
{
    return strings;
}

void DeviceMapItem::setStrings(const QVector<QString> &value)
{
    strings = value;
}

unsigned int DeviceMapItem::getKey() const
{
    return key;
}

void DeviceMapItem::setKey(unsigned int value)
{
    key = value;
}
