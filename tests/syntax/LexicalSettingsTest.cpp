#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <ostraka/foundation/TAIndex.h>
#include <ostraka/syntax/TAPSourceFile.h>

namespace {

using Settings = TAPLexicalSettings;

struct Read {
    std::string stream;
    std::string last; // line and column of the last character
};

Read ReadWith(const Settings* settings, const char* name, std::string_view text) {
    auto* file = new TAPSourceFile(new TAFileBuffer(name, text));
    if (settings != nullptr) file->SetLexicalSettings(std::make_shared<const Settings>(*settings));
    TAIndex macros;
    file->Process(macros);
    Read read;
    if (file->GetSize() > 0) {
        read.stream.assign(file->GetStream(), static_cast<std::size_t>(file->GetSize()));
        const TAPSyntaxePoint point = file->GetPoint(file->GetSize() - 1);
        read.last = std::to_string(point.line) + ":" + std::to_string(point.col);
    }
    file->Release();
    return read;
}

TEST(LexicalSettings, RealFiles) {
    struct {
        const char* about;
        const char* name;
        std::string_view text;
        const char* stream;
    } const rows[] = {
        {"a mark at the begin", "a.cpp", "\xef\xbb\xbfint a;", " int a;"},
        {"and nowhere else", "a.cpp", "int \xef\xbb\xbf;", "int \xef\xbb\xbf;"},
        {"separators of digits", "a.cpp", "a = 1'000'000 + 0xff'ff; c = 'x'; d = 1'",
         "a = 1000000 + 0xffff;c ='x';d = 1'"},
        {"a raw string", "a.cpp", "a = R\"(x\"\\\ny)\"; b = u8R\"q()\")q\" ; cR\"(\"",
         "a =\"(x'/\ny)\";b = u8\"q()')q\";cR\"(\""},
        {"a raw string without its end", "a.cpp", "a = R\"(x\"; b;", "a = R\"(x\";b;"},
        {"comments and literals hold nothing of it", "a.cpp", "/* R\"( */ a; // 1'0\nb = \"1'0 R\"; c",
         " a;b =\"1'0 R\";c"},
        {"attributes of arguments", "a.idl",
         "int f([in, out] long a, [out,retval] long* b, [in] long c[10]);",
         "int f(inout long a,out long* b,in long c[10]);"},
        {"other attributes", "a.IDL",
         "[object, uuid(\"a]b\")] interface I { [propget] int f([defaultvalue(1)] int x); long all[2]; };",
         " interface I { int f(int x);long all[2];};"},
        {"no attributes but in IDL", "a.cpp", "f([in]);", "f([in]);"},
        {"an attribute without its end", "a.idl", "f([in; g", "f([in;g"},
    };
    const Settings settings = Settings::ForRealFiles();
    for (const auto& row : rows) {
        const Read read = ReadWith(&settings, row.name, row.text);
        EXPECT_EQ(read.stream, row.stream) << row.about;
        const Read plain = ReadWith(nullptr, row.name, row.text);
        if (!plain.stream.empty() && plain.stream.back() == read.stream.back()) {
            EXPECT_EQ(read.last, plain.last) << row.about;
        }
    }
}

TEST(LexicalSettings, DroppedWords) {
    struct {
        std::vector<std::string> words;
        const char* text;
        const char* stream;
    } const rows[] = {
        {{"API"},
         "class API Ship; API int f(); APIS g; xAPI h; \"API\"; // API\n",
         "class Ship;int f();APIS g;xAPI h;\"API\";"},
        {{"DLL_*", "*_CALL", "A*C*E"}, "DLL_A a; MY_CALL b; DLL c; ABCDE d; ABDE e;", " a;b;DLL c;d;ABDE e;"},
        {{"ALIGNED()"}, "ALIGNED(4) int a; ALIGNED b; ALIGNED (f(\")\")) c; ALIGNED(d;", " int a;b;c;(d;"},
        {{"*"}, "int a(b);", "();"},
        {{""}, "int a;", "int a;"},
    };
    for (const auto& row : rows) {
        Settings settings;
        settings.droppedWords = row.words;
        EXPECT_EQ(ReadWith(&settings, "a.cpp", row.text).stream, row.stream) << row.text;
    }
}

TEST(LexicalSettings, OffThePlainStreamStays) {
    const char* text = "\xef\xbb\xbf int a = 1'0; R\"(\")\"; f([in] x);";
    const Settings none;
    EXPECT_FALSE(none.HasAny());
    EXPECT_EQ(ReadWith(&none, "a.idl", text).stream, ReadWith(nullptr, "a.idl", text).stream);
}

} // namespace
