#ifndef SlackBerth_H
#define SlackBerth_H

#include "Berth.h"
#include "TideTable.h"

// A berth that only holds a ship around high water.
class SlackBerth : public Berth
{
    NUBDeclareClass;

public:
    SlackBerth(const char* iName, TideTable* iTides) : Berth(iName, NoDepth), _tides(iTides) {}
    virtual int Accepts(const Ship* iShip) const;

private:
    TideTable* _tides;
};

#endif
