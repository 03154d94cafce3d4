// The four-character codes of files: which kind of file it is, and which application made it.
#pragma once

#include <cstdint>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"

// Any four bytes, the first the highest; letter case counts.
struct file_signature {
  std::uint32_t code;
};
struct file_type {
  std::uint32_t code;
};

template <>
struct InspectorTypeName<file_signature> {
  static constexpr char const* kName = "file signature";
};
template <>
struct InspectorTypeName<file_type> {
  static constexpr char const* kName = "file type";
};

// `NoSuchObject` unless there are four bytes.
file_signature file_signature_of(unsigned char const* name, unsigned long length);
file_type file_type_of(unsigned char const* name, unsigned long length);

boolean operator==(file_signature const& left, file_signature const& right);
boolean operator==(file_type const& left, file_type const& right);
