// A temporary folder that is asked about.
#pragma once

#include <string>
#include <string_view>

#include "answers.h"
#include "tests/support/temporary_folder.h"

class TemporaryFolder : public gatotu::tests::TemporaryFolder {
 public:
  void AddFile(std::string_view name, std::string_view content = "") const { Write(name, content); }
  void AddFolder(std::string_view name) const { MakeFolder(name); }
  void AddLink(std::string_view name, std::string_view target) const { Link(name, target); }
  void AddFifo(std::string_view name) const { MakeFifo(name); }

  // The answer to an expression in which "%" stands for the folder's path.
  std::string Ask(std::string expression) const {
    for (std::size_t at = 0; (at = expression.find('%', at)) != std::string::npos;) {
      expression.replace(at, 1, Path());
    }
    return Answer(expression);
  }
};
