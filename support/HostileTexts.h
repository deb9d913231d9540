#pragma once

// Sources that no person writes and that a reader must answer all the same, quickly: shapes that grow without
// end, and single texts that break off, nest or repeat beyond measure. The benchmark times them and the tests
// hold what becomes of them.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include <ostraka/foundation/TAFileBuffer.h>

namespace texts {

// A text that is repeated between a beginning and an end. Each '$' in it becomes the number of the
// repetition.
struct Shape {
    const char* name;
    std::string_view first;
    std::string_view unit;
    std::string_view last;
    std::size_t smallest = 625'000; // bytes, at the first of the sizes at which its cost is measured
};

inline constexpr Shape shapes[] = {
    {"one line", "", "int a=b+c*d->e;f(a,\"t\",b[1]);", "", 1'250'000},
    {"table of numbers", "int t[]={\n", "12,-345,0x6789,\n", "0};"},
    {"rows of braces", "R r[]={\n", "{1,\"two\",0x3},\n", "{0}};"},
    {"nested brackets", "", "x=a[b[c[d[e[f[g[h[(i[(j[(k[(l[m])])])])]]]]]]]]];\n", ""},
    {"nested braces", "", "{a;{b;{c;{dd;{e;{ff;{g;{hh;{i;{jj;{k;}}}}}}}}}}}\n", ""},
    {"commas", "f(", ",", ");"},
    {"chain of else if", "if(a){b=c;}\n", "else if(d==$){e=f($);}\n", "else{g=h;}"},
    {"adjacent strings", "char*s=\n", "\"ab\\\"c\"\n", ";"},
    {"comments", "int a;", "/* b */ // c's \"d\n", "int e;"},
    {"macro definitions", "", "#define NAME$ value$\n", "int a;"},
};

// A text repeated so often, then another one as often or once.
struct Hostile {
    const char* name;
    std::string_view first;
    std::string_view unit;
    int count;
    std::string_view middle;
    std::string_view closing; // repeated like the unit
    int result;               // of the builder of the tree
    const char* message;      // how the failure's text begins
};

inline constexpr Hostile hostiles[] = {
    {"braces, closed", "", "{", 100'000, "", "}", 1, "Depth too high when building a TAPSyntaxe : 901"},
    {"braces, never closed", "", "{", 100'000, "", "", 1, "Missing TAPBloc end at line 1 col 2 length="},
    {"parentheses, closed", "", "(", 100'000, "", ")", 0, ""},
    {"parentheses, never closed", "", "(", 100'000, "", "", 1,
     "Missing Instruction end for Instruction starting line 1 col 2"},
    {"mixed brackets, closed", "x", "[(", 50'000, "", ")]", 1, "Depth too high when building a TAP"},
    {"brackets that cross", "", "([", 50'000, "", ")]", 1, "Missing Instruction end"},
    {"numbers in one initialiser", "int t[]={", "1,", 1'000'000, "1};", "", 1,
     "Depth too high when building a TAPExpression : 901"},
    {"sum of ones", "x=1", "+1", 100'000, ";", "", 1, "Depth too high when building a TAPExpression : 901"},
    {"mixed operators", "x=1", "+a*b-c", 100'000, ";", "", 1, "Depth too high when building a TAPExpression"},
    {"else if, one in the other", "if(a)b;", "else if(a) ", 20'000, "bb;", "", 1,
     "Depth too high when building"},
    {"else if with blocks", "if(a){bb;}", "else if(a){bb;}", 20'000, "", "", 0, ""},
    {"template brackets", "", "A<", 20'000, "int", ">", 1,
     "Depth too high when building a TAPExpression : 901"},
    {"statements in one line", "", "ab=c;", 300'000, "", "", 0, ""},
    {"quote never closed", "char*s=\"", "abcdefgh", 600'000, "", "", 1,
     "Missing Instruction end for Instruction starting line 1 col 2"},
    {"character never closed", "char c='", "abcdefgh", 600'000, "", "", 1, "Missing Instruction end"},
    {"quotes", "", "\"", 1'000'015, "", "", 1, "Missing Instruction end"},
    {"escaped quotes", "x=\"", "\\\"", 500'000, "\";", "", 0, ""},
    {"backslashes in a string", "x=\"", "\\\\", 500'000, "\";", "", 0, ""},
    {"arguments that don't close", "", "f(a,", 100'000, "", "", 1, "Missing Instruction end"},
    {"calls in calls", "x=", "f(a,", 100'000, "b", ")", 1, "Depth too high when building a TAP"},
    {"dereferences", "x=", "*", 100'000, "p;", "", 1, "Depth too high when building a TAPExpression : 901"},
    {"arrows", "x=a", "->b", 100'000, ";", "", 1, "Depth too high when building a TAPExpression : 901"},
    {"declarators", "int a", ",b", 200'000, ";", "", 1, "Depth too high when building a TAPExpression : 901"},
    {"blocks that open in parentheses", "", "({", 50'000, "", "})", 1, "Depth too high when building a TAP"},
};

inline std::string Repeat(std::string_view unit, std::size_t count) {
    std::string text;
    text.reserve(unit.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t from = 0;;) {
            const std::size_t mark = unit.find('$', from);
            text += unit.substr(from, mark - from);
            if (mark == std::string_view::npos) break;
            text += std::to_string(i);
            from = mark + 1;
        }
    }
    return text;
}

// The shape at a size of about so many bytes.
inline std::string TextOf(const Shape& shape, std::size_t bytes) {
    return std::string(shape.first) + Repeat(shape.unit, bytes / shape.unit.size()) + std::string(shape.last);
}

// The text at a part of its full size.
inline std::string TextOf(const Hostile& hostile, int part = 1) {
    const auto count = static_cast<std::size_t>(hostile.count / part);
    return std::string(hostile.first) + Repeat(hostile.unit, count) + std::string(hostile.middle) +
           Repeat(hostile.closing, hostile.closing.empty() ? 0 : count);
}

// Bytes without any order, NUL left out.
inline std::string RandomBytes(std::size_t count) {
    std::string text(count, 0);
    std::uint64_t state = 88172645463325252u;
    for (char& c : text) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        c = static_cast<char>(1 + state % 255);
    }
    return text;
}

// A file that has been read already, with this content.
inline std::unique_ptr<TAFileBuffer> FileOf(std::string_view text, const char* name = "memory") {
    auto file = std::make_unique<TAFileBuffer>(name, 0);
    file->loaded = 1;
    file->size = static_cast<unsigned int>(text.size());
    file->buffer = static_cast<char*>(std::malloc(text.size() + 1));
    if (!text.empty()) std::memcpy(file->buffer, text.data(), text.size());
    file->buffer[text.size()] = 0;
    return file;
}

} // namespace texts
