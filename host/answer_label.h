// Whose answers these are, where several machines are asked.
#pragma once

#include <string>
#include <string_view>

namespace gatotu::host {

struct AnswerLabel {
  std::string machine;  // as the user named it; empty where one is asked and nothing is labelled
  bool names_expression = false;  // several are asked, and an answer alone would not tell which

  bool IsEmpty() const { return machine.empty(); }
};

// `lines`, each of which ends with a line feed, with `lead` before each.
std::string EachLineAfter(std::string_view lead, std::string_view lines);

}  // namespace gatotu::host
