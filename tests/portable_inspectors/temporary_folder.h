// A temporary folder that is asked about.
#pragma once

#include <string>

#include "answers.h"
#include "tests/support/temporary_folder.h"

class TemporaryFolder : public gatotu::tests::TemporaryFolder {
 public:
  // The answer to an expression in which "%" stands for the folder's path.
  std::string Ask(std::string expression) const {
    for (std::size_t at = 0; (at = expression.find('%', at)) != std::string::npos;) {
      expression.replace(at, 1, Path());
    }
    return Answer(expression);
  }
};
