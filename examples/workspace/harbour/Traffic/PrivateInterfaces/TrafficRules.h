#ifndef TrafficRules_H
#define TrafficRules_H

#include "TrafficMessages.h"
#include "TideLimits.h"

class TrafficRules
{
public:
    TrafficRules() : _minimum(TideLowest) {}
    int MayEnter(double iLevel, double iDraught) const { return iLevel + _minimum > iDraught; }

private:
    double _minimum;
};

#endif
