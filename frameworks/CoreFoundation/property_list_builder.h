// Makes the objects of a property list while a reader goes through its text: finished values wait
// on a stack until the end of their container takes them off. Whatever waits when the builder ends
// is released, so a reader may stop anywhere.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "frameworks/CoreFoundation/dictionary_object.h"
#include "frameworks/CoreFoundation/number_object.h"
#include "frameworks/CoreFoundation/string_object.h"

class PropertyListBuilder {
 public:
  // Containers are mutable when the options (`CFPropertyListMutabilityOptions`) say so. The size of
  // the text tells how much remembering is worth.
  PropertyListBuilder(CFOptionFlags options, std::size_t text_size);
  ~PropertyListBuilder();
  PropertyListBuilder(PropertyListBuilder const&) = delete;
  PropertyListBuilder& operator=(PropertyListBuilder const&) = delete;

  // The values waiting. What a container holds begins at the count of the moment it was opened.
  std::size_t count() const { return count_; }

  // Takes over the reference.
  void Add(CFTypeRef value) {
    if (count_ == capacity_) MakeRoomFor(value);
    Values()[count_++] = value;
  }
  // Equal short strings become one object where that costs little, and so do equal numbers.
  void AddAscii(std::string_view text);
  void AddInteger(UInt64 magnitude, bool is_negative);
  void AddReal(double value);
  void AddDate(CFAbsoluteTime time);
  void AddData(std::span<UInt8 const> bytes);
  // Where objects are made that are then given to `Add`.
  ObjectBlocks& blocks() { return blocks_; }

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
  using Memory = std::unique_ptr<CFTypeRef[], Freer>;

  CFTypeRef* Values() const { return memory_.get() + kWordsBefore; }
  std::span<CFTypeRef const> From(std::size_t first) const {
    return {Values() + first, count_ - first};
  }
  // What a dictionary of as many values takes, so that its index has room behind them. As long as
  // nothing is there, it takes no memory.
  static std::size_t BytesFor(std::size_t capacity) {
    return __CFDictionary::BytesFor((capacity + 1) / 2);
  }
  static Memory Resize(Memory&& memory, std::size_t bytes);
  // Releases the value when there is none.
  void MakeRoomFor(CFTypeRef value);
  void AddNumber(CFNumberType kind, __CFNumber::Value value);
  // Adds the one object for all that are empty, which takes many times what it needs in the text.
  template <typename Make>
  void AddEmpty(CFTypeRef& empty, Make&& make);
  // Drops what the container took over and adds the container.
  void ReplaceFrom(std::size_t first, CFTypeRef container);
  void MakeMutableArray(std::size_t first);
  void MakeMutableDictionary(std::size_t first);

  // A large container takes the stack's memory for its own, for the sake of the peak: otherwise its
  // values would lie there twice.
  bool IsWorthHandingOver(std::size_t first) const;
  // The memory in `bytes` bytes, which begins with room for a container's own words and then has
  // the values from `first` on. The stack goes on without them.
  void* HandOver(std::size_t first, std::size_t bytes);

  ObjectBlocks blocks_;

  // The words of an array or dictionary that come before what it holds.
  static constexpr std::size_t kWordsBefore = 3;
  static constexpr std::size_t kFirstCapacity = 64;
  // Grown by `realloc`: that moves large blocks without copying, so the peak is what is used.
  Memory memory_;
  std::size_t count_ = 0, capacity_;

  bool is_mutable_;
  CFTypeRef empty_array_ = nullptr, empty_dictionary_ = nullptr, empty_data_ = nullptr;
  // Short strings and numbers by a hash of what they are, the latest for each, owned.
  std::vector<CFStringRef> strings_;
  std::vector<CFNumberRef> numbers_;
};
