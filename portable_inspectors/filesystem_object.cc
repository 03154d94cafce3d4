#include "portable_inspectors/filesystem_object.h"

#include "frame/registration.h"
#include "portable_inspectors/machine_files.h"
#include "portable_inspectors/text.h"

filesystem_object::filesystem_object(FileItem item)
    : path_(item.Location().POSIXPath()), item_(std::move(item)) {}

FileItem const& filesystem_object::Item() const {
  if (item_.IsValid()) return item_;
  if (path_.empty()) throw NoSuchObject();
  if (!item_.TryToGet(MakeFileLocation(ConstData(path_)))) throw NoSuchObject();
  return item_;
}

void filesystem_object::Get(FileLocation const& location) {
  path_.clear();
  item_.Get(location);
  path_ = location.POSIXPath();
}

namespace {

using machine::ItemKind;
using machine::Links;

// As many as the kernel follows.
constexpr int kMostLinks = 40;

[[noreturn]] void Refuse(std::string_view source, machine::Outcome reason) {
  machine::Announce(source, reason);
  throw NoSuchObject();
}

// Without doubled and trailing "/" and without "."; begins with "/".
std::string Tidy(std::string_view path) {
  std::string tidy;
  while (!path.empty()) {
    std::string_view const name = path.substr(0, path.find('/'));
    path.remove_prefix(std::min(name.size() + 1, path.size()));
    if (name.empty() || name == ".") continue;
    tidy += '/';
    tidy += name;
  }
  return tidy.empty() ? "/" : tidy;
}

// Only the machine knows where ".." leads, since what stands before it may be a link.
std::string WithoutParents(std::string path) {
  std::string const tidy = Tidy(path);
  std::size_t const last = (tidy + '/').rfind("/../");
  if (last == std::string::npos) return tidy;
  std::size_t const end = last + 3;
  std::string const start = OrNoSuchObject(MachineFiles().CanonicalFolder(tidy.substr(0, end)));
  return Tidy(start + tidy.substr(end));
}

// Such a path names the folder that it leads to, links followed.
bool IsOfFolder(std::string_view path) { return path.ends_with('/') || path.ends_with("/."); }

struct Place {
  std::string path;
  ItemKind kind;
};

Place Find(std::string_view path, Links links) {
  if (!path.starts_with('/') || path.find('\0') != std::string_view::npos) {
    Refuse(path.empty() ? "empty path" : path, machine::Outcome::kMalformed);
  }
  machine::FileSource const& files = MachineFiles();
  std::string place = WithoutParents(std::string(path));
  bool is_of_folder = IsOfFolder(path);
  for (int followed = 0; followed <= kMostLinks; ++followed) {
    ItemKind const kind = OrNoSuchObject(files.Status(place, Links::kKeep)).kind;
    if (kind != ItemKind::kLink || (links == Links::kKeep && !is_of_folder)) {
      if (is_of_folder && kind != ItemKind::kFolder) Refuse(path, machine::Outcome::kAbsent);
      return {std::move(place), kind};
    }
    std::string const target = OrNoSuchObject(files.ReadLink(place));
    is_of_folder = is_of_folder || IsOfFolder(target);
    place = WithoutParents(
        target.starts_with('/') ? target : JoinPath(std::string(ParentOfPath(place)), target));
  }
  Refuse(std::string(path) + " (too many links)", machine::Outcome::kMalformed);
}

filesystem_object FindObject(std::string_view path) {
  return filesystem_object(Find(path, Links::kKeep).path);
}

file FindFile(std::string_view path) {
  Place place = Find(path, Links::kFollow);
  if (place.kind == ItemKind::kFolder) {
    Refuse("file " + std::string(path), machine::Outcome::kAbsent);
  }
  return file(std::move(place.path));
}

folder FindFolder(std::string_view path) {
  Place place = Find(path, Links::kFollow);
  if (place.kind != ItemKind::kFolder) {
    Refuse("folder " + std::string(path), machine::Outcome::kAbsent);
  }
  return folder(std::move(place.path));
}

std::string PathInFolder(std::string_view name, folder const& parent) {
  if (parent.Path().empty()) throw NoSuchObject();
  bool const is_name =
      !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
  std::string path = JoinPath(parent.Path(), name);
  if (!is_name) Refuse(path, machine::Outcome::kMalformed);
  return path;
}

}  // namespace

filesystem_object filesystem_object_of_world(unsigned char const* path, unsigned long length) {
  return FindObject(View(path, length));
}

file MacintoshPlatform::posix_file_of_world(unsigned char const* path, unsigned long length) {
  return FindFile(View(path, length));
}

folder MacintoshPlatform::posix_folder_of_world(unsigned char const* path, unsigned long length) {
  return FindFolder(View(path, length));
}

folder MacintoshPlatform::posix_folder_of_world(std::string_view path) { return FindFolder(path); }

filesystem_object filesystem_object_of(unsigned char const* name, unsigned long length,
                                       folder const& parent) {
  return FindObject(PathInFolder(View(name, length), parent));
}

file file_of(unsigned char const* name, unsigned long length, folder const& parent) {
  return FindFile(PathInFolder(View(name, length), parent));
}

file file_of(inspector_string const& name, folder const& parent) {
  return file_of(name.start, name.length, parent);
}

folder folder_of(unsigned char const* name, unsigned long length, folder const& parent) {
  return FindFolder(PathInFolder(View(name, length), parent));
}

folder folder_of(inspector_string const& name, folder const& parent) {
  return folder_of(name.start, name.length, parent);
}

folder parent_folder_of(filesystem_object const& object) {
  if (object.Path().empty() || object.Path() == "/") throw NoSuchObject();
  return FindFolder(ParentOfPath(object.Path()));
}

namespace {

Type<filesystem_object> filesystem_object_type;
DerivedType<file, filesystem_object> file_type;
DerivedType<folder, filesystem_object> folder_type;

NamedGlobalProperty<filesystem_object> object_by_path("filesystem object", "filesystem objects",
                                                      filesystem_object_of_world, nullptr);
NamedGlobalProperty<file> file_by_path("file", "files", MacintoshPlatform::posix_file_of_world,
                                       nullptr);
NamedGlobalProperty<folder> folder_by_path("folder", "folders",
                                           MacintoshPlatform::posix_folder_of_world, nullptr);
NamedProperty<folder, filesystem_object> object_by_name("filesystem object", "filesystem objects",
                                                        filesystem_object_of, nullptr);
NamedProperty<folder, file> file_by_name("file", "files", file_of, nullptr);
NamedProperty<folder, folder> folder_by_name("folder", "folders", folder_of, nullptr);
Property<filesystem_object, folder> parent_folder("parent folder", "parent folders",
                                                  parent_folder_of, nullptr);

}  // namespace
