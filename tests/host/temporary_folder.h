// A folder of a test's own.
#pragma once

#include <string>

namespace gatotu::tests {

class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;

  std::string const& Path() const { return path_; }
  std::string Path(std::string const& name) const { return path_ + "/" + name; }
  // Makes the folders above too.
  void MakeFolder(std::string const& name) const;
  void Write(std::string const& name, std::string const& content) const;

 private:
  std::string path_;
};

}  // namespace gatotu::tests
