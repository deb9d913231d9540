#ifndef CoastLog_H
#define CoastLog_H

#include "CoastTypes.h"

class CoastLog
{
public:
    CoastLog(CoastTrace iTrace) : _trace(iTrace) {}

    // One name, three ways to write.
    void Write(CoastText iText);
    void Write(CoastText iText, long iValue);
    void Write(CoastText iText, double iValue, int iDigits = 2);

private:
    CoastTrace _trace;
};

#endif
