// What another program says.
#pragma once

#include <cstdio>
#include <string>

// All that a shell command prints.
inline std::string OutputOf(std::string const& command) {
  std::string output;
  FILE* const pipe = popen(command.c_str(), "r");
  for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) output += static_cast<char>(c);
  pclose(pipe);
  return output;
}

// The first line of it, without its end.
inline std::string FirstLineOf(std::string const& command) {
  std::string const output = OutputOf(command);
  return output.substr(0, output.find('\n'));
}
