// What another program says.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

// The first line that a shell command prints, without its end.
inline std::string FirstLineOf(std::string const& command) {
  std::unique_ptr<FILE, int (*)(FILE*)> const pipe(popen(command.c_str(), "r"), pclose);
  char line[200] = "";
  std::string text = fgets(line, sizeof(line), pipe.get()) == nullptr ? "" : line;
  if (text.ends_with('\n')) text.pop_back();
  return text;
}
