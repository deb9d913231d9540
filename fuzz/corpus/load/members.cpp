class C { public: int a; int f(int (*g)(), char c = 0x3, ...); friend class D; typedef int T; enum E { e1, e2 }; class Inner { int i; }; operator int(); C& operator=(const C&); };
C* C::make() { return new C; }
C::operator int() { return a; }
C::~C() { delete this; }
