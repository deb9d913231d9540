#ifndef Tug_H
#define Tug_H

#include "Ship.h"

class ExportedByShips Tug : public Ship
{
    NUBDeclareKindOf;

public:
    Tug(CoastText iName, int iPull);
    virtual CoastText Kind() const;
    virtual int Accept(Berth* iBerth);
    int Pull(const Ship* iShip, CoastMetres iRope, int iSpeed = 3);
    static Tug* Strongest(NUBLISTP(Tug)& iTugs);

private:
    int _pull;
};

#endif
