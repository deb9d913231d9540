#include <cerrno>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/Source.h"

namespace {

using namespace std::string_literals;

struct StreamRow {
    std::string source;
    std::string stream;
};

TEST(Stream, KeepsWhatMatters) {
    const StreamRow rows[] = {
        {"int main ( int  argc , char * argv [ ] )", "int main(int argc,char* argv [ ])"},
        {"x = a > b ? c : d;", "x = a >b ? c: d;"},
        {"a/* c */b /**/ c", "ab c"},
        {"/*/ still comment */ x", " x"},
        {"// only\n", " "},
        {"// only", ""},
        {"a /* never closed", "a "},
        {"#include \"a.h\"\nint x;", " int x;"},
        {"a # b\n # c\nd", "a # b d"},
        {"# one */ # two\n/* x\n# y */ #define Z 1\n;", ";"},
        {"/* c */ #define Z 1\n", " #define Z 1 "},
        {"#define A \\  \n b\\\nc\nd", " d"},
        {"extern \"C\" { int f(); }", "\"C\"{ int f();}"},
        {"myextern externals", "my als"},
        {"exter/**/n ex\\tern exteexternrn;", ";"},
        {"class __declspec( dllexport ) Foo ;", "class Foo;"},
        {"void __stdcall f ( ) ;", "void f();"},
        {"DEF_SEQUENCE(x) ; IMPL_SEQUENCE(y);           ", "DEF_SEQUENCE(x);IMPL_SEQUENCE(y);"},
        {"SEQUENCE (octet ) y;   ", "SEQUENCE_octet_ y;"},
        {"NUBLISTV(Bar);     ", "NUBLISTV_Bar_;"},
        {"xNUBLISTP( Foo ) x;    ", "xNUBLISTP_Foo_ x;"},
        {"NUBLISTP(X) ", "NUBLISTP_X_ "},
        {"SEQUENCE(a,b)SEQUENCE(c)             ", "SEQUENCE_a,b_ SEQUENCE_c_ "},
        {" NUBLISTP(X", " NUBLISTP(X"}, // too near the end to be rewritten
        {"\"a // b\" '\"' \"c\\\"/*\"", "\"a // b\"'\"'\"c\\\"/*\""},
        {"\"two\nlines\" x", "\"two\nlines\"x"},
        {"'\\'' '\\\\' x", "'\\'''\\\\'x"},
        {"a 'b", "a'b"},
        {"a '", "a'"},
        {"a \"b", "a\"b"},
        {"a \"", "a\""},
        {"a \\\n b", "a b"},
        {"a\0b"s, "a"},
        {"\xff\t\x01z", "\xff z"},
    };
    for (const StreamRow& row : rows) {
        const Source source(row.source);
        EXPECT_EQ(source.result, 0) << row.source;
        EXPECT_EQ(source.Stream(), row.stream) << row.source;
    }
}

// Texts that begin at any offset of the blocks that are classified together.
TEST(Stream, DoesNotDependOnAlignment) {
    const std::string tail =
        "int rn; NUBLISTP( Foo ) all; extern \"s\" /* c */f ( a , b ) ; __stdcall g // e";
    const std::string expected = "int rn;NUBLISTP_Foo_ all;\"s\"f(a,b);g ";
    for (std::size_t shift = 0; shift < 150; ++shift) {
        const std::string head(shift, 'x');
        EXPECT_EQ(Source(head + ";" + tail).Stream(), head + ";" + expected) << shift;
    }
}

struct PlaceRow {
    std::string source;
    int pos, line, col, nbLine, nbCodeLine;
};

TEST(Stream, KnowsThePlaces) {
    const std::string words = "NUBLISTP ( Foo ) x;y       ";
    const PlaceRow rows[] = {
        {"int a;\n", 0, 1, 2, 1, 1},
        {"int a\n\n\nint b;\n", 5, 2, 1, 4, 3},
        {"/* 1\n 2 */ x", 1, 2, 8, 2, 1},
        {"a 'x\ny' b", 6, 1, 10, 1, 1},
        {"a\"x\ny\"b", 3, 2, 1, 2, 2},
        {words, 8, 1, 11, 1, 1},  // the underscore, where the parenthesis stands
        {words, 9, 1, 12, 1, 1},  // the argument, one column before its own
        {words, 12, 1, 15, 1, 1}, // the second underscore
        {words, 14, 1, 18, 1, 1}, // columns go on from there
    };
    for (const PlaceRow& row : rows) {
        const Source source(row.source);
        int line = 0;
        int col = 0;
        EXPECT_EQ(source.file->GetPos(row.pos, line, col), 0) << row.source;
        EXPECT_EQ(std::pair(line, col), std::pair(row.line, row.col)) << row.source << " at " << row.pos;
        EXPECT_EQ(source.file->GetNbLine(), row.nbLine) << row.source;
        EXPECT_EQ(source.file->GetNbCodeLine(), row.nbCodeLine) << row.source;
        EXPECT_EQ(source.file->GetPoint(row.pos).GetCol(), row.col) << row.source;
    }
}

TEST(Stream, PlacesOutsideAreRefused) {
    for (const char* text : {"", "// c", "x"}) {
        const Source source(text);
        int line = 7;
        int col = 8;
        EXPECT_EQ(source.file->GetPos(source.file->GetSize(), line, col), 1);
        EXPECT_EQ(source.file->GetErrMsg(), "TAPSourceFile::GetPos - Position out of bounds");
        EXPECT_EQ(line, 7);
        EXPECT_EQ(col, 8);
        EXPECT_EQ(source.file->GetPoint(source.file->GetSize()).GetLine(), 0);
        EXPECT_EQ(source.file->GetPoint(-1).GetCol(), 0);
    }
}

// Lines and columns that don't fit into 16 bits, entered and left again.
TEST(Stream, PlacesAreExactInLongFiles) {
    std::string text(70000, '\n');
    text += "a" + std::string(200000, 'b') + "extern\n";
    const std::size_t shortLine = text.size();
    text += "c " + std::string(140000, ' ') + "d";
    const Source source(text);
    const auto place = [&](char c) {
        const TAPSyntaxePoint point = source.file->GetPoint(static_cast<int>(source.Stream().find(c)));
        return std::pair(point.GetLine(), point.GetCol());
    };
    EXPECT_EQ(place('a'), std::pair(70001, 2));
    EXPECT_EQ(place('b'), std::pair(70001, 3));
    EXPECT_EQ(place('c'), std::pair(70002, 2));
    EXPECT_EQ(place('d'), std::pair(70002, static_cast<int>(text.size() - shortLine + 1)));
    EXPECT_EQ(source.file->GetNbLine(), 70002);
    EXPECT_EQ(source.file->GetNbCodeLine(), 3);
    const int lastB = static_cast<int>(source.Stream().rfind('b'));
    EXPECT_EQ(source.file->GetPoint(lastB).GetCol(), 200002);
}

TEST(Stream, CollectsIncludesAndMacros) {
    const Source source(
        "#include \"b.h\"\n # include\t<a.h\"\n#include <b.h> \n#include_next <no.h>\n#includex\n"
        "#include <open\n#define A 1\n#define A 2\n#define NONE\n#define  B  NUBLISTP(X) y\n"
        "#define F(a,b) (a)\n#define\tT 1\n#define R r\r\n#define C one \\\n#include <c.h>\n");
    const auto list = [](const TAIndex& index, bool withValues) {
        std::string all;
        for (int i = 0; i < index.size; ++i) {
            all += std::string(index.keys[i]) +
                   (withValues ? "=" + std::string(static_cast<const char*>(index.values[i])) : "") + ",";
        }
        return all;
    };
    EXPECT_EQ(list(source.file->includes, false), "a.h,b.h,");
    EXPECT_EQ(list(source.macros, true), "A=1,B=NUBLISTP_X_,C=one,F(a,b)=(a),R=r\r,");
}

// The names with the characters before them, and the lines and columns of the file.
TEST(Stream, KnowsThePlacesOfIncludes) {
    const std::string far = std::string(70000, '\n') + "#include " + std::string(100000, ' ');
    struct Row {
        std::string source;
        const char* includes;
    };
    const Row rows[] = {
        {"#include \"b.h\"\n # include\t<a.h\"\n#include \"b.h\"", "\"b.h 1:12 <a.h 2:14 \"b.h 3:12 "},
        {"#include_next <a.h>\n// #include <a.h>\n/*\n#include <a.h>\n*/ #include <a.h>", ""},
        {"/*\n# */ #include <a.h>\n\"\n#include <b.h>\n\"\n#include <c.h>", "<a.h 2:17 <c.h 6:12 "},
        {"'a\nb' NUBLISTP(C\n) x;\n#include <a.h>          ", "<a.h 4:12 "},
        {"/* x\n# */ 'a\nb' #include <a.h>", "<a.h 3:15 "},
        {far + "<a.h>", "<a.h 70001:100012 "},
    };
    for (const Row& row : rows) {
        const Source source(row.source);
        std::string found;
        for (const TAPInclude& include : source.file->GetIncludes()) {
            EXPECT_EQ(include.name, source.file->includes.keys[source.file->includes.IsIn(include.name)]);
            found += include.delimiter + std::string(include.name) + " " +
                     std::to_string(include.point.line) + ":" + std::to_string(include.point.col) + " ";
        }
        EXPECT_EQ(found, row.includes) << row.source;
    }
}

TEST(Stream, UnclosedDialectWordFails) {
    struct Row {
        std::string text;
        const char* word;
        int line, col;
    };
    const std::string far = std::string(70000, '\n') + std::string(200000, ' ');
    const Row rows[] = {
        {"NUBLISTP(Foo Bar) x;", "NUBLISTP", 1, 2},
        {"SEQUENCE(x                ", "SEQUENCE", 1, 2},
        {"aNUBLISTV (               ", "NUBLISTV", 1, 3},
        {"NUBLISTV(x)\0)         "s, "NUBLISTV", 0, 0}, // closed before the NUL
        {"NUBLISTV(x\0)          "s, "NUBLISTV", 1, 2},
        {"// NUBLISTP(a b)\n'NUBLISTP(a b)' /* NUBLISTP(a b)\n*/ SEQUENCE(c d)", "SEQUENCE", 3, 5},
        {"'a\nb' NUBLISTP(A\n) \"\n\" NUBLISTP(B) NUBLISTV(c d)", "NUBLISTV", 4, 16},
        {far + "NUBLISTV(c d)", "NUBLISTV", 70001, 200002},
    };
    for (const Row& row : rows) {
        testing::internal::CaptureStderr();
        const Source source(row.text);
        const std::string told = testing::internal::GetCapturedStderr();
        const TAPFailure& failure = source.file->GetFailure();
        EXPECT_EQ(source.result, row.line > 0 ? 1 : 0) << row.text;
        EXPECT_EQ(source.file->buffer, nullptr);
        EXPECT_EQ(source.file->GetErrMsg(), "");
        EXPECT_EQ(std::pair(failure.point.line, failure.point.col), std::pair(row.line, row.col)) << row.text;
        if (source.result == 0) continue;
        EXPECT_NE(told.find("memory.cpp"), std::string::npos) << row.text;
        EXPECT_EQ(failure.code, SFAIL_Word) << row.text;
        EXPECT_STREQ(failure.word, row.word) << row.text;
        EXPECT_EQ(source.file->GetSize(), 0);
    }
}

struct Listener final : TACallbackSubscriber {
    int ReceiveCallback(TACallbackPublisher*, int code, void* text, void* rest) override {
        received.push_back(std::to_string(code) + (text != nullptr ? static_cast<char*>(text) : "null"));
        EXPECT_EQ(rest, nullptr);
        return 0;
    }
    std::vector<std::string> received;
};

TEST(Stream, TellsSubscribersBeforeItStarts) {
    Listener listener;
    for (const char* name : {"/dev/null", "/nonexistent/file"}) {
        TAIndex macros;
        auto* file = new TAPSourceFile(name);
        file->AddSubscriber(&listener);
        testing::internal::CaptureStderr();
        EXPECT_EQ(file->Process(macros), 0);
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(file->GetStream(), nullptr);
        EXPECT_EQ(file->GetName(), name);
        const bool exists = name == std::string("/dev/null");
        EXPECT_EQ(file->GetFailure().code, exists ? SFAIL_None : SFAIL_Unreadable);
        EXPECT_EQ(file->GetFailure().systemError, exists ? 0 : ENOENT);
        file->Release();
    }
    EXPECT_EQ(listener.received, (std::vector<std::string>{"1", "1null"}));
}

} // namespace
