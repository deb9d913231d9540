#include "a.h"
#  include <b/c.h>
#define ONE 1
#define F(a,b) a \
  + b
# if X /* y */
int x; # z
#endif
