// The host's settings: sections of named items. Later assignments win.
//
// A file is lines of `[Section]`, `name = value`, blank lines and comments behind `;` or `#` at a
// line's start. White space around names and values does not count; a value in double quotes
// keeps its own. Names are exact, letter case included.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gatotu::host {

class Settings {
 public:
  // Null when there is no such item; valid until the next assignment.
  std::string const* Find(std::string_view section, std::string_view name) const;
  void Assign(std::string_view section, std::string_view name, std::string_view value);

  // Takes over what a file says; `origin` names it in messages. The answer is what is wrong,
  // as "FILE:LINE: ...", and nothing of a broken text is taken over.
  std::optional<std::string> ReadText(std::string_view text, std::string_view origin);

  // The same for a file; one that does not exist says nothing.
  std::optional<std::string> ReadFile(std::string const& path);

  // One "SECTION:NAME=VALUE" of the command line; the answer is what is wrong with it.
  std::optional<std::string> ReadAssignment(std::string_view assignment);

 private:
  struct Item {
    std::string section;
    std::string name;
    std::string value;
  };

  std::vector<Item> items_;
};

// The reason when reading failed; an absent file is an empty one, and 1 MiB the largest.
std::optional<std::string> ReadSmallFile(std::string const& path, std::string& content);

// The files that hold settings, in the order in which they are read.
std::vector<std::string> SettingsFiles();

}  // namespace gatotu::host
