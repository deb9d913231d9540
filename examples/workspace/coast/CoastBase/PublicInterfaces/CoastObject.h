#ifndef CoastObject_H
#define CoastObject_H

// The base of all objects with a name. Counted: who keeps one adds a reference.

#include "CoastTypes.h"

class CoastLog;

class ExportedByCoastBase CoastObject
{
public:
    CoastObject();
    CoastObject(CoastText iName, CoastKey iKey);
    virtual ~CoastObject();

    unsigned long AddRef();
    unsigned long Release();

    virtual CoastText Kind() const = 0;
    const char* Name() const { return _name; }
    inline CoastKey Key() const;
    static CoastObject* Find(CoastText iName);

protected:
    CoastLog* Log() const;

private:
    CoastObject(const CoastObject&);
    CoastObject& operator=(const CoastObject&);

    char* _name;
    CoastKey _key;
    long _references;
};

inline CoastKey CoastObject::Key() const
{
    return _key;
}

#endif
