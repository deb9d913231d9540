#ifndef ShipPapers_H
#define ShipPapers_H

#include "Ship.h"

class ShipPapers
{
public:
    ShipPapers(Ship* iShip) : _ship(iShip), _valid(0) {}
    int Check(char** oFault);

private:
    Ship* _ship;
    int _valid;
};

#endif
