#ifndef STATUSMEMORYMAP_H
#define STATUSMEMORYMAP_H

#include "memory/memorymap.h"
#include "muxcore_export.h"

/// A unit's status memory; a class of its own so owners and hosts can tell the maps apart.
class MUXCORE_EXPORT StatusMemoryMap : public MemoryMap
{
    Q_OBJECT
public:
    /// An empty map.
    explicit StatusMemoryMap(QObject *parent = nullptr);
};

#endif // STATUSMEMORYMAP_H
