#include "memory/configmemorymap.h"

ConfigMemoryMap::ConfigMemoryMap(QObject *parent)
    : MemoryMap(parent)
{
}
