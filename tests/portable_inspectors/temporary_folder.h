// A folder for a test, deleted with all that is in it.
#pragma once

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "answers.h"

class TemporaryFolder {
 public:
  TemporaryFolder() {
    char path[] = "/tmp/gatotu_files_XXXXXX";
    if (mkdtemp(path) == nullptr) std::abort();
    path_ = path;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;

  std::string Path(std::string_view name) const { return path_ + "/" + std::string(name); }
  std::string const& Path() const { return path_; }

  void AddFile(std::string_view name, std::string_view content = "") const {
    std::ofstream(Path(name), std::ios::binary) << content;
  }
  void AddFolder(std::string_view name) const { std::filesystem::create_directories(Path(name)); }
  void AddLink(std::string_view name, std::string_view target) const {
    std::filesystem::create_symlink(target, Path(name));
  }
  void AddFifo(std::string_view name) const {
    if (mkfifo(Path(name).c_str(), 0600) != 0) std::abort();
  }

  // The answer to an expression in which "%" stands for the folder's path.
  std::string Ask(std::string expression) const {
    for (std::size_t at = 0; (at = expression.find('%', at)) != std::string::npos;) {
      expression.replace(at, 1, path_);
    }
    return Answer(expression);
  }

 private:
  std::string path_;
};
