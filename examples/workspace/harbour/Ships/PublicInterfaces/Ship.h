#ifndef Ship_H
#define Ship_H

#include "CoastObject.h"
#include "IVessel.h"
#include "Cargo.h"

class Berth;
class Tug_var;

class ExportedByShips Ship : public CoastObject
{
    NUBDeclareClass;

public:
    Ship(CoastText iName, CoastMetres iDraught);
    virtual ~Ship();

    virtual CoastText Kind() const;
    virtual HRESULT GetDraught(double& oMetres);
    virtual int Accept(Berth* iBerth);

    // Hails: by voice, by flags, or by the horn.
    void Hail(CoastText iText);
    void Hail(CoastText iText, CoastSide iSide);
    void Hail(int iBlasts, long iPause);

    Cargo* Heaviest();
    void Load(const Cargo& iCargo);
    CoastMetres Draught() const { return _draught; }

protected:
    NUBLISTV(Cargo) _cargo;
    Berth* _berth;
    const CoastMetres _draught;

private:
    Ship(const Ship&);
    friend class ShipPapers;
};

#endif
