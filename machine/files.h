// The files of a machine. Paths are the machine's own, absolute and of any bytes but NUL; a path
// longer than the kernel takes in one piece is walked piece by piece. Below a root that is not "/"
// no link and no ".." leads out. Only regular files and folders are ever opened.
//
// An item's Finder information and resource fork lie in extended attributes or in an AppleDouble
// file "._name" beside it, called its companion here.
//
// Every item consulted is announced by its path, an open file with the bytes read once it is
// closed. Where a system call failed, the absence carries its error number.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "machine/export.h"
#include "machine/fact.h"
#include "machine/file_descriptor.h"

namespace machine {

enum class ItemKind : std::uint8_t { kFile, kFolder, kLink, kOther };

struct FileTime {
  std::int64_t seconds = 0;  // since 1970
  std::uint32_t nanoseconds = 0;
};

struct ItemStatus {
  ItemKind kind = ItemKind::kOther;
  bool is_immutable = false;
  bool has_birth = false;  // whether the file system keeps the time of birth
  std::uint16_t mode = 0;  // type and permission bits
  std::uint32_t user = 0, group = 0, links = 0;
  std::uint64_t device = 0, inode = 0, mount = 0;
  std::uint64_t bytes = 0, allocated_bytes = 0;
  FileTime birth, modification, change, access;

  // Immutable, or a regular file that nobody may write.
  bool is_locked() const { return is_immutable || (kind == ItemKind::kFile && (mode & 0222) == 0); }
  bool is_same_item(ItemStatus const& other) const {
    return device == other.device && inode == other.inode;
  }
};

// 16 bytes of Finder information and 16 of the extended one, as the disk has them (big-endian).
using FinderInfo = std::array<unsigned char, 32>;

struct Item {
  ItemStatus status;
  bool has_finder_info = false;
  FinderInfo finder_info{};  // zeros where there is none
  std::uint64_t resource_bytes = 0;
};

enum class Detail {
  kKind,    // `status.kind` alone is sure to be filled in
  kStatus,  // `status`
  kAll,     // Finder information and resource fork too
};

struct FolderEntry {
  std::string_view name;  // NUL-terminated, until the next entry is read
  Item item;
  // Not with `kKind`: an AppleDouble file whose item lies in this folder too.
  bool is_companion = false;
};

// An open folder. Reads entries in the folder's order, "." and ".." left out, and keeps no more
// than a buffer of names, however many entries there are. For one thread.
class MACHINE_API Folder {
 public:
  virtual ~Folder() = default;

  // Of the folder itself, when it was opened.
  virtual ItemStatus const& Status() const = 0;
  // The next entry, null after the last. What vanishes meanwhile is left out.
  virtual Fact<FolderEntry const*> Next(Detail detail) = 0;
  // A folder in this one; a link is not followed.
  virtual Fact<std::unique_ptr<Folder>> OpenFolder(std::string_view name) = 0;
  // What a regular file in this one begins with, as many bytes as there are; a link is not
  // followed. For looking into very many files. A folder that has no such short way announces
  // nothing and says "not supported": `OpenFork` will do.
  virtual Fact<std::size_t> ReadStart(std::string_view name, void* buffer, std::size_t size);
  // Gives the open file and all that was read ahead back until the next call, which finds the place
  // again: for walks deeper than the number of files a process may have open. The last entry's name
  // is lost.
  virtual void Rest() = 0;
};

enum class Fork { kData, kResource };
enum class Access { kRead, kReadAndWrite };

// An open fork. For one thread.
class MACHINE_API OpenFile {
 public:
  virtual ~OpenFile() = default;

