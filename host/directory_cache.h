// Where the records of the directory are kept between runs: a folder for its owner alone, with a
// file for the computer and one for each user.
//
// A folder that others may write to is not used, since they could make up what it says. Names of
// files are lower case and hold nothing but letters, digits and "-._%~", whatever a user is called.
//
// What a file has of a record with a "<" or "&" in some name does not come back as it was. That one
// is not believed either, and read from the directory by each run.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "portable/file_location.h"

namespace gatotu::host {

// For any thread.
class DirectoryCache {
 public:
  // The folder need not be there; an empty name is that of no cache at all.
  explicit DirectoryCache(std::string folder) : folder_(std::move(folder)) {}

  // The path of the file, empty where none is kept.
  std::string ComputerFile() const;
  std::string UserFile(std::string_view name) const;
  // As the slots of the host's context have them; false without a path.
  bool FindComputerFile(FileLocation& out) const { return Find(ComputerFile(), out); }
  bool FindUserFile(std::string_view name, FileLocation& out) const {
    return Find(UserFile(name), out);
  }

  // What is kept and can be believed; false leaves the record alone.
  bool Load(ActiveDirectoryLocalComputer& computer) const;
  // The record has a name, and a domain or none; that of another domain is not it.
  bool Load(ActiveDirectoryLocalUser& user) const;
  // All users with a file, in the order of the files' names.
  std::vector<ActiveDirectoryLocalUser> LoadUsers() const;

  // To be called before a file is written, which is then for its owner alone. Makes the folders
  // that are not there; false when that cannot be.
  bool Prepare(std::string const& file) const;

 private:
  static bool Find(std::string const& path, FileLocation& out);
  // Whether it is there, and nobody else may write to it.
  bool IsFolderSafe() const;

  std::string folder_;
};

// "user-ann.xml"; distinct for distinct names but for the longest, whose ends are told apart by a
// check sum.
std::string CacheFileName(std::string_view user);

}  // namespace gatotu::host
