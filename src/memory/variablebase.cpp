#include "memory/variablebase.h"

VariableBase::VariableBase(QObject *parent)
    : QObject(parent)
{
}