  virtual ItemStatus const& Status() const = 0;  // of the file, when it was opened
  virtual Fact<std::uint64_t> Size() = 0;
  // How many bytes were there, 0 at and behind the end.
  virtual Fact<std::size_t> ReadAt(std::uint64_t offset, void* buffer, std::size_t size) = 0;
  // All of it or a failure.
  virtual Fact<std::size_t> WriteAt(std::uint64_t offset, void const* bytes, std::size_t size) = 0;
  virtual Fact<std::uint64_t> SetSize(std::uint64_t size) = 0;
  // Returns when the content is on the disk.
  virtual Fact<bool> Flush() = 0;
};

// All of an open fork; malformed (error EFBIG) when it has more than `most` bytes.
MACHINE_API Fact<std::string> ReadWhole(OpenFile& file, std::string const& path, std::size_t most);

// Of the volume that holds an item. Bytes are those that every user may have.
struct VolumeSpace {
  std::uint64_t total_bytes = 0, free_bytes = 0;
  std::uint64_t block_bytes = 0;
  std::uint64_t files = 0;  // in use, folders included
  bool is_read_only = false;
};

// Whether a link that is the last part of a path is followed.
enum class Links { kFollow, kKeep };

struct Done {};

struct UniqueFile {
  std::string path;
  FileDescriptor file;  // open for writing
};

class MACHINE_API FileSource {
 public:
  virtual ~FileSource() = default;

  virtual Fact<ItemStatus> Status(std::string const& path, Links links) const;
  virtual Fact<Item> Describe(std::string const& path, Links links) const;
  // Where a link points, as written.
  virtual Fact<std::string> ReadLink(std::string const& path) const;
  virtual Fact<std::unique_ptr<Folder>> OpenFolder(std::string const& path) const;
  // Follows links. A file without resource fork has an empty one; a resource fork is read only.
  virtual Fact<std::unique_ptr<OpenFile>> OpenFork(std::string const& path, Fork fork,
                                                   Access access) const;
  // The whole data fork, by `OpenFork`; malformed when it has more than `most` bytes.
  virtual Fact<std::string> ReadFile(std::string const& path, std::size_t most) const;
  // The folder's path without links, "." and "..".
  virtual Fact<std::string> CanonicalFolder(std::string const& path) const;
  // Where relative paths begin: the process's own folder, which no other machine has.
  virtual Fact<std::string> WorkingFolder() const;
  virtual Fact<VolumeSpace> Space(std::string const& path) const;

  virtual Fact<std::string> UserName(std::uint32_t user) const;
  virtual Fact<std::string> GroupName(std::uint32_t group) const;

  // Whether the machine refuses every change below (error EROFS, reason "not supported").
  virtual bool is_read_only() const { return true; }

  // These follow no link in the last part of a path, and what must not exist is never replaced. An
  // item's companion goes with it. `mode` is what the process's mask leaves of it.
  virtual Fact<Done> CreateFile(std::string const& path, std::uint32_t mode) const;
  virtual Fact<Done> CreateFolder(std::string const& path, std::uint32_t mode) const;
  // A file, a link or an empty folder.
  virtual Fact<Done> Remove(std::string const& path) const;
  // Within a volume (else error EXDEV).
  virtual Fact<Done> Move(std::string const& from, std::string const& to) const;
  // A file or a link with mode, times, attributes and resource fork, or a folder alone with the
  // same, which its owner may fill. After a failure nothing is left at `to`.
  virtual Fact<Done> Copy(std::string const& from, std::string const& to) const;
  // Puts a file in another's place in one step; the place keeps its mode, owner and attributes.
  virtual Fact<Done> Replace(std::string const& place, std::string const& replacement) const;
  // Locking clears every write bit, unlocking gives the owner's back and takes immutability away.
  // A folder is locked by immutability.
  virtual Fact<Done> SetLocked(std::string const& path, bool locked) const;
  virtual Fact<Done> SetFinderInfo(std::string const& path, FinderInfo const& info) const;
  virtual Fact<Done> SetMode(std::string const& path, std::uint32_t mode) const;
  virtual Fact<Done> SetTimes(std::string const& path, FileTime const& access,
                              FileTime const& modification) const;
  // `pattern` ends in six X, which are replaced.
  virtual Fact<UniqueFile> MakeUniqueFile(std::string const& pattern) const;
  virtual Fact<std::string> MakeUniqueFolder(std::string const& pattern) const;
};

}  // namespace machine
