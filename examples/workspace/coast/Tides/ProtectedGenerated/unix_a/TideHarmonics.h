// Generated from the list of constituents.
class TideHarmonics
{
public:
    int Count() const;
    double Amplitude(int iConstituent) const;
    double Phase(int iConstituent) const;
};
