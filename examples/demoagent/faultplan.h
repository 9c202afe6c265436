#ifndef FAULTPLAN_H
#define FAULTPLAN_H

#include <QRandomGenerator>
#include <QSet>

// Which requests the agent lets fall: a share of all of them at random, and
// every one for units that are told to stay silent.
class FaultPlan
{
public:
    FaultPlan(quint32 seed, double lossRate, const QSet<int> &silentUnits);

    // True when the request to this unit is to be lost.
    bool drop(int key);
    QRandomGenerator &random() { return generator; }

private:
    QRandomGenerator generator;
    double lossRate;
    QSet<int> silent;
};

#endif // FAULTPLAN_H
