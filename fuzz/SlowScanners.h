#pragma once

// The scanners and the search for operators as plainly as they can be said: by recursion, with a question for
// every row at every position, and for short texts only. 0 is "not found".

#include <cctype>
#include <cstring>
#include <string>

class SlowScanners {
public:
    explicit SlowScanners(const std::string& content) : text(content) {}

    // The bracket that ends what `up` begins; `step` is the direction, `bound` the last position looked at.
    int Bracket(char up, int step, int pos, int bound) const {
        if (step > 0 ? bound <= pos : pos < bound) return 0;
        static const char* const kinds[] = {"{}([\"'", "()[\"'", "[](\"'", ")(]\"'", "][)\"'"};
        const char* kind = *kinds;
        for (const char* k : kinds) kind = k[0] == up ? k : kind;
        int count = 0;
        for (; (bound - pos) * step >= 0; pos += step) {
            if (OneOf(At(pos), kind + 2)) {
                pos = FarEnd(step, pos, bound);
                if (pos == 0) return 0;
            } else {
                count += At(pos) == up ? 1 : At(pos) == kind[1] ? -1 : 0;
            }
            if (count == 0) return pos;
        }
        return 0;
    }

    int EndOfString(int begin, int end) const {
        for (int i = begin + 1; i <= end; ++i) {
            if (At(i) == '"' && (i == end || At(i + 1) != '"')) return i;
            i += At(i) == '\\' || At(i) == '"' ? 1 : 0;
        }
        return 0;
    }

    int EndOfCharacter(int begin, int end) const {
        for (int i = begin + 1; i <= end; ++i) {
            if (At(i) == '\'') return i;
            i += At(i) == '\\' ? 1 : 0;
        }
        return 0;
    }

    int BeginOfString(int pos, int limit) const {
        for (int k = pos - 1; k >= limit; --k) {
            if (At(k) != '"') continue;
            if (k == limit) return k;
            const bool joint = k > limit + 1 && At(k - 1) == '"' && EvenBackslashes(k - 1, limit + 1);
            if (!joint && EvenBackslashes(k, limit)) return k;
            k -= joint ? 1 : 0;
        }
        return 0;
    }

    int BeginOfCharacter(int pos, int limit) const {
        for (int k = pos - 1; k >= limit; --k) {
            if (At(k) == '\'' && EvenBackslashes(k, limit)) return k;
        }
        return 0;
    }

    int EndOfInstruction(int begin, int end) const {
        if (begin > end) return 0;
        int word = begin;
        while (word <= end && (std::isalpha(static_cast<unsigned char>(At(word))) || At(word) == '_')) ++word;
        const bool special = At(begin) == '(' || Stands("return(", begin) || Stands("SEQUENCE(", begin);
        const int close = word <= end && At(word) == '(' && !special ? Bracket('(', 1, word, end) : 0;
        if (close != 0) return close;
        for (const char* label : {"public:", "protected:", "private:", "NUBTry", "NUBEndTry"}) {
            const int length = static_cast<int>(std::strlen(label));
            if (Stands(label, begin) && end - begin >= length) return begin + length - 1;
        }
        for (int i = begin; i <= end; ++i) {
            if (At(i) == ';') return i;
            if (At(i) == '{') return i - 1;
            if (OneOf(At(i), "([\"'") && (i = FarEnd(1, i, end)) == 0) return 0;
        }
        return end;
    }

