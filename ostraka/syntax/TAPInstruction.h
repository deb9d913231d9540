#pragma once

#include <ostraka/Export.h>
#include <ostraka/syntax/TAPSyntaxe.h>

// Precise kinds of instructions, beside their node type.
enum : int {
    SINST_Plain = 0,
    SINST_Delete = 21,
    SINST_DeleteArray = 22,
    SINST_Virtual = 23,
    SINST_Static = 24,
    SINST_Inline = 25,
};

// One instruction. What it is follows from its first characters alone.
class OSTRAKA_EXPORT TAPInstruction : public TAPSyntaxe {
public:
    int preciseType = SINST_Plain; // SINST_ code

    TAPInstruction(TAPSyntaxe* father, int first, int length, int position)
        : TAPSyntaxe(STYPE_Instruction, father, first, length, position) {}
    ~TAPInstruction() override;

    int Build() override;

    int GetPreciseType() const { return preciseType; }
};
