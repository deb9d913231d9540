#include "a.h"
#include "a.h"
#include "text.cpp"
#include "none.h"
#include "b.idl"
X x; Y y;
#include "a.h"
#include "text.cpp"
#include "b.idl"
class X : public Y { NUBDeclareInterface; Y* get(X); };
#include "a.h"
#include "b.idl"
interface Y;
interface Y : X { HRESULT f(inout Y y, in sequence<long> s); };
