#include "bench/allocation_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> allocations{0};

}  // namespace

std::uint64_t CountAllocations() { return allocations.load(std::memory_order_relaxed); }

// Visible, so that the shared libraries of the project are counted as well.
__attribute__((visibility("default"))) void* operator new(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
__attribute__((visibility("default"))) void operator delete(void* memory) noexcept {
  std::free(memory);
}
__attribute__((visibility("default"))) void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
