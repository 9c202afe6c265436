#ifndef VARIABLEBASE_H
#define VARIABLEBASE_H

#include "muxcore_export.h"

#include <QObject>
#include <QString>
#include <QVariant>

/**
 * The base of a host's own variable objects: one text and two values whose
 * roles the device model sets.
 */
class MUXCORE_EXPORT VariableBase : public QObject
{
    Q_OBJECT
public:
    /// Empty text, invalid values.
    explicit VariableBase(QObject *parent = nullptr);

protected:
    QString text; ///< The model's text.
    QVariant firstValue; ///< The model's first value.
    QVariant secondValue; ///< The model's second value.
};

#endif // VARIABLEBASE_H
