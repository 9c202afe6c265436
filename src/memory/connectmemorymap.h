#ifndef CONNECTMEMORYMAP_H
#define CONNECTMEMORYMAP_H

#include "memory/memorymap.h"
#include "muxcore_export.h"

/**
 * A unit's connection settings.
 *
 * It never has a parent: the one given is ignored, so its owner deletes it explicitly.
 */
class MUXCORE_EXPORT ConnectMemoryMap : public MemoryMap
{
    Q_OBJECT
public:
    /// An empty map without parent, whatever @p parent is.
    explicit ConnectMemoryMap(QObject *parent = nullptr);
};

#endif // CONNECTMEMORYMAP_H
