// Undefined behaviour with and without values in its message, in a function and in its caller.
#include <climits>

namespace {

int Sum(int a, int b) {
    return a + b;
}

int Third(const int (&loads)[3], int i) {
    return loads[i];
}

} // namespace

int main(int argc, char**) {
    const int loads[] = {1, 2, 3};
    char bytes[8] = {};
    int result = Sum(INT_MAX, argc);
    result += 1 << (31 + argc);
    result += Third(loads, 2 + argc) & 1;
    result ^= *reinterpret_cast<int*>(bytes + argc);
    return result == 4711;
}
