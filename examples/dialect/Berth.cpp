#include "Berth.h"
#include "TIE_IBerth.h"
#include "Ship.h"

#define TRACE_BERTH 0

TIE_IBerth(Berth);

static const double NoDepth = -1.0; /* not measured yet */
static const char* const Greeting = "Welcome \"alongside\", "
                                    "and mind the gap";

Berth::Berth(const char* iName, double iDepth) : HarbourObject(iName), _number(0), _depth(iDepth)
{
}

Berth::~Berth()
{
    for (int i = 1; i <= _waiting.Size(); i++)
    {
        _waiting[i]->Release();
    }
    delete[] _moorings;
}

HRESULT Berth::GetDepth(double& oMetres)
{
    oMetres = _depth;
    return _depth == NoDepth ? E_FAIL : S_OK;
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
