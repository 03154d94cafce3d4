#include "frameworks/CoreFoundation/pages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

void FetchPages(void const* memory, std::size_t size) {
  constexpr std::size_t kLarge = 1 << 20;
  if (size < kLarge) return;
  static auto const page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  auto const begin = reinterpret_cast<std::uintptr_t>(memory);
  std::uintptr_t const first = (begin + page - 1) & ~(page - 1), end = (begin + size) & ~(page - 1);
  static_cast<void>(madvise(reinterpret_cast<void*>(first), end - first, MADV_POPULATE_WRITE));
}
