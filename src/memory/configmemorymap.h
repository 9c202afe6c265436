#ifndef CONFIGMEMORYMAP_H
#define CONFIGMEMORYMAP_H

#include "memory/memorymap.h"
#include "muxcore_export.h"

/// A unit's configuration memory; a class of its own so owners and hosts can tell the maps apart.
class MUXCORE_EXPORT ConfigMemoryMap : public MemoryMap
{
    Q_OBJECT
public:
    /// An empty map.
    explicit ConfigMemoryMap(QObject *parent = nullptr);
};

#endif // CONFIGMEMORYMAP_H
