// The text of URLs and paths: percent escapes, and what lies between slashes.
#pragma once

#include <string>
#include <string_view>

namespace url_text {

// Whether every byte may stand in a URL and every escape is whole.
bool IsWellFormed(std::string_view text);

// What a path must not spell out is escaped, a `:` as well where it would end a scheme.
std::string Escape(std::string_view path, bool is_relative);
// Of well-formed text.
std::string Unescape(std::string_view text);

// The length of "scheme:", 0 where there is none.
std::size_t SchemeLength(std::string_view text);

// Without the slashes at its end; "/" stays.
std::string_view WithoutTrailingSlashes(std::string_view path);
// Behind the last slash, those at the end left out; "/" of the root.
std::string_view LastComponent(std::string_view path);
// Ends in `/`, `.` or `..`.
bool IsFolderPath(std::string_view path);
// Of the folder the item lies in, ending in `/`.
std::string DeleteLastComponent(std::string_view path);

}  // namespace url_text
