#pragma once

#include <ostraka/Export.h>
#include <ostraka/syntax/TAPSyntaxe.h>

// An expression, and any declaration, since the two look alike until the operators have been tried. Build
// takes the blanks and one enclosing pair of parentheses off the range, gives the node its kind and splits
// it.
class OSTRAKA_EXPORT TAPExpression : public TAPSyntaxe {
public:
    // "" (empty or not built), "nw" (new), "st" (string), "ct" (cast), "!", "dc" (declaration), "mt" (call),
    // "in" (index), "id" (word or number), or the operator at which the text was split. An operator of three
    // characters fills the field, so that it is read with a limit of three.
    char kind[3] = {};

    TAPExpression(TAPSyntaxe* father, int first, int length, int position)
        : TAPSyntaxe(STYPE_Expression, father, first, length, position) {}
    ~TAPExpression() override;

    int Build() override;

    // The operator at which the text from `begin` to `end` is to be split: the position of its first
    // character, with its length in `length`; or 0 for none, and `length` is left alone.
    static int SearchOperator(const char* stream, int begin, int end, int& length);

    // The earlier form: the leftmost operator, else the leftmost `*`; 0 for none, with 0 in `length` where
    // both walks found nothing.
    static int SearchOperator_old(const char* stream, int begin, int end, int& length);
};
