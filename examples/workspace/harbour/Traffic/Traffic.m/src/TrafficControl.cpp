#include "TrafficControl.h"
#include "TrafficRules.h"
#include "TrafficNotes.h"
#include "ShipPapers.h"
#include "Ship.h"

TIE_ITraffic(TrafficControl);

static TrafficRules TheRules;

TrafficControl::TrafficControl(TideTable* iTides) : CoastObject("traffic", 1), _tides(iTides)
{
    _tides->AddRef();
}

HRESULT TrafficControl::Announce(const IVessel_var& iVessel, long iMinute)
{
    double draught = 0;
    HRESULT rc = iVessel->GetDraught(draught);
    TrafficMessage message = TrafficMsgWait;
    if (SUCCEEDED(rc) && TheRules.MayEnter(_tides->LevelAt(iMinute), draught))
    {
        Berth* berth = _quays[1]->FirstFree(draught);
        long ticket;
        rc = berth ? berth->Moor(iVessel, 24, ticket) : E_FAIL;
        message = TrafficMsgEnter;
    }
    _announced.Append(iVessel);
    Log()->Write(message, iMinute);
    return rc;
}

HRESULT TrafficControl::Clear(const IVessel_var& iVessel)
{
    int i = _announced.Locate(iVessel);
    if (i == 0)
        return E_FAIL;
    _announced.Remove(i);
    return S_OK;
}

#if defined(WITH_RADAR)
static double Radar(int iSector)
{
    double* echo = new double[360];
    double nearest = echo[iSector];
    for (double* next = echo; next < echo + 360; ++next)
        nearest = *next < nearest ? *next : nearest;
    delete[] echo;
    return nearest;
}
#endif
