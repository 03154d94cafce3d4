// The file user-dirs.dirs of the freedesktop.org user directories: lines such as
//   XDG_DESKTOP_DIR="$HOME/Desktop"
// where the value is quoted, absolute or below $HOME, and a backslash stands before a character
// that the shell would take for something else. Other lines say nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// What the last such line says of a variable.
std::optional<std::string> UserDirectoryIn(std::string_view text, std::string_view variable,
                                           std::string const& home);
