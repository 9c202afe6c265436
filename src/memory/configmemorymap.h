#ifndef CONFIGMEMORYMAP_H
#define CONFIGMEMORYMAP_H

#include "memory/memorymap.h"
#include "muxcore_export.h"

// The unit's configuration memory.
class MUXCORE_EXPORT ConfigMemoryMap : public MemoryMap
{
    Q_OBJECT
public:
    explicit ConfigMemoryMap(QObject *parent = nullptr);
};

#endif // CONFIGMEMORYMAP_H