    int ExistLongerOp(int begin, int end, int pos, int n) const {
        const auto three = [&](int at) { return Stands(">>=", at) || Stands("->*", at); };
        const auto two = [&](int at) {
            return (At(at + 1) == '=' && OneOf(At(at), "=*/+-%!&^|<>")) || Stands("||", at) ||
                   Stands("->", at) || Stands(".*", at) || Stands("::", at);
        };
        if (n > 2) return 0;
        if (pos - 2 >= begin && three(pos - 2)) return 3;
        if ((n == 2 || pos > begin) && pos < end && three(pos - 1)) return 3;
        if (n == 1 && pos + 2 <= end && three(pos)) return 3;
        if (n == 1 && ((pos > begin && two(pos - 1)) || (pos < end && two(pos)))) return 2;
        const int second = n == 2 ? pos - 1 : pos; // of a pair of signs
        for (char sign : {'-', '+'}) {
            if (second - 1 < begin || At(second) != sign || At(second - 1) != sign) continue;
            return second - 1 == begin ? 2 : At(second - 2) == sign ? 0 : 3;
        }
        return n == 1 && pos < end && OneOf(At(pos), "+-") && At(pos) == At(pos + 1) ? 2 : 0;
    }

    int SearchOperator(int begin, int end, int& length) const {
        int best = -1;
        int found = 0;
        int foundLength = 0;
        for (int pos = end; begin < end && pos >= begin; --pos) {
            if (OneOf(At(pos), ")]\"'") && (pos = FarEnd(-1, pos, begin)) == 0) return 0;
            const char c = At(pos);
            const char b = pos > begin ? At(pos - 1) : 0; // the characters before c within the text
            const char a = pos >= begin + 2 ? At(pos - 2) : 0;
            const bool e1 = ExistLongerOp(begin, end, pos, 1) == 0;
            const bool e2 = ExistLongerOp(begin, end, pos, 2) == 0;
            if (OneOf(c, "&|") && b == c) return length = 2, pos - 1;
            if (c == ':' && e1) return length = 1, pos;
            const int level = best;
            const auto row = [&](int rowLevel, bool taken, int rowLength) {
                if (best != level || level >= rowLevel || !taken) return;
                best = rowLevel;
                found = pos - rowLength + 1;
                foundLength = rowLength;
            };
            row(53, c == ',' && e1, 1);
            row(50, c == '=' && OneOf(a, "<>") && a == b, 3);
            row(50, c == '=' && OneOf(b, "><&|!^%/-+*=") && e2, 2);
            row(50, c == '=' && e1, 1);
            row(50, OneOf(c, "<>") && b != c && (pos == end || At(pos + 1) != c) && e1, 1);
            row(45, OneOf(c, "+-") && e1, 1);
            row(40, c == '%' && e1, 1);
            row(35, OneOf(c, "*&/") && e1, 1);
            row(30, c == '|' && e1, 1);
            row(25, c == '^' && e1, 1);
            row(20, OneOf(c, "<>") && b == c && e2, 2);
            row(10, c == '*' && a == '-' && b == '>' && At(pos - 3) != '-', 3);
            row(10, c == '>' && b == '-' && a != '-' && e2, 2);
            row(10, c == '*' && b == '.' && e2, 2);
            row(10, c == '.' && e1, 1);
            row(5, c == ':' && b == ':', 2);
            row(3, OneOf(c, "+-") && b == c, 2);
        }
        if (best >= 0) length = foundLength;
        return found;
    }

private:
    static bool OneOf(char c, const char* set) { return c != 0 && std::strchr(set, c) != nullptr; }

    char At(int pos) const {
        return pos >= 0 && pos < static_cast<int>(text.size()) ? text[static_cast<std::size_t>(pos)] : '\0';
    }
    bool Stands(const char* word, int at) const {
        return at >= 0 && text.compare(static_cast<std::size_t>(at), std::strlen(word), word) == 0;
    }
    bool EvenBackslashes(int pos, int lowest) const {
        int first = pos;
        while (first > lowest && At(first - 1) == '\\') --first;
        return (pos - first) % 2 == 0;
    }

    // Of the bracket pair or literal at `pos`.
    int FarEnd(int step, int pos, int bound) const {
        if (At(pos) == '"') return step > 0 ? EndOfString(pos, bound) : BeginOfString(pos, bound);
        if (At(pos) == '\'') return step > 0 ? EndOfCharacter(pos, bound) : BeginOfCharacter(pos, bound);
        return Bracket(At(pos), step, pos, bound);
    }

    const std::string& text;
};
