#include "TideTable.h"

int main()
{
    TideTable* table = new TideTable("North Mole");
    TidePoint* point = table->Highest(0, 720);
    int failed = point != NULL && table->LevelAt(point->minute) != point->level;
    table->Release();
    return failed;
}
