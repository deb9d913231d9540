#pragma once

#include <ostraka/Export.h>
#include <ostraka/syntax/TAPSyntaxe.h>

// What stands between the parentheses of a call, cut into one expression for each argument.
class OSTRAKA_EXPORT TAPListOfArgs : public TAPSyntaxe {
public:
    TAPListOfArgs(TAPSyntaxe* father, int first, int length, int position)
        : TAPSyntaxe(STYPE_ListOfArgs, father, first, length, position) {}
    ~TAPListOfArgs() override;

    int Build() override;
};
