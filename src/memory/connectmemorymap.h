#ifndef CONNECTMEMORYMAP_H
#define CONNECTMEMORYMAP_H

#include "memory/memorymap.h"
#include "muxcore_export.h"

// The unit's connection settings. It never has a parent: the one given is
// ignored, so its owner deletes it explicitly.
class MUXCORE_EXPORT ConnectMemoryMap : public MemoryMap
{
    Q_OBJECT
public:
    explicit ConnectMemoryMap(QObject *parent = nullptr);
};

#endif // CONNECTMEMORYMAP_H
