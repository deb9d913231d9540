#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <answers/facts/Place.h>

// A source text with marks in it: each `^` is taken out, and asks of the character behind it.
struct MarkedText {
    explicit MarkedText(std::string_view marked) {
        ostraka::answers::Place place;
        for (const char c : marked) {
            if (c == '^') {
                places.push_back(place);
                continue;
            }
            text += c;
            ++place.column;
            if (c == '\n') place = {place.line + 1, 1};
        }
    }

    std::string text;
    std::vector<ostraka::answers::Place> places;
};
