#ifndef ITraffic_H
#define ITraffic_H

#include "NUBBaseDispatch.h"
#include "IVessel.h"

// An interface that is written by hand.
class ExportedByTraffic ITraffic : public NUBBaseDispatch
{
    NUBDeclareInterface;

public:
    virtual HRESULT Announce(const IVessel_var& iVessel, long iMinute) = 0;
    virtual HRESULT Clear(const IVessel_var& iVessel) = 0;
};

#endif
