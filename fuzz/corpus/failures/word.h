int a;
#include <a.h>
'a
b' NUBLISTP(A
) x; /* NUBLISTV(a b) */
  SEQUENCE(a b) y; 