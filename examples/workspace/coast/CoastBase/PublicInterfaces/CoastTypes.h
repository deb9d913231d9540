#ifndef CoastTypes_H
#define CoastTypes_H

// Words that every framework of the coast uses.

#include <stddef.h>

#define NoDepth -1.0
#define CoastMetres double
#define CoastNames NUBLISTV(NUBString)

typedef unsigned long CoastKey;
typedef const char* CoastText;

enum CoastSide { CoastPort, CoastStarboard };

enum CoastTrace
{
    CoastTraceOff = 0,
    CoastTraceCalls,
    CoastTraceAll
};

class NUBString;

int CoastRound(double iValue, int iDigits);
CoastKey CoastKeyOf(CoastText iName);

#endif
