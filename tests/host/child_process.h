// Runs the command as its users do.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace gatotu::tests {

struct ProcessResult {
  std::string output;
  std::string errors;
  int status = -1;  // what it exited with, 128 + signal when killed
  std::chrono::milliseconds took{0};
  std::size_t most_memory = 0;  // bytes; not less than what this process has
};

struct Launch {
  std::vector<std::string> arguments = {};
  std::string input = {};
  std::vector<std::string> environment = {};  // NAME=VALUE, beside PATH and a HOME without settings
  std::chrono::milliseconds interrupt_after{0};  // sends SIGINT; 0: never
  std::string program = {};                      // empty: the command
};

// It ended so, with this output and these errors.
testing::Matcher<ProcessResult const&> Ends(testing::Matcher<int> status,
                                            testing::Matcher<std::string> output,
                                            testing::Matcher<std::string> errors = testing::_);
void PrintTo(ProcessResult const& run, std::ostream* stream);

ProcessResult RunCommand(Launch const& launch);
ProcessResult Gatotu(std::vector<std::string> arguments, std::string input = {});
// As a user without rights of the superuser.
ProcessResult AsNobody(std::vector<std::string> arguments);
// A line of the shell, given to this one.
ProcessResult RunShell(std::string line, std::string shell = "sh");

// The lines without their line feeds.
std::vector<std::string> Lines(std::string const& text);
// `text` so many times over.
std::string Repeat(std::string_view text, std::size_t times);

}  // namespace gatotu::tests
