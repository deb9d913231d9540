#include <ostraka/memreport/Error.h>

#include <ostraka/memreport/Stack.h>
#include <ostraka/memreport/TAPIndexContainer.h>

Error::Error(const NUBString& odtName, const NUBString& framework, const char* code, Stack* stack, int number)
    : odt(TAPIndexContainer::odtIndex.Append(odtName.CastToCharPtr(), nullptr, 0)),
      fw(TAPIndexContainer::respForFwIndex.Append(framework.CastToCharPtr(), nullptr, 0)),
      type(TAPIndexContainer::errorIndex.Append(code, nullptr, 0)), longStack(stack), count(number) {}

Stack* Error::GetMediumStack() const {
    return longStack->GetMetaStack();
}
