#include "tests/host/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace gatotu::tests {

TemporaryFolder::TemporaryFolder() : path_(testing::TempDir() + "gatotu-XXXXXX") {
  EXPECT_NE(::mkdtemp(path_.data()), nullptr);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void TemporaryFolder::MakeFolder(std::string const& name) const {
  std::filesystem::create_directories(Path(name));
}

void TemporaryFolder::Write(std::string const& name, std::string const& content) const {
  std::filesystem::path const path = Path(name);
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path) << content;
}

}  // namespace gatotu::tests
