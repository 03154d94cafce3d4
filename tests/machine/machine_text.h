// What a machine answers as text, absences with all they tell, for expectations and so that two
// machines can be compared.
#pragma once

#include <numeric>
#include <set>
#include <string>

#include "machine/machine.h"

// Every fact but files, a line each.
std::string FactsText(machine::Machine const& machine);

// All that can be asked of the items at and below some paths.
std::string FilesText(machine::FileSource const& files, std::vector<std::string> const& paths);

inline std::string TextOf(machine::Record const& record) {
  using namespace machine;
  if (auto const* truth = record.As<bool>()) return *truth ? "yes" : "no";
  if (auto const* number = record.As<std::int64_t>()) return std::to_string(*number);
  if (auto const* number = record.As<std::uint64_t>()) return std::to_string(*number) + "u";
  if (auto const* text = record.As<std::string>()) return "'" + *text + "'";
  if (auto const* entries = record.As<RecordDictionary>()) {
    std::string text;
    for (auto const& [key, value] : entries->entries()) {
      text += (text.empty() ? "" : " ") + key + "=" + TextOf(value);
    }
    return "{" + text + "}";
  }
  if (auto const* items = record.As<RecordArray>()) {
    std::multiset<std::string> texts;  // they may come in any order
    for (Record const& item : *items) texts.insert(TextOf(item));
    return "[" + std::accumulate(texts.begin(), texts.end(), std::string()) + "]";
  }
  if (auto const* bytes = record.As<RecordBytes>()) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text = "<";
    for (unsigned char byte : bytes->content) text += {kDigits[byte >> 4], kDigits[byte & 15]};
    return text + ">";
  }
  return "?";
}
