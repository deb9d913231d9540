#ifndef Mooring_H
#define Mooring_H

#include "CoastTypes.h"

// One rope and the bollard that holds it.
class Mooring
{
public:
    Mooring() : _bollard(0), _side(CoastPort) {}
    Mooring(int iBollard, CoastSide iSide);
    int Bollard() const { return _bollard; }
    static int InUse();

private:
    int _bollard;
    CoastSide _side;
};

#endif
