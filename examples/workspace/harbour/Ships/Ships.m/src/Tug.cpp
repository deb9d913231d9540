#include "Tug.h"
#include "ShipPapers.h"
#include "CoastLog.h"

Tug::Tug(CoastText iName, int iPull) : Ship(iName, 3.5), _pull(iPull)
{
}

CoastText Tug::Kind() const
{
    return "tug";
}

int Tug::Accept(Berth* iBerth)
{
    return iBerth != NULL;
}

int Tug::Pull(const Ship* iShip, CoastMetres iRope, int iSpeed)
{
    int force = _pull * iSpeed;
    if (iRope < iShip->Draught())
    {
        Log()->Write("rope too short", iRope);
        force = 0;
    }
    return force;
}

Tug* Tug::Strongest(NUBLISTP(Tug)& iTugs)
{
    Tug* strongest = NULL;
    for (int i = 1; i <= iTugs.Size(); i++)
    {
        Tug* tug = iTugs[i];
        if (strongest == NULL || tug->_pull > strongest->_pull)
            strongest = tug;
    }
    return strongest;
}

Ship* MakeTug(const char* iName, int iPull, Tug*& oTug)
{
    Ship* made = new Tug(iName, iPull);
    oTug = (Tug*)made;
    return (Ship*)made;
}
