#pragma once

#include <string>

// A watch keeps its log for ever.
class Watch {
public:
    void Note(const std::string& line);

private:
    struct Entry {
        std::string line;
        Entry* before;
    };
    Entry* last = nullptr;
};
