class A { A* a; int b; A* f(A* x); };
A* A::f(A* x) { A* y = x->f(a)->a; y->b = x->a->b; (*y).f(x); A z; z.f(y); { int y = 3; y; } ::g(y); return y; }
A* global; int h(A* p, int* out) { *out = p->b; out[0] = global->f(p)->b; return (int)p; }
