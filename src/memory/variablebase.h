#ifndef VARIABLEBASE_H
#define VARIABLEBASE_H

#include "muxcore_export.h"

#include <QObject>
#include <QString>
#include <QVariant>

// The base of a host's own variable objects: one text and two values whose
// roles the device model sets.
class MUXCORE_EXPORT VariableBase : public QObject
{
    Q_OBJECT
public:
    explicit VariableBase(QObject *parent = nullptr);

protected:
    QString text;
    QVariant firstValue;
    QVariant secondValue;
};

#endif // VARIABLEBASE_H
