#ifndef TideLimits_H
#define TideLimits_H

// As delivered; a workspace in front of this one may show its own.

#define TideLowest -4.5
#define TideHighest 6.0

#endif
