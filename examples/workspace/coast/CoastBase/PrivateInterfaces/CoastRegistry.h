#ifndef CoastRegistry_H
#define CoastRegistry_H

#include "CoastObject.h"
#include "CoastSlots.h"

// Knows every object by its name. Only this framework sees it.
class CoastRegistry
{
public:
    CoastObject* Get(CoastText iName);
    void Add(CoastObject* iObject);

private:
    NUBLISTP(CoastObject) _objects;
    CoastSlots _slots;
};

#endif
