// The vocabularies that the command loads while it starts.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "evaluator/evaluator.h"

namespace gatotu::host {

class PlugIns {
 public:
  // Withdraws them, the last one first.
  ~PlugIns();

  // Loads one more; the answer is why it cannot be loaded.
  std::optional<std::string> Load(std::string const& path);

 private:
  std::vector<std::unique_ptr<PlugIn>> loaded_;
};

// Where the vocabulary of machines lies: beside the libraries that the program comes with.
std::string MachineVocabularyPath();

}  // namespace gatotu::host
