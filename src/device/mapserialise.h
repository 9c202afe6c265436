#ifndef MAPSERIALISE_H
#define MAPSERIALISE_H

#include "muxcore_export.h"

#include <QObject>

// Reserved for saving and loading a Map; the library creates none yet, and
// hosts may already name the type.
class MUXCORE_EXPORT MapSerialise : public QObject
{
    Q_OBJECT
public:
    explicit MapSerialise(QObject *parent = nullptr);
};

#endif // MAPSERIALISE_H
