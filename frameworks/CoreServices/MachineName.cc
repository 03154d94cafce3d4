#include <CoreServices/MachineName.h>

#include "machine/machine.h"

// A name that is not UTF-8 came from a file of another encoding: Latin-1 loses none of its bytes.
CFStringRef CSCopyMachineName() {
  machine::Fact<std::string> const name = machine::CurrentMachine().Names().ComputerName();
  if (!name) return nullptr;
  auto const* bytes = reinterpret_cast<UInt8 const*>(name->data());
  auto const length = static_cast<CFIndex>(name->size());
  CFStringRef const text =
      CFStringCreateWithBytes(nullptr, bytes, length, kCFStringEncodingUTF8, false);
  if (text != nullptr) return text;
  return CFStringCreateWithBytes(nullptr, bytes, length, kCFStringEncodingISOLatin1, false);
}
