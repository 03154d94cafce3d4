// The objects behind the numbers that callers hold.
#pragma once

#include <IOKit/IOKitLib.h>

#include <memory>
#include <mutex>
#include <unordered_map>

#include "machine/registry.h"

// An entry of the registry, or the children of one on their way. Neither: no object.
struct RegistryObject {
  machine::SharedRegistryNode node;
  std::shared_ptr<machine::RegistryChildren> children;
};

class RegistryObjectTable {
 public:
  static RegistryObjectTable& Instance();

  // A new number with one reference.
  io_object_t Add(RegistryObject object);
  // What is returned lives on its own.
  RegistryObject Find(io_object_t number);
  // These answer false, and 0, for a number that is no object.
  bool Retain(io_object_t number);
  bool Release(io_object_t number);
  UInt32 CountOf(io_object_t number);

 private:
  // Numbers below are ports and mistakes.
  static constexpr io_object_t kFirst = 0x1000;

  struct Entry {
    RegistryObject object;
    UInt32 count = 1;
  };

  std::mutex guard_;
  std::unordered_map<io_object_t, Entry> entries_;
  io_object_t next_ = kFirst;
};
