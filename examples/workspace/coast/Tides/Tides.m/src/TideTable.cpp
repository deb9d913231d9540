#include "TideTable.h"
#include "TideLimits.h"
#include "TideCatalog.h"
#include "TideKeys.h"
#include "TideLexer.h"
#include "CoastLog.h"

TideTable::TideTable(CoastText iPort) : CoastObject(iPort, CoastKeyOf(iPort)), _mean(0), _highest(TideHighest)
{
}

TideTable::~TideTable()
{
}

CoastText TideTable::Kind() const
{
    return "tide table";
}

CoastMetres TideTable::LevelAt(long iMinute) const
{
    double level = NoDepth;
    for (int i = 1; i <= _points.Size(); i++)
        if (_points[i].minute <= iMinute)
            level = _points[i].level;
    if (level < TideLowest)
        Log()->Write("no level", iMinute);
    return level;
}

TidePoint* TideTable::Highest(long iFrom, long iTo) const
{
    TidePoint* highest = NULL;
    for (int i = 1; i <= _points.Size(); i++)
    {
        const long minute = _points[i].minute;
        if (minute < iFrom || minute > iTo)
            continue;
        if (!highest || _points[i].level > highest->level)
            highest = (TidePoint*)&_points[i];
    }
    return highest;
}

int TideTable::Save(TideImage& oImage, TideHarmonics* iHarmonics) const
{
    char line[80], *end = line;
    int rc = 0;
    for (int i = 0; i < iHarmonics->Count(); i++)
    {
        double amplitude = iHarmonics->Amplitude(i);
        end = line + sprintf(line, "%d %g\n", i, amplitude);
        oImage.Append(line, end - line);
    }
    return rc;
}

void TideTable::Attach(const ITideStation_var& iStation)
{
    double metres = 0;
    _station = iStation;
    if (SUCCEEDED(_station->Calibrate(metres)))
        _mean = metres;
}
