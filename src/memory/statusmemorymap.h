#ifndef STATUSMEMORYMAP_H
#define STATUSMEMORYMAP_H

#include "memory/memorymap.h"
#include "muxcore_export.h"

// The unit's status memory.
class MUXCORE_EXPORT StatusMemoryMap : public MemoryMap
{
    Q_OBJECT
public:
    explicit StatusMemoryMap(QObject *parent = nullptr);
};

#endif // STATUSMEMORYMAP_H
