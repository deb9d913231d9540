#include "Quay.h"
#include "SlackBerth.h"

Quay::Quay(CoastText iName) : CoastObject(iName, CoastKeyOf(iName)), _length(0)
{
}

CoastText Quay::Kind() const
{
    return "quay";
}

Berth* Quay::FirstFree(CoastMetres iDraught)
{
    Berth* found = NULL;
    double deepest = iDraught;
    for (int i = 1; i <= _berths.Size(); i++)
    {
        double depth;
        if (_berths[i]->GetDepth(depth) == S_OK && depth > deepest)
        {
            found = _berths[i];
            deepest = depth;
        }
    }
    return found;
}

int Quay::Find(CoastText iName, Berth*& oBerth, CoastTrace iTrace)
{
    oBerth = Berth::Find(iName);
    return oBerth != NULL || iTrace == CoastTraceAll;
}

CoastNames* Quay::Names() const
{
    CoastNames* names = new CoastNames;
    for (int i = 1; i <= _berths.Size(); i++)
        names->Append(_berths[i]->Name());
    return names;
}
