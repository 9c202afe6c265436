#include "memory/connectmemorymap.h"

ConnectMemoryMap::ConnectMemoryMap(QObject *parent)
    : MemoryMap(nullptr)
{
    Q_UNUSED(parent)
}
