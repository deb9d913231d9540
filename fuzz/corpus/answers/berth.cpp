#include "a.h"
Berth* const first = 0, * const last = 0;
int Moor(const char* const ^name, Berth* b1, const Berth& r1, int list[3], Missing* miss) {
  use(^name, ^b1, first->^depth, r1.^depth, ^list, ^miss);
  for (int i1 = 0; i1 < 3; ++i1)
    if (^i1) while (i1) use(^i1); else if (b1) use(^i1); else { use(^i1); }
  for (const Berth& each : ^all) use(^each);
  try { b1->^Leave(); ((Berth*)miss)->^Leave(); } catch (const Bad& bad) { use(^bad); }
  return ^list;
}
Berth::Berth(int d1) : depth{1}, side(^d1) { use(^d1, this->^depth, Berth::^all); }
int Berth::^Leave() const try { return ^depth; } catch (...) { return ^depth; }
namespace sea { int Dive(int d1) { return ^d1 + ^limit; } }
class Berth { int depth; static int all; public: Berth(int); int Leave() const; int Leave(int); };
#pragma once
struct Bad { int why; };
class Base { public: int base; void Dive(); };
interface IBerth : IBase { HRESULT Moor(in long ship); };
