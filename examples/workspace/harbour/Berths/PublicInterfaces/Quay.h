#ifndef Quay_H
#define Quay_H

// A quay knows its berths and a berth its quay: the two headers include each other.

#include "CoastObject.h"
#include "Berth.h"

class Berth;

class ExportedByBerths Quay : public CoastObject
{
    NUBDeclareClass;

public:
    Quay(CoastText iName);
    virtual CoastText Kind() const;

    Berth* FirstFree(CoastMetres iDraught);
    int Find(CoastText iName, Berth*& oBerth, CoastTrace iTrace = CoastTraceOff);
    CoastNames* Names() const;

private:
    NUBLISTP(Berth) _berths;
    CoastMetres _length;
};

#endif
