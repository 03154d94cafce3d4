// A property list in XML or in the old text form, as UTF-8. Sources in UTF-8 are
// borrowed as they are and checked only where they are read; all others are converted whole.
#pragma once

#include <CoreFoundation/CFString.h>

#include <cstddef>
#include <string>
#include <string_view>

class PropertyListSource {
 public:
  // The bytes must outlive it. A byte-order mark decides the encoding, else the zero bytes of
  // UTF-16 and UTF-32, else the XML declaration; without any of them the source is UTF-8.
  PropertyListSource(UInt8 const* bytes, std::size_t length);

  // Null, or why there is no text: its encoding is not known, or the bytes are not text in it.
  char const* failure() const { return failure_; }

  // Without a byte-order mark.
  std::string_view text() const { return is_converted_ ? std::string_view(converted_) : borrowed_; }

  // The line of a position in the text, from 1.
  std::size_t LineOf(std::size_t offset) const;

 private:
  void Convert(CFStringEncoding encoding);

  std::string_view borrowed_;
  std::string converted_;
  bool is_converted_ = false;
  char const* failure_ = nullptr;
};
