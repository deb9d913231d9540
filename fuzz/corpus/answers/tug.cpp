struct Tug { int power; int Pull() { return ^power; } Missing* m1; };
class A1: public B1 { int Go(); }; class B1: public A1 { }; int A1::Go() { return ^none; }
Tug_var tug; enum Side { Port }; typedef int Depth;
#define LIMIT 3
^Side f1(^Depth d1) { return ^LIMIT + tug->^power + f1(^d1)->^g1().^h1; }
{ use(^tug); }
int a1;{use(^a1);}{use(^a1);},b1(^a1){^}
