#include "inspectors/files/file_attributes.h"

#include "frame/registration.h"
#include "portable_inspectors/filesystem_object.h"

boolean locked_of(file const& file) { return file.Item().IsLocked(); }

boolean visible_of(file const& file) { return !file.Item().IsInvisible(); }

boolean alias_of(file const& file) { return file.Item().IsAlias(); }

boolean stationery_of(file const& file) { return file.Item().IsStationery(); }

datafork datafork_of(file const& file) { return {&file}; }

resfork resfork_of(file const& file) { return {&file}; }

integer data_length_of(datafork const& fork) {
  return static_cast<integer>(fork.file->Item().Length());
}

integer res_length_of(resfork const& fork) {
  return static_cast<integer>(fork.file->Item().ResourceLength());
}

integer length_of(file const& file) {
  return static_cast<integer>(file.Item().Length() + file.Item().ResourceLength());
}

namespace {

Type<datafork, kNoFingerprinting> datafork_type;
Type<resfork, kNoFingerprinting> resfork_type;
Property<file, boolean> locked("locked", "lockeds", locked_of, nullptr);
Property<file, boolean> visible("visible", "visibles", visible_of, nullptr);
Property<file, boolean> alias("alias", "aliases", alias_of, nullptr);
Property<file, boolean> stationery("stationery", "stationeries", stationery_of, nullptr);
Property<file, datafork> data_fork("data fork", "data forks", datafork_of, nullptr);
Property<file, resfork> resource_fork("resource fork", "resource forks", resfork_of, nullptr);
Property<resfork, integer> resource_length("length", "lengths", res_length_of, nullptr);
Property<datafork, integer> data_length("length", "lengths", data_length_of, nullptr);
Property<file, integer> length("length", "lengths", length_of, nullptr);
Property<resfork, integer> resource_size("size", "sizes", res_length_of, nullptr);
Property<datafork, integer> data_size("size", "sizes", data_length_of, nullptr);
Property<file, integer> size("size", "sizes", length_of, nullptr);

}  // namespace
