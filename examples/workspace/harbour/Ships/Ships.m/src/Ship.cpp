#include <stdio.h>

#include "Ship.h"
#include "ShipPapers.h"
#include "Berth.h"
#include "CoastLog.h"

TIE_IVessel(Ship);

Ship::Ship(CoastText iName, CoastMetres iDraught)
    : CoastObject(iName, CoastKeyOf(iName)), _berth(NULL), _draught(iDraught)
{
}

Ship::~Ship()
{
    if (_berth)
        _berth->Leave(this);
}

CoastText Ship::Kind() const
{
    return "ship";
}

HRESULT Ship::GetDraught(double& oMetres)
{
    oMetres = _draught;
    return S_OK;
}

int Ship::Accept(Berth* iBerth)
{
    double depth = NoDepth;
    HRESULT rc = iBerth->GetDepth(depth);
    return SUCCEEDED(rc) && depth > _draught;
}

void Ship::Hail(CoastText iText)
{
    Log()->Write(iText);
}

void Ship::Hail(CoastText iText, CoastSide iSide)
{
    char text[200];
    sprintf(text, "%s (%s)", iText, iSide == CoastPort ? "port" : "starboard");
    this->Hail(text);
}

void Ship::Hail(int iBlasts, long iPause)
{
    while (iBlasts-- > 0)
        Log()->Write("horn", iPause);
}

Cargo* Ship::Heaviest()
{
    Cargo* heaviest = NULL;
    for (int i = 1; i <= _cargo.Size(); i++)
    {
        Cargo& each = _cargo[i];
        if (heaviest == NULL || *heaviest < each)
            heaviest = &each;
    }
    return heaviest;
}

void Ship::Load(const Cargo& iCargo)
{
    _cargo.Append(iCargo);
}

int ShipPapers::Check(char** oFault)
{
    Cargo* heaviest = _ship->Heaviest();
    _valid = heaviest == NULL || heaviest->Tons() < 20000;
    if (!_valid)
        *oFault = (char*)"too heavy";
    return _valid;
}
