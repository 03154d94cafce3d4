// What lies in a folder and below it.
#include <string>

#include "frame/registration.h"
#include "portable/file_name.h"
#include "portable_inspectors/descendant_iterator.h"
#include "portable_inspectors/filesystem_object_iterator.h"
#include "portable_inspectors/folder_entries.h"
#include "portable_inspectors/iterated_by_parameter.h"
#include "portable_inspectors/machine_files.h"
#include "portable_inspectors/text.h"

void filesystem_object_iterator::Open(folder const& parent) {
  open_ = OpenFolder(parent.Path());
  path_ = parent.Path();
}

std::string filesystem_object_iterator::NextPath(Wanted wanted) {
  FolderEntry entry;
  while (open_ != nullptr && ReadEntry(*open_, path_, entry)) {
    bool const is_folder = entry.kind == machine::ItemKind::kFolder;
    if (wanted == Wanted::kAll || is_folder == (wanted == Wanted::kFolders)) {
      return JoinPath(path_, entry.name);
    }
    Check_For_Inspector_Interruption();
  }
  open_.reset();
  throw NoSuchObject();
}

filesystem_object filesystem_object_iterator::First(Of, folder const& parent) {
  Open(parent);
  return Next(Of(), parent);
}
filesystem_object filesystem_object_iterator::Next(Of, folder const&) {
  return filesystem_object(NextPath(Wanted::kAll));
}

file filesystem_object_iterator::FirstFile(Of, folder const& parent) {
  Open(parent);
  return NextFile(Of(), parent);
}
file filesystem_object_iterator::NextFile(Of, folder const&) {
  return file(NextPath(Wanted::kFiles));
}

folder filesystem_object_iterator::FirstFolder(Of, folder const& parent) {
  Open(parent);
  return NextFolder(Of(), parent);
}
folder filesystem_object_iterator::NextFolder(Of, folder const&) {
  return folder(NextPath(Wanted::kFolders));
}

namespace {

// The three sequences of a folder's contents, one interface.
struct ItemIterator {
  using Object = filesystem_object;
  Object First(folder const& parent) { return contents.First(Of(), parent); }
  Object Next(folder const& parent) { return contents.Next(Of(), parent); }
  filesystem_object_iterator contents;
};
struct FileIterator {
  using Object = file;
  Object First(folder const& parent) { return contents.FirstFile(Of(), parent); }
  Object Next(folder const& parent) { return contents.NextFile(Of(), parent); }
  filesystem_object_iterator contents;
};
struct FolderIterator {
  using Object = folder;
  Object First(folder const& parent) { return contents.FirstFolder(Of(), parent); }
  Object Next(folder const& parent) { return contents.NextFolder(Of(), parent); }
  filesystem_object_iterator contents;
};

// Those of a sequence whose name matches a pattern of "*" and "?".
template <class Iterator>
class FindIterator {
 public:
  using Object = typename Iterator::Object;

  Object First(inspector_string const& pattern, folder const& parent) {
    pattern_ = View(pattern);
    // No name holds a NUL, and the matching would take it for the end.
    if (pattern_.find('\0') != std::string::npos) throw NoSuchObject();
    return NextMatching(iterator_.First(parent), parent);
  }
  Object Next(inspector_string const&, folder const& parent) {
    return NextMatching(iterator_.Next(parent), parent);
  }

 private:
  Object NextMatching(Object object, folder const& parent) {
    while (!Matches(object)) {
      Check_For_Inspector_Interruption();
      object = iterator_.Next(parent);
    }
    return object;
  }
  bool Matches(filesystem_object const& object) const {
    std::string_view const name = NameInPath(object.Path());
    return FileName(ConstData(name.data(), name.size())).MatchesWildCard(pattern_.c_str());
  }

  Iterator iterator_;
  std::string pattern_;
};

struct DescendantIterator : descendant_iterator {
  using Object = filesystem_object;
};

template <class Iterator>
using Contents = IteratedProperty<Iterator, folder, typename Iterator::Object>;
template <class Iterator>
using Finding = IteratedPropertyByParameter<FindIterator<Iterator>, inspector_string, folder,
                                            typename Iterator::Object>;

// "item" alone is a word of the language.
Contents<ItemIterator> items("folder item", "items", nullptr);
Contents<FileIterator> files("file", "files", nullptr);
Contents<FolderIterator> folders("folder", "folders", nullptr);
Contents<DescendantIterator> descendants("descendant", "descendants", nullptr);
Finding<ItemIterator> find_items("find item", "find items", nullptr);
Finding<FileIterator> find_files("find file", "find files", nullptr);
Finding<FolderIterator> find_folders("find folder", "find folders", nullptr);
Finding<DescendantIterator> find_descendants("find descendant", "find descendants", nullptr);

}  // namespace
