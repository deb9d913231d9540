class A : public B, public C { A(); };
struct D;
class IThing_var {};
class { int x; };
class ;
class A {};
union U { int a; char b; };
A::A() : B(1) {}
void A::f() const throw() {}
int (*pf)(int);
extern "C" int g(void);
