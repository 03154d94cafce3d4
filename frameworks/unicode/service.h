// What the frameworks ask of ICU. It lives in a shared library of its own that is loaded at the
// first need and stays: most questions never pay for ICU's start.
#pragma once

#include <CoreFoundation/CFString.h>

#include <cstddef>
#include <vector>

namespace unicode {

struct Conversion {
  std::size_t units = 0;  // UTF-16 units converted
  std::size_t bytes = 0;  // bytes they take
};

// Functions may be called from any thread.
class Service {
 public:
  virtual ~Service() = default;

  // `kCFStringEncodingInvalidId` for an unknown name.
  virtual CFStringEncoding FindEncoding(char const* name) = 0;

  // As `CFStringGetBytes` documents it. False when there is no such encoding.
  virtual bool Encode(CFStringEncoding encoding, UniChar const* text, std::size_t length,
                      UInt8 loss_byte, UInt8* buffer, std::size_t capacity,
                      Conversion& conversion) = 0;

  // False when there is no such encoding or the bytes are no text in it.
  virtual bool Decode(CFStringEncoding encoding, UInt8 const* bytes, std::size_t length,
                      std::vector<UniChar>& text) = 0;

  // The character without its case, by Unicode's simple folding.
  virtual UInt32 FoldCase(UInt32 character) = 0;
};

// Null when the library cannot be loaded.
Service* LoadService();

// The name and type of the one function that the library offers.
inline constexpr char const* kServiceFunctionName = "FrameworksUnicodeService";
using ServiceFunction = Service* (*)();

}  // namespace unicode
