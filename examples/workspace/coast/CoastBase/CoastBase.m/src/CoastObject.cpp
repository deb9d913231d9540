#include <string.h>

#include "CoastObject.h"
#include "CoastLog.h"
#include "CoastSlots.h"
#include "CoastRegistry.h"

static CoastRegistry* TheRegistry = NULL;
static CoastLog TheLog(CoastTraceOff);

CoastObject::CoastObject() : _name(NULL), _key(0), _references(1)
{
}

CoastObject::CoastObject(CoastText iName, CoastKey iKey) : _name(NULL), _key(iKey), _references(1)
{
    _name = new char[strlen(iName) + 1];
    strcpy(_name, iName);
    TheRegistry->Add(this);
}

CoastObject::~CoastObject()
{
    delete[] _name;
}

unsigned long CoastObject::AddRef()
{
    return ++_references;
}

unsigned long CoastObject::Release()
{
    unsigned long left = --_references;
    if (left == 0)
        delete this;
    return left;
}

CoastObject* CoastObject::Find(CoastText iName)
{
    CoastObject* found = TheRegistry->Get(iName);
    if (found != NULL)
        found->AddRef();
    return found;
}

CoastLog* CoastObject::Log() const
{
    return &TheLog;
}

CoastObject* CoastRegistry::Get(CoastText iName)
{
    for (int i = 1; i <= _objects.Size(); i++)
    {
        CoastObject* object = _objects[i];
        if (strcmp(object->Name(), iName) == 0)
            return object;
    }
    return NULL;
}

void CoastRegistry::Add(CoastObject* iObject)
{
    int slot = _slots.Take(iObject->Key());
    if (slot >= 0)
        _objects.Append(iObject);
}

int CoastSlots::Take(unsigned long iKey)
{
    int slot = iKey % SlotCount;
    _keys[slot] = iKey;
    return slot;
}

CoastKey CoastKeyOf(CoastText iName)
{
    CoastKey key = 5381;
    for (const char* letter = iName; *letter; letter++)
        key = key * 33 + *letter;
    return key;
}
