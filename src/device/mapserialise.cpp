#include "device/mapserialise.h"

MapSerialise::MapSerialise(QObject *parent)
    : QObject(parent)
{
}
