#include "frameworks/IOKit/object_table.h"

#include <utility>

#include "machine/never_destroyed.h"

RegistryObjectTable& RegistryObjectTable::Instance() {
  static machine::NeverDestroyed<RegistryObjectTable> table;
  return *table;
}

// Four thousand million objects later the numbers start again, past those still in use.
io_object_t RegistryObjectTable::Add(RegistryObject object) {
  std::lock_guard const lock(guard_);
  while (next_ < kFirst || entries_.contains(next_)) ++next_;
  entries_.emplace(next_, Entry{std::move(object)});
  return next_++;
}

RegistryObject RegistryObjectTable::Find(io_object_t number) {
  std::lock_guard const lock(guard_);
  auto const found = entries_.find(number);
  return found == entries_.end() ? RegistryObject() : found->second.object;
}

bool RegistryObjectTable::Retain(io_object_t number) {
  std::lock_guard const lock(guard_);
  auto const found = entries_.find(number);
  if (found == entries_.end()) return false;
  ++found->second.count;
  return true;
}

bool RegistryObjectTable::Release(io_object_t number) {
  RegistryObject ended;  // when the table is free again
  std::lock_guard const lock(guard_);
  auto const found = entries_.find(number);
  if (found == entries_.end()) return false;
  if (--found->second.count > 0) return true;
  ended = std::move(found->second.object);
  entries_.erase(found);
  return true;
}

UInt32 RegistryObjectTable::CountOf(io_object_t number) {
  std::lock_guard const lock(guard_);
  auto const found = entries_.find(number);
  return found == entries_.end() ? 0 : found->second.count;
}
