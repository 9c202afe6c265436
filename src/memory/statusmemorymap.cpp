#include "memory/statusmemorymap.h"

StatusMemoryMap::StatusMemoryMap(QObject *parent)
    : MemoryMap(parent)
{
}
