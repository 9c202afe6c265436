#ifndef MAPSERIALISE_H
#define MAPSERIALISE_H

#include "muxcore_export.h"

#include <QObject>

/**
 * Reserved for saving and loading a Map.
 *
 * It has no members and the library creates none yet; it is kept so hosts
 * that already name the type keep building.
 */
class MUXCORE_EXPORT MapSerialise : public QObject
{
    Q_OBJECT
public:
    /// Only passes @p parent on.
    explicit MapSerialise(QObject *parent = nullptr);
};

#endif // MAPSERIALISE_H
