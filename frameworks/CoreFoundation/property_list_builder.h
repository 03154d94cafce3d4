// Makes the objects of a property list while a reader goes through its text: finished values wait
// on a stack until the end of their container takes them off. Whatever waits when the builder ends
// is released, so a reader may stop anywhere.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

#include "frameworks/CoreFoundation/string_object.h"

class PropertyListBuilder {
 public:
  // Containers are mutable when the options (`CFPropertyListMutabilityOptions`) say so.
  explicit PropertyListBuilder(CFOptionFlags options);
  ~PropertyListBuilder();
  PropertyListBuilder(PropertyListBuilder const&) = delete;
  PropertyListBuilder& operator=(PropertyListBuilder const&) = delete;

  // The values waiting. What a container holds begins at the count of the moment it was opened.
  std::size_t count() const { return count_; }

  // Takes over the reference.
  void Add(CFTypeRef value);
  // Equal short strings become one object where that costs nothing.
  void AddAscii(std::string_view text);

  // The values from `first` on become one: an array of them, or a dictionary of keys (strings) and
  // values in turn, in which the last of equal keys counts.
  void MakeArray(std::size_t first);
  void MakeDictionary(std::size_t first);

  // The one value that is left, with its reference.
  CFTypeRef TakeRoot();

 private:
  struct Freer {
    void operator()(void* memory) const;
  };

  std::span<CFTypeRef const> From(std::size_t first) const {
    return {values_.get() + first, count_ - first};
  }
  // Drops what the container took over and adds the container.
  void ReplaceFrom(std::size_t first, CFTypeRef container);
  void MakeMutableArray(std::size_t first);
  void MakeMutableDictionary(std::size_t first);

  // Grown by `realloc`: that moves large blocks without copying, so the peak is what is used.
  std::unique_ptr<CFTypeRef[], Freer> values_;
  std::size_t count_ = 0, capacity_ = 0;

  bool is_mutable_;
  CFTypeRef empty_array_ = nullptr, empty_dictionary_ = nullptr;  // made when first needed
  // Short strings by a hash of their text, the latest for each, owned.
  std::array<CFStringRef, 1024> recent_ = {};
};
