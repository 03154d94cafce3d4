// A folder for one test, gone with all that is in it at the end.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "portable/file_errors.h"
#include "portable/file_location.h"

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "portable-XXXXXX";
    path_ = mkdtemp(pattern.data());
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;

  std::filesystem::path Path(std::string const& name = {}) const {
    return name.empty() ? path_ : path_ / name;
  }
  FileLocation At(std::string const& name = {}) const {
    return MakeFileLocation(Path(name).c_str());
  }
  // A file with this content, and the folders it needs.
  FileLocation Write(std::string const& name, std::string const& content = "x") const {
    std::filesystem::create_directories(Path(name).parent_path());
    std::ofstream(Path(name)) << content;
    return At(name);
  }
  // "" for what is no file.
  std::string Read(std::string const& name) const {
    if (!std::filesystem::is_regular_file(Path(name))) return {};
    std::ifstream file(Path(name));
    return {std::istreambuf_iterator<char>(file), {}};
  }
  bool Has(std::string const& name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(Path(name)));
  }
  long Count() const { return std::distance(std::filesystem::directory_iterator(path_), {}); }

 private:
  std::filesystem::path path_;
};

// The encoded name of the class of what the action throws and the code it carries, "" for nothing:
// "12FileNotFoundError -43".
template <typename Action>
std::string ThrownBy(Action const& action) {
  try {
    action();
    return "";
  } catch (FileIOError const& error) {
    return typeid(error).name() + std::string(" ") + std::to_string(error.GetCode());
  } catch (DebuggableException const& error) {
    return typeid(error).name();
  }
}

template <typename Error>
std::string Named(int code = 0) {
  return typeid(Error).name() + std::string(" ") + std::to_string(code);
}
