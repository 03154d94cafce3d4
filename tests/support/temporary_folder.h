// A folder for one test, gone with all that is in it at the end.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace gatotu::tests {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "gatotu-test-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) std::abort();
    path_ = pattern;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;

  std::string const& Path() const { return path_; }
  std::string Path(std::string_view name) const { return path_ + "/" + std::string(name); }

  // Each makes the folders above too.
  void Write(std::string_view name, std::string_view content = "") const {
    std::ofstream(Ready(name), std::ios::binary) << content;
  }
  void Link(std::string_view name, std::string_view target) const {
    std::filesystem::create_symlink(target, Ready(name));
  }
  void MakeFifo(std::string_view name) const {
    if (::mkfifo(Ready(name).c_str(), 0600) != 0) std::abort();
  }
  void MakeFolder(std::string_view name) const { std::filesystem::create_directories(Path(name)); }

  // Folders of one name within each other, also where their path is longer than the kernel takes.
  // `visit` gets each, opened.
  template <typename Visit>
  void MakeChain(std::string_view top, std::string const& name, int depth, Visit&& visit) const {
    MakeFolder(top);
    int at = ::open(Path(top).c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < depth; ++i) {
      if (::mkdirat(at, name.c_str(), 0700) != 0) std::abort();
      int const below = ::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY);
      ::close(at);
      visit(at = below);
    }
    ::close(at);
  }

  // "" for what is no file.
  std::string Read(std::string_view name) const {
    if (!std::filesystem::is_regular_file(Path(name))) return {};
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string Ready(std::string_view name) const {
    std::string const path = Path(name);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    return path;
  }

  std::string path_;
};

}  // namespace gatotu::tests
