#include "faultplan.h"

FaultPlan::FaultPlan(quint32 seed, double lossRate, const QSet<int> &silentUnits)
    : generator(seed)
    , lossRate(lossRate)
    , silent(silentUnits)
{
}

bool FaultPlan::drop(int key)
{
    return silent.contains(key) || (lossRate > 0 && generator.generateDouble() < lossRate);
}
