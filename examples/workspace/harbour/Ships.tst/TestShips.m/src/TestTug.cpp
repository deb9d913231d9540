#include "Tug.h"
#include "ShipPapers.h"

Ship* MakeTug(const char* iName, int iPull, Tug*& oTug);

int main()
{
    Tug* tug = NULL;
    Ship* ship = MakeTug("Molly", 40, tug);
    ship->Load(Cargo("rope", 2));
    return ((Tug*)ship)->Pull(tug, 60.0) == 120 ? 0 : 1;
}
