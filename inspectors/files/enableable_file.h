// A file that the system uses when it lies in one special folder and ignores when it lies in
// another.
#pragma once

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "portable_inspectors/filesystem_object.h"

class EnableableFile : public file {
 public:
  EnableableFile(file const& found, bool is_enabled) : file(found), is_enabled_(is_enabled) {}

  bool IsEnabled() const { return is_enabled_; }

 private:
  bool is_enabled_;
};

template <>
struct InspectorTypeName<EnableableFile> {
  static constexpr char const* kName = "enableable_file";
};

boolean enabled_of(EnableableFile const& file);
boolean disabled_of(EnableableFile const& file);
