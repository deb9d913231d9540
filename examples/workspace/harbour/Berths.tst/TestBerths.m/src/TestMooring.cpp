#include <stdio.h>

#include "Mooring.h"
#include "Quay.h"

static int Fail(const char* iWhat, int iLine)
{
    printf("%s (line %d)\n", iWhat, iLine);
    return 1;
}

int main()
{
    int failed = 0;
    Quay quay("Fish Quay");
    Berth* berth = quay.FirstFree(4.5);
    if (Mooring::InUse() != 0)
        failed += Fail("moorings left", __LINE__);
    if (berth)
        berth->Leave(NULL);
    return failed;
}
