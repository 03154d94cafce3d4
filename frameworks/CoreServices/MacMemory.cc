#include <CoreServices/MacMemory.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

namespace {

// The master pointer comes first: its address is the handle.
struct Block {
  Ptr bytes = nullptr;
  Size size = 0;
};

thread_local OSErr last_error = noErr;

Block& BlockOf(Handle handle) { return *reinterpret_cast<Block*>(handle); }

// Never of no bytes, so that null always means an emptied handle.
Ptr Resized(Ptr bytes, Size size) {
  if (size < 0) return nullptr;
  return static_cast<Ptr>(std::realloc(bytes, static_cast<std::size_t>(std::max(size, Size{1}))));
}

bool IsHandle(Handle handle) {
  last_error = noErr;
  if (handle == nullptr) last_error = nilHandleErr;
  return handle != nullptr;
}

}  // namespace

Handle NewHandle(Size size) {
  std::unique_ptr<Block> block(new (std::nothrow) Block);
  if (block != nullptr) block->bytes = Resized(nullptr, size);
  if (block == nullptr || block->bytes == nullptr) {
    last_error = memFullErr;
    return nullptr;
  }
  last_error = noErr;
  block->size = size;
  return &block.release()->bytes;
}

void DisposeHandle(Handle handle) {
  if (!IsHandle(handle)) return;
  std::unique_ptr<Block> const block(&BlockOf(handle));
  std::free(block->bytes);
}

Size GetHandleSize(Handle handle) { return IsHandle(handle) ? BlockOf(handle).size : 0; }

void SetHandleSize(Handle handle, Size size) {
  if (!IsHandle(handle)) return;
  Block& block = BlockOf(handle);
  if (block.bytes == nullptr) {
    last_error = nilHandleErr;
    return;
  }
  Ptr const bytes = Resized(block.bytes, size);
  if (bytes == nullptr) {
    last_error = memFullErr;
    return;
  }
  block.bytes = bytes;
  block.size = size;
}

void EmptyHandle(Handle handle) {
  if (!IsHandle(handle)) return;
  Block& block = BlockOf(handle);
  std::free(block.bytes);
  block = {};
}

OSErr MemError() { return last_error; }
