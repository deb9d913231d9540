#include "Berth.h"
#include "SlackBerth.h"
#include "TIE_IBerth.h"
#include "Ship.h"
#include "Quay.h"

#define TRACE_BERTH 0

TIE_IBerth(Berth);
TIE_IMooring(Berth);

static const double NotMeasured = -1.0; /* not measured yet */
static const char* const Greeting = "Welcome \"alongside\", "
                                    "and mind the gap";

Berth::Berth(const char* iName, double iDepth) : CoastObject(iName, CoastKeyOf(iName)), _number(0), _depth(iDepth)
{
}

Berth::~Berth()
{
    for (int i = 1; i <= _waiting.Size(); i++)
    {
        _waiting[i]->Release();
    }
}

HRESULT Berth::GetDepth(double& oMetres)
{
    oMetres = _depth;
    return _depth == NotMeasured ? E_FAIL : S_OK;
}

HRESULT Berth::Moor(const IVessel_var& iVessel, long iHours, long& oTicket)
{
    HRESULT rc = E_FAIL;
    NUBTry
    {
        Ship* ship = NULL;
        rc = iVessel->QueryInterface(IID_Ship, (void**)&ship);
        if (SUCCEEDED(rc) && iHours <= BERTH_MAX_HOURS)
        {
            _waiting.Append(ship);
            oTicket = _waiting.Size() * 100 + _number;
        }
        else if (ship != NULL)
            ship->Hail(Greeting, iHours, !Accepts(ship));
    }
    NUBCatch(HarbourError, error)
    {
        rc = error->Code();
    }
    NUBEndTry;
    return rc;
}

void Berth::Leave(Ship* iShip)
{
    ShipQueue left;
    for (int i = 1; i <= _waiting.Size(); i++)
        if (_waiting[i] != iShip)
            left.Append(_waiting[i]);
    _waiting = left;
}

Berth* Berth::Find(const char* iName)
{
    CoastObject* found = CoastObject::Find(iName);
    return (Berth*)found;
}

int SlackBerth::Accepts(const Ship* iShip) const
{
    TidePoint* high = _tides->Highest(0, 24 * 60);
    double under = high->level - iShip->Draught();
    return under > 0.5;
}
