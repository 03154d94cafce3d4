// A temporary folder whose items are locations, and what an action throws.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "portable/file_errors.h"
#include "portable/file_location.h"
#include "tests/support/temporary_folder.h"

class TemporaryFolder : public gatotu::tests::TemporaryFolder {
 public:
  FileLocation At(std::string const& name = {}) const {
    return MakeFileLocation(name.empty() ? Path().c_str() : Path(name).c_str());
  }
  FileLocation Write(std::string const& name, std::string const& content = "x") const {
    gatotu::tests::TemporaryFolder::Write(name, content);
    return At(name);
  }
  bool Has(std::string const& name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(Path(name)));
  }
  long Count() const { return std::distance(std::filesystem::directory_iterator(Path()), {}); }
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
inline std::string const kNotFound = Named<FileNotFoundError>(-43);
inline std::string const kNoFolder = Named<MacintoshPlatform::FileLoopFailed>(-1407);
inline std::string const kEmpty = Named<EmptyFileLocationError>();
