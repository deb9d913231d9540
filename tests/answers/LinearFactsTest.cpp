#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include <answers/resolve/Resolver.h>

#include "support/GrowingPlaces.h"
#include "support/HostileTexts.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace ostraka::answers;

#if defined(__SANITIZE_ADDRESS__)
constexpr int repetitions = 1'000;
#else
constexpr int repetitions = 10'000;
#endif

// A text repeated between others, then one as often behind them; '$' becomes the number of the repetition.
struct Shape {
    std::string_view first;
    std::string_view unit;
    std::string_view middle = "";
    std::string_view closing = "";
    Dialect dialect = Dialect::Cpp;
};

std::string TextOf(const Shape& shape, int count) {
    const auto times = static_cast<std::size_t>(count);
    return std::string(shape.first) + texts::Repeat(shape.unit, times) + std::string(shape.middle) +
           texts::Repeat(shape.closing, times);
}

template <class Work>
double SecondsOf(const Work& work) {
    double best = 1e9;
    for (int i = 0; i < 2; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        best =
            std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

// Room for what a machine does beside.
constexpr double noise = 0.05;

const Shape shapes[] = {
    {"", "<"},
    {"", "("},
    {"", "{"},
    {"", "a<"},
    {"", "a<", "b", ">x;"},
    {"void f(){", "a<"},
    {"void f(){", "if("},
    {"void f(){", "if(a)b;else ", "c;}"},
    {"void f(){", "for(int i$=0;;)", "x;}"},
    {"void f(){", "switch(a)case b:", "x;}"},
    {"void f(){", "EACH(a,b){"},
    {"void f(){", "f([]{", "", "});"},
    {"void f(){", "T x=[](", "", "){};"},
    {"", "template<class T>", "class A;"},
    {"", "template<class T> W "},
    {"", "A class "},
    {"", "class A {"},
    {"", "class A : "},
    {"", "W(x)\n"},
    {"", "a * ", ";"},
    {"", "a::", "b;"},
    {"int t[]={", "1,", "0};"},
    {"int x=1", "+a*b", ";"},
    {"void f(){x=", " a<b &&", "c;}"},
    {"int a", ",*b$", ";"},
    {"int f(", "int a$,", "int b);"},
    {"A::A():a(1)", ",a$(1)", "{}"},
    {"class A:b", ",b$", "{};"},
    {"", "int f(a) int a; "},
    {"", "int a;"},
    {"", "R\"$(\n"},
    {"", "'a\n"},
    {"", "#if A\n{\n#else\n}\n#endif\n"},
    {"", "void f()\n  {\n    a;\nint b$;\n"},
    {"", "f() {\n a b;\n"},
    {"", "({", "", "})"},
    {"", "coclass A{interface B;", "", "", Dialect::Idl},
    {"union A switch(long){", "case 1: long a$;", "};", "", Dialect::Idl},
};

TEST(LinearFacts, CostNoMoreInLongTexts) {
    for (const Shape& shape : shapes) {
        for (const Depth depth : {Depth::Declarations, Depth::Bodies}) {
            const auto seconds = [&](int count) {
                const std::string text = TextOf(shape, count);
                return SecondsOf([&] { ReadFacts(TokenList(text), depth, shape.dialect); });
            };
            EXPECT_LT(seconds(2 * repetitions), 2.6 * seconds(repetitions) + noise)
                << shape.first << shape.unit;
        }
    }
}

// The last names of the text are asked for.
TEST(LinearFacts, QuestionsCostNoMoreInLongTexts) {
    for (const texts::GrowingPlace& shape : texts::growingPlaces) {
        const auto seconds = [&](int count) {
            const TemporaryFolder folder;
            std::ofstream("main.cpp") << texts::TextOf(shape, count);
            CodeBase base({{folder.path}, {}});
            Names names(base);
            Resolver resolver(base, names);
            EXPECT_TRUE(resolver.Open(base.FileAt(folder.path + "/main.cpp")));
            return SecondsOf([&] {
                for (int i = std::max(0, resolver.Tokens().Count() / 2 - 20);
                     i < resolver.Tokens().Count() / 2; ++i)
                    resolver.Ask(resolver.Tokens()[i].begin);
                for (int i = std::max(0, resolver.Tokens().Count() - 20); i < resolver.Tokens().Count(); ++i)
                    resolver.Ask(resolver.Tokens()[i].begin);
            });
        };
        EXPECT_LT(seconds(2 * repetitions), 2.6 * seconds(repetitions) + 2 * noise) << shape.name;
    }
}

} // namespace
