#include "Hold.h"

#include <cstdlib>

namespace {

int* MakeRow(int crates) {
    return new int[static_cast<unsigned>(crates)];
}

} // namespace

Hold::Hold() : weights(nullptr) {}

Hold::~Hold() {
    std::free(weights); // made by new[]
}

// The row that was there before is forgotten.
void Hold::Load(int crates) {
    weights = MakeRow(crates);
    size = crates;
    for (int i = 0; i < size; ++i) weights[i] = i;
}

// One crate too many.
int Hold::Weigh() const {
    int sum = 0;
    for (int i = 0; i <= size; ++i) sum += weights[i];
    return sum;
}

int Hold::CountAshore() const {
    int* row = MakeRow(4);
    delete[] row;
    return row[1];
}
