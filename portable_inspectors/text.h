// Strings of the evaluator as the functions of this room handle them. A view of a string is valid
// as long as the string; `Slice` turns a part of it into a string again without copying, since a
// result may point into what it was taken from.
#pragma once

#include <cstring>
#include <string_view>

#include "evaluator/plugin/entry_points.h"

inline std::string_view View(inspector_string const& string) {
  return {reinterpret_cast<char const*>(string.start), string.length};
}

inline std::string_view View(unsigned char const* start, unsigned long length) {
  return {reinterpret_cast<char const*>(start), length};
}

inline inspector_string Slice(std::string_view text) {
  return {reinterpret_cast<unsigned char const*>(text.data()), text.size()};
}

// Room for `length` bytes in evaluator memory.
inline unsigned char* AllocateText(std::size_t length) {
  return static_cast<unsigned char*>(Allocate_Inspector_Memory(length));
}

inline inspector_string CopyText(std::string_view text) {
  unsigned char* const copy = AllocateText(text.size());
  if (!text.empty()) std::memcpy(copy, text.data(), text.size());
  return {copy, text.size()};
}
