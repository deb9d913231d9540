#ifndef TideLimits_H
#define TideLimits_H

// This harbour has a lock: it hides the header of the same name in the coast.

#define TideLowest -0.5
#define TideHighest 2.25

#endif
