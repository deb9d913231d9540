#include "a.h"
#include "b.idl"
int Gauge::Read(int level) { return level; }
Gauge::Gauge() : level{1}, depth(2) { }
void Gauge::None() { }
class Other: public Gauge { int o; protected: Other(); };
class Gauge { int level, depth; int Read(int level); public: Gauge(); static int all; };
interface IGauge : IBase { HRESULT Read(in long level, out short depth); attribute string name; };
module M { exception Bad { long why; }; };
