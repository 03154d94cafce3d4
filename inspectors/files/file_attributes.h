// What the catalogue knows of a file: the Finder's flags, the lock, and the lengths of both forks.
//
// All is read from the snapshot that the file holds; one that is not there is `FileItemError`.
#pragma once

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"

class file;

// The fork of a file, which the evaluator keeps for as long.
struct datafork {
  ::file const* file;
};
struct resfork {
  ::file const* file;
};

template <>
struct InspectorTypeName<datafork> {
  static constexpr char const* kName = "datafork";
};
template <>
struct InspectorTypeName<resfork> {
  static constexpr char const* kName = "resfork";
};

boolean locked_of(file const& file);
// Whether the Finder shows it.
boolean visible_of(file const& file);
boolean alias_of(file const& file);
boolean stationery_of(file const& file);

datafork datafork_of(file const& file);
resfork resfork_of(file const& file);

// Lengths are logical, in bytes; that of a file is of both forks.
integer data_length_of(datafork const& fork);
integer res_length_of(resfork const& fork);
integer length_of(file const& file);
