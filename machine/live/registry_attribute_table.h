// Which attributes of which devices are read: those that answer soon, and the same when read again.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace machine::live {

enum class AttributeForm : std::uint8_t {
  kPlain,         // a number where it looks like one, else text
  kText,          // text, digits or not
  kHexadecimal,   // a number written without "0x"
  kLittleEndian,  // "0x..." as four bytes, the lowest first
};

struct AttributeRow {
  std::string_view subsystem;
  char const* attribute;
  char const* key;  // of the property
  AttributeForm form;
};

// In groups by attribute: one may give several properties.
std::span<AttributeRow const> AttributesOf(std::string_view subsystem);

}  // namespace machine::live
