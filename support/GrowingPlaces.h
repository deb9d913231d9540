#pragma once

// Sources whose last names are asked what they mean, however much stands before them. The benchmark times
// them and the tests hold a coarse bound.

#include <string>
#include <string_view>

#include "support/HostileTexts.h"

namespace texts {

// A text repeated between others, then one as often behind them; '$' becomes the number of the repetition.
struct GrowingPlace {
    const char* name;
    std::string_view first;
    std::string_view unit;
    std::string_view middle;
    std::string_view closing;
};

inline constexpr GrowingPlace growingPlaces[] = {
    {"members of members", "struct A{A*n;};void f(A*a){x=a", "->n", ";}", ""},
    {"overloads of no type", "", "int g(U$ a);\n", "void f(T x){g(x);}", ""},
    {"classes and bases", "class A0{int m;};", "class A$1:A$,B{};", "void f(A*a){a->m;}", ""},
    {"usings in blocks", "void f(){", "{using namespace b;", "x;", "}"},
    {"usings in namespaces", "", "namespace a$ { using namespace a; ", "int b=x;", "}"},
    {"types of types", "", "typedef T$ T$1;", "void f(){T1 t;t.m;}", ""},
    {"lambdas in lambdas", "void f(){int x;", "[x]{x;", "x;", "};"},
    {"arguments of templates", "template<class T>class A{T m;};void f(A<", "A<", "int", ">a){a.m.m.m;}"},
    {"variables without a type", "void f(){auto a=1;", "auto a=a;", "a.b;}", ""},
    {"casts of casts", "void f(){x=", "(A*)(", "b", ")->c"},
    {"behind loops", "void f(int p){", "for(int i$=0;i$<p;i$++)x;\n", "p;}", ""},
    {"in loops", "void f(int p){", "for(int i$=0;i$<p;i$++)\n", "i1;}", ""},
};

inline std::string TextOf(const GrowingPlace& shape, int count) {
    const auto times = static_cast<std::size_t>(count);
    return std::string(shape.first) + Repeat(shape.unit, times) + std::string(shape.middle) +
           Repeat(shape.closing, times);
}

} // namespace texts
