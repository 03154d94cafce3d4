// The numbers that folders have in references: given when a folder is first named, kept for the
// life of the process, and moved along when the File Manager moves the folder.
#pragma once

#include <CoreServices/Files.h>

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class FolderTable {
 public:
  static FolderTable& Shared();

  FolderTable();

  UInt32 NumberOf(UInt32 parent, std::string_view name);
  // The path must be canonical.
  UInt32 NumberOfPath(std::string_view path);

  struct Place {
    UInt32 parent;
    std::string name;  // empty for the root
  };
  // Nothing for a number never given.
  std::optional<Place> Find(UInt32 number) const;
  std::optional<std::string> PathOf(UInt32 number) const;

  void Move(Place const& from, Place const& to);

 private:
  static std::string KeyOf(UInt32 parent, std::string_view name);
  Place const* Get(UInt32 number) const;

  mutable std::mutex guard_;
  std::vector<Place> places_;  // by number, less the first
  std::unordered_map<std::string, UInt32> numbers_;
};

// The path of an item in a folder.
std::string ItemPath(std::string folder, std::string_view name);
