int f(
"C
using X
namespace sea::deep { inline namespace { extern "C" { int c(int); } } }
class A<int>::B : C { A(); B(); ~B(); };
~A( operator"" _x(long) operator, (
enum { A = ',', B = "{" , C } x
int a[,b(*c)(
template <class T = (1>2)> struct Y { T
