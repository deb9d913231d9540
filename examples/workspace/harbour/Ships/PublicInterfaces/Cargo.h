#ifndef Cargo_H
#define Cargo_H

// No declaration macro: a plain class, copied as it is.
class ExportedByShips Cargo
{
public:
    Cargo(const char* iGoods = "ballast", long iTons = 0) : _goods(iGoods), _tons(iTons) {}
    long Tons() const { return _tons; }
    int operator<(const Cargo& iOther) const { return _tons < iOther._tons; }

private:
    const char* _goods;
    long _tons;
};

#endif
