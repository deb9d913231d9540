#include "a.h"
#define GAUGE Gauge
TIE_IGauge(Gauge);
enum State { calm, rough };
typedef Gauge* GaugePtr;
int Level(int iMetre);
Gauge::Gauge(int iMark) : _mark(iMark), _log(0) {}
int Gauge::Read(const char* iName, long& oLevel)
{
  oLevel = _mark;
  return _log ? 1 : 0;
}
int Level(int iMetre) { Gauge g(iMetre); return g.Read("n", 0); }
#include "b.idl"
class Log;
class ExportedByTide Gauge : public IGauge, protected Base
{
  NUBDeclareClass;
public:
  Gauge(int iMark = 3);
  virtual ~Gauge();
  virtual int Read(const char* iName, long& oLevel) = 0;
  static inline int Count() { return 1; }
protected:
  NUBLISTP(Log) _logs;
private:
  int _mark, *_rest[4];
  Log* _log;
};
interface IGauge : NUBBaseDispatch { HRESULT Read(in long iName, out double oLevel); };
