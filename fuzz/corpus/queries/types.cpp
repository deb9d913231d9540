#include "b.idl"
int f(IThing_var t, HRESULT rc, const A::B& c, int (*g)(int), char d[3][4]) { IThing* p; t->Get(p); rc = t->Get(p); int a[3] = {1, 2}; a[1]; unsigned long int u = 0, *v = &u; const char* const w = 0; return rc; }
interface IThing : IBase { HRESULT Get(out IThing o); };
