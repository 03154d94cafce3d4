#include <BSD/stdlib.h>

#include <cerrno>
#include <cstring>

#include "machine/machine.h"

namespace BSD {
namespace {

void Report(machine::Absence const& absence) { errno = absence.error != 0 ? absence.error : EIO; }

}  // namespace

int mkstemp(char* path) {
  machine::Fact<machine::UniqueFile> made = machine::CurrentMachine().Files().MakeUniqueFile(path);
  if (!made) {
    Report(made.absence());
    return -1;
  }
  std::memcpy(path, made->path.data(), made->path.size());
  return made.value().file.Release();
}

char* mkdtemp(char* path) {
  auto const made = machine::CurrentMachine().Files().MakeUniqueFolder(path);
  if (!made) {
    Report(made.absence());
    return nullptr;
  }
  std::memcpy(path, made->data(), made->size());
  return path;
}

}  // namespace BSD
