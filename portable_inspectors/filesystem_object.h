// Files and folders of the machine in use, as the types "filesystem object", "file" and "folder".
//
// Paths are absolute POSIX paths, names single components; both are the bytes of the file system.
// What is asked for as a file or folder is what the path leads to, links followed; a link is itself
// only as a "filesystem object" and where a folder's contents are listed, where it counts as a
// file. A path that ends in "/" names the folder that it leads to. Whatever does not exist, or is
// of the other kind, is no such object.
#pragma once

#include <string>
#include <string_view>

#include "evaluator/plugin/export.h"
#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "portable/file_item.h"

class GATOTU_API filesystem_object {
 public:
  // Empty: stands for nothing, and every property of it is no such object.
  filesystem_object() = default;
  explicit filesystem_object(FileItem item);
  // Tells nothing yet of what is there, so that naming items by the million costs little.
  explicit filesystem_object(std::string path) : path_(std::move(path)) {}

  // Taken when first asked for and not refreshed. `NoSuchObject` when there is nothing any more.
  FileItem const& Item() const;
  // Becomes what stands at the location now. When that cannot be learnt, throws `FileItemError`
  // and becomes empty.
  void Get(FileLocation const& location);

  FileLocation Location() const { return Item().Location(); }
  // Without a trailing "/", but for the root; empty for the empty object.
  std::string const& Path() const { return path_; }

 private:
  std::string path_;
  mutable FileItem item_;  // invalid until asked for
};

// Whatever is no folder.
class GATOTU_API file : public filesystem_object {
 public:
  using filesystem_object::filesystem_object;
};

class GATOTU_API folder : public filesystem_object {
 public:
  using filesystem_object::filesystem_object;
};

template <>
struct InspectorTypeName<filesystem_object> {
  static constexpr char const* kName = "filesystem object";
};
template <>
struct InspectorTypeName<file> {
  static constexpr char const* kName = "file";
};
template <>
struct InspectorTypeName<folder> {
  static constexpr char const* kName = "folder";
};

// By path.
GATOTU_API filesystem_object filesystem_object_of_world(unsigned char const* path,
                                                        unsigned long length);
namespace MacintoshPlatform {
GATOTU_API file posix_file_of_world(unsigned char const* path, unsigned long length);
GATOTU_API folder posix_folder_of_world(unsigned char const* path, unsigned long length);
GATOTU_API folder posix_folder_of_world(std::string_view path);
}  // namespace MacintoshPlatform

// By name in a folder.
GATOTU_API filesystem_object filesystem_object_of(unsigned char const* name, unsigned long length,
                                                  folder const& parent);
GATOTU_API file file_of(unsigned char const* name, unsigned long length, folder const& parent);
GATOTU_API file file_of(inspector_string const& name, folder const& parent);
GATOTU_API folder folder_of(unsigned char const* name, unsigned long length, folder const& parent);
GATOTU_API folder folder_of(inspector_string const& name, folder const& parent);

// The folder it lies in; the root has none.
GATOTU_API folder parent_folder_of(filesystem_object const& object);
