// The files of some other Linux machine below a temporary folder.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "machine/machine.h"

class RecordedTree {
 public:
  RecordedTree() {
    std::string pattern = std::filesystem::temp_directory_path() / "recorded-tree-XXXXXX";
    folder_ = ::mkdtemp(pattern.data());
  }
  ~RecordedTree() { std::filesystem::remove_all(folder_); }

  std::string At(std::string const& path) const { return folder_ + path; }

  void Write(std::string const& path, std::string const& text) const {
    std::filesystem::create_directories(std::filesystem::path(At(path)).parent_path());
    std::ofstream(At(path), std::ios::binary) << text;
  }
  void Link(std::string const& path, std::string const& target) const {
    std::filesystem::create_directories(std::filesystem::path(At(path)).parent_path());
    std::filesystem::create_symlink(target, At(path));
  }

  std::shared_ptr<machine::Machine const> Machine() const {
    return machine::MakeLiveMachine(folder_);
  }

 private:
  std::string folder_;
};
