#pragma once

#include <ostraka/syntax/TAPSyntaxePoint.h>

// What stopped the reading of a file, as TAPFailure names it.
enum TAPFailureCode : int {
    SFAIL_None = 0,
    SFAIL_Unreadable = 1,    // the system refuses the file, which counts as empty
    SFAIL_Word = 2,          // the parenthesis behind a dialect word isn't closed
    SFAIL_Block = 3,         // no end of a block
    SFAIL_Instruction = 4,   // no end of an instruction: a bracket or a literal in it isn't closed
    SFAIL_Depth = 5,         // more than 900 levels
    SFAIL_Parenthesis = 6,   // a parenthesis that isn't closed
    SFAIL_Bracket = 7,       // a square bracket that isn't closed
    SFAIL_String = 8,        // a string literal that isn't closed
    SFAIL_Character = 9,     // a character literal that isn't closed
    SFAIL_DeleteBracket = 10 // no `]` behind `delete [`
};

// Why a file has no stream, or a node no whole tree, and where that shows. A plain value, good for ever; with
// the code SFAIL_None there is no failure, and the other fields mean nothing.
struct TAPFailure {
    TAPFailureCode code = SFAIL_None;

    // Position in the stream: of the block or the instruction without end, of the node that lies too deep,
    // else of the last node that was made. -1 while there is no stream: for SFAIL_Unreadable and SFAIL_Word.
    int position = -1;

    // Where that stands in the file. Of a dialect word the place of its first letter among the bytes of the
    // file, whatever the stream's map says of that line. (0, 0) for an unreadable file.
    TAPSyntaxePoint point;

    const char* word = ""; // of SFAIL_Word: the dialect word, as a text that lives for ever
    int systemError = 0;   // of SFAIL_Unreadable: the system's number for the reason
};
