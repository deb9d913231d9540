#ifndef TrafficControl_H
#define TrafficControl_H

#include "CoastObject.h"
#include "ITraffic.h"
#include "TideTable.h"
#include "Quay.h"

class TrafficControl : public CoastObject
{
    NUBDeclareClass;

public:
    TrafficControl(TideTable* iTides);

    virtual CoastText Kind() const { return "traffic control"; }
    virtual HRESULT Announce(const IVessel_var& iVessel, long iMinute);
    virtual HRESULT Clear(const IVessel_var& iVessel);

private:
    NUBLISTP(Quay) _quays;
    NUBLISTV(IVessel_var) _announced;
    TideTable* _tides;
};

#endif
