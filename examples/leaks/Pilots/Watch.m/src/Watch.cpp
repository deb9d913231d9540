#include "Watch.h"

void Watch::Note(const std::string& line) {
    last = new Entry{line, last};
}
