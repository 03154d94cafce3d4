// Reads an open folder's names straight from the kernel, many at a time.
#pragma once

#include <dirent.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace machine::live {

// Calls `visit(name)` for every entry of an open folder, "." and ".." included. False, with `errno`
// set, when the folder cannot be read.
template <typename Visit>
bool ForEachEntry(int folder, Visit&& visit) {
  alignas(dirent64) char buffer[32768];
  for (;;) {
    long const size = ::syscall(SYS_getdents64, folder, buffer, sizeof buffer);
    if (size <= 0) return size == 0;
    for (long at = 0; at < size;) {
      auto const* entry = reinterpret_cast<dirent64 const*>(buffer + at);
      visit(static_cast<char const*>(entry->d_name));
      at += entry->d_reclen;
    }
  }
}

}  // namespace machine::live
