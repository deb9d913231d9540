#ifndef Berth_H
#define Berth_H

// A place at a quay where one ship lies at a time.

#include <vector>
#include "CoastObject.h"
#include "IBerth.h"
#include "Mooring.h"
#include "Quay.h"

#define BERTH_MAX_HOURS 72
#define ShipQueue NUBLISTP(Ship)

class Quay;
class Ship;
class IVessel_var;

enum BerthSide { BerthPort, BerthStarboard };

typedef unsigned int BerthNumber;

class ExportedByBerths Berth : public CoastObject
{
    NUBDeclareClass;

public:
    Berth(const char* iName, double iDepth);
    virtual ~Berth();

    virtual CoastText Kind() const;
    virtual HRESULT GetDepth(double& oMetres);
    virtual HRESULT Moor(const IVessel_var& iVessel, long iHours, long& oTicket);
    virtual int Accepts(const Ship* iShip) const = 0;
    void Leave(Ship* iShip);
    static Berth* Find(const char* iName);
    inline BerthNumber Number() const { return _number; }

protected:
    NUBLISTP( Ship ) _waiting; // in the order of arrival
    NUBLISTV(Mooring) _moorings;
    SEQUENCE(octet) _signature;
    Quay* _quay;

private:
    Berth(const Berth&);

    BerthNumber _number;
    double _depth;
};

#endif
