// Generated from ITideStation.idl. An include of it means the IDL file, which says more.
class ExportedByTides ITideStation : public NUBBaseDispatch
{
    NUBDeclareInterface;

public:
    virtual HRESULT GetLevel(long iMinute, double& oMetres) = 0;
    virtual HRESULT GetState(long iMinute, TideState& oState) = 0;
    virtual HRESULT Calibrate(double& ioMetres) = 0;
};
