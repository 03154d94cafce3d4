// Property lists as JSON, whole and straight from their objects: nothing is dropped and nothing
// flattened.
//
//     string                its characters, as UTF-8; a surrogate without its other half is escaped
//     number                all digits of an integer; a real with a fraction or an exponent, in as
//                           few digits as give it back; "NaN", "Infinity", "-Infinity"
//     boolean, null         as such
//     date                  RFC 3339; one that has no such text is the string "S seconds since
//                           2001-01-01T00:00:00Z"
//     data                  base64
//     array, dictionary     as such, in their own order
//     URL                   its string
//     anything else         the string "unknown type"
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <string>
#include <vector>

namespace gatotu::host {

// The most that is written for one answer, and for one value by the cast. A list may hold the same
// object many times over: some 76 bytes of file stand for 2^28 values.
inline constexpr std::size_t kMostPropertyListBytes = std::size_t{256} << 20U;

// Appends to a text, part by part, so that whoever asks can look after other things in between.
// Depth costs memory, not stack.
class PropertyListJson {
 public:
  enum class State { kMore, kDone, kTooLong };

  // The object stays as it is meanwhile. `most` bounds the text's whole length; what stands in the
  // text behind `kTooLong` is of no use.
  PropertyListJson(CFTypeRef object, std::string& text, std::size_t most);

  State Continue();

 private:
  // An array or dictionary that has begun: the place in `items_` of what it holds, for a
  // dictionary all keys and then all values.
  struct Container {
    bool is_dictionary;
    std::size_t first, count, next;
  };

  void Write(CFTypeRef object);
  void OpenArray(CFArrayRef array);
  void OpenDictionary(CFDictionaryRef dictionary);
  void WriteNextItem();

  std::string& text_;
  std::size_t const most_;
  std::vector<Container> open_;
  std::vector<CFTypeRef> items_;
};

// The whole at once; false when it would take more.
bool AppendPropertyListJson(CFTypeRef object, std::string& text, std::size_t most);

}  // namespace gatotu::host
