#ifndef TideTable_H
#define TideTable_H

#include "CoastObject.h"
#include "ITideStation.h"
#include "TideHarmonics.h"

typedef SEQUENCE(octet) TideImage;

struct TidePoint
{
    long minute;
    double level;
};

class ExportedByTides TideTable : public CoastObject
{
    NUBDeclareClass;

public:
    TideTable(CoastText iPort);
    virtual ~TideTable();

    virtual CoastText Kind() const;
    CoastMetres LevelAt(long iMinute) const;
    TidePoint* Highest(long iFrom, long iTo) const;
    int Save(TideImage& oImage, TideHarmonics* iHarmonics) const;
    void Attach(const ITideStation_var& iStation);

protected:
    NUBLISTV(TidePoint) _points;
    ITideStation_var _station;
    CoastMetres _mean, _highest;
};

#endif
