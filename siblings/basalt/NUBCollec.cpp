#include <basalt/NUBCollec.h>

NUBCollecRoot::~NUBCollecRoot() = default;
