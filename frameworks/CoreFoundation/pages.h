// Pages of memory that is about to be filled.
#pragma once

#include <cstddef>

// Fetches the pages of large memory from the system at once, which otherwise costs a fault for each
// of them: more time than filling it. Does nothing for small memory, and where the system cannot.
void FetchPages(void const* memory, std::size_t size);
