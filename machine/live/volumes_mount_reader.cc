#include <libmount/libmount.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

#include "machine/live/text.h"
#include "machine/live/volumes_mounts.h"

namespace machine::live {
namespace {

struct Closer {
  void operator()(FILE* file) const { ::fclose(file); }
  void operator()(libmnt_table* table) const { ::mnt_unref_table(table); }
  void operator()(libmnt_iter* iterator) const { ::mnt_free_iter(iterator); }
};
template <typename T>
using Owned = std::unique_ptr<T, Closer>;

std::string TextOf(char const* text) { return text == nullptr ? std::string() : text; }

// To libmount all that has no disk is pseudo, also what holds files of people.
constexpr std::array<std::string_view, 4> kHoldFiles = {"ramfs", "tmpfs", "vboxsf", "virtiofs"};

bool IsPseudo(libmnt_fs* mount, std::string_view type) {
  bool const holds_files = std::binary_search(kHoldFiles.begin(), kHoldFiles.end(), type);
  return !holds_files && ::mnt_fs_is_pseudofs(mount) != 0;
}

// The kernel lets nobody else look, not even root, unless the mount says so.
bool IsPrivate(char const* options) {
  char* user = nullptr;
  std::size_t size = 0;
  if (options == nullptr || ::mnt_optstr_get_option(options, "user_id", &user, &size) != 0) {
    return false;
  }
  auto const owner = ParseNumber<std::uint32_t>({user, size});
  bool const is_open_to_all =
      ::mnt_optstr_get_option(options, "allow_other", nullptr, nullptr) == 0;
  return !is_open_to_all && owner && *owner != ::geteuid();
}

Mount MountOf(libmnt_fs* entry) {
  Mount mount;
  mount.number = static_cast<std::uint64_t>(::mnt_fs_get_id(entry));
  mount.parent = static_cast<std::uint64_t>(::mnt_fs_get_parent_id(entry));
  mount.device = ::mnt_fs_get_devno(entry);
  mount.root = TextOf(::mnt_fs_get_root(entry));
  mount.point = TextOf(::mnt_fs_get_target(entry));
  mount.type = TextOf(::mnt_fs_get_fstype(entry));
  mount.source = TextOf(::mnt_fs_get_source(entry));
  mount.is_pseudo = IsPseudo(entry, mount.type);
  mount.is_private = mount.type.starts_with("fuse") && IsPrivate(::mnt_fs_get_fs_options(entry));
  return mount;
}

// Goes on after a line that cannot be understood.
int SkipLine(libmnt_table*, char const*, int) { return 1; }

void ReadMounts(std::string_view text, std::vector<Mount>& mounts) {
  if (text.empty()) return;
  Owned<FILE> const file(::fmemopen(const_cast<char*>(text.data()), text.size(), "r"));
  Owned<libmnt_table> const table(::mnt_new_table());
  Owned<libmnt_iter> const iterator(::mnt_new_iter(MNT_ITER_FORWARD));
  if (file == nullptr || table == nullptr || iterator == nullptr) return;
  ::mnt_table_set_parser_errcb(table.get(), SkipLine);
  ::mnt_table_parse_stream(table.get(), file.get(), "mountinfo");
  libmnt_fs* entry = nullptr;
  while (::mnt_table_next_fs(table.get(), iterator.get(), &entry) == 0) {
    if (Mount mount = MountOf(entry); mount.point.starts_with('/')) {
      mounts.push_back(std::move(mount));
    }
  }
}

}  // namespace
}  // namespace machine::live

extern "C" __attribute__((visibility("default"))) void GatotuReadMounts(
    std::string_view text, std::vector<machine::live::Mount>& mounts) {
  machine::live::ReadMounts(text, mounts);
}
