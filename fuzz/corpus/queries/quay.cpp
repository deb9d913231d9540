#include "a.h"
int Quay::Free(double iDraught, long& oBerth, Ship** oShip)
{
  int i, n = 0;
  Ship* found = NULL;
  for (int k = 0; k < _berths.Size(); k++)
    if (_berths[k]->Depth() > iDraught && !((Ship*)_berths[k]->Held())->IsMoored(n)) { n++; oBerth = k; found = _berths[k]->Held(); }
  *oShip = found;
  const char* text = "a" ; Ship other(iDraught), *more = new Ship(1.0);
  Mooring<int> m; found->Name(text)[n]->Next().Back(k);
  switch (n) { case 1: return i; default: i = -n * (2 + k) / 3; }
  do { delete more; } while (n-- > 0);
  try { return n ? *found : other; } catch (Ship& s) { return 0; }
}
static long Sum(long a, Quay q) { long s = a + q.Free(a, s, 0); return s; }
class Ship : public Base { public: Ship(double); int IsMoored(int); Ship* Next(); Ship& Back(int); char* _name; };
class Quay : public Ship { int Free(double iDraught, long& oBerth, Ship** oShip); NUBLISTP(Ship) _berths; };
