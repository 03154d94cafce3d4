// Counts what a benchmark allocates on the heap.
#pragma once

#include <cstdint>

// Calls of operator new in this process so far.
std::uint64_t CountAllocations();
