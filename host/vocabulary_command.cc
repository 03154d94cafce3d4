#include "host/vocabulary_command.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "host/json_vocabulary.h"

namespace gatotu::host {
namespace {

std::string_view NameOf(VocabularyKind kind) {
  switch (kind) {
    case VocabularyKind::kType:
      return "type";
    case VocabularyKind::kProperty:
      return "property";
    case VocabularyKind::kIterated:
      return "iterated";
    case VocabularyKind::kCast:
      return "cast";
    case VocabularyKind::kOperator:
      return "operator";
    case VocabularyKind::kCache:
      return "cache";
  }
  return {};
}

// The room that a library holds; of another plug-in its file's name.
std::string RoomOf(std::string library) {
  struct Room {
    std::string_view library;
    std::string_view room;
  };
  constexpr Room kRooms[] = {{"libEvaluator", "evaluator"},
                             {"libPortableInspectors", "portable"},
                             {"Gatotu", "gatotu"},
                             {"gatotu", "host"}};
  library.resize(std::min(library.find(".so"), library.size()));
  for (Room const& room : kRooms) {
    if (library == room.library) return std::string(room.room);
  }
  return library;
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

bool IsWanted(VocabularyEntry const& entry, std::vector<std::string> const& words) {
  std::string const names = Lower(entry.singular + '\n' + entry.plural);
  return std::all_of(words.begin(), words.end(), [&](std::string const& word) {
    return names.find(Lower(word)) != std::string::npos;
  });
}

// The type, its base, that one's base, and so on.
std::vector<std::string> TypeAndBases(std::vector<VocabularyEntry> const& entries,
                                      std::string_view type) {
  std::vector<std::string> types;
  std::string name = Lower(type);
  while (!name.empty() && std::find(types.begin(), types.end(), name) == types.end()) {
    types.push_back(name);
    auto const found = std::find_if(entries.begin(), entries.end(), [&](auto const& entry) {
      return entry.kind == VocabularyKind::kType && Lower(entry.singular) == name;
    });
    name = found == entries.end() ? std::string() : Lower(found->object);
  }
  return types;
}

bool IsAskedOf(VocabularyEntry const& entry, std::vector<std::string> const& types) {
  if (types.empty()) return true;
  if (entry.kind == VocabularyKind::kType) return Lower(entry.singular) == types.front();
  return std::find(types.begin(), types.end(), Lower(entry.object)) != types.end();
}

std::string Row(VocabularyEntry const& entry) {
  std::string const room = RoomOf(entry.library);
  std::array<std::string_view, 8> const columns = {NameOf(entry.kind),
                                                   entry.singular,
                                                   entry.plural,
                                                   entry.parameter,
                                                   entry.object,
                                                   entry.result,
                                                   entry.depends_only_on_parameters ? "DOP" : "",
                                                   room};
  std::string row;
  for (std::string_view const column : columns) {
    if (!row.empty()) row += '\t';
    row += column;
  }
  return row + '\n';
}

// As one would write it, types in angle brackets.
std::string Phrase(VocabularyEntry const& entry) {
  auto const type = [](std::string const& name) { return "<" + name + ">"; };
  std::string const of = entry.object.empty() ? "" : " of " + type(entry.object);
  std::string const parameter = entry.parameter.empty() ? "" : " " + type(entry.parameter);
  switch (entry.kind) {
    case VocabularyKind::kType:
      return entry.singular + (entry.object.empty() ? "" : ", a " + entry.object);
    case VocabularyKind::kCast:
      return type(entry.object) + " as " + entry.singular + ": " + entry.result;
    case VocabularyKind::kOperator:
      return type(entry.object) + " " + entry.singular + parameter + ": " + entry.result;
    case VocabularyKind::kCache:
      return RoomOf(entry.library);
    default:
      break;
  }
  std::string const plural = entry.plural.empty() ? "" : " (" + entry.plural + ")";
  return entry.singular + plural + parameter + of + ": " + entry.result;
}

std::string Line(VocabularyEntry const& entry) {
  std::string line(NameOf(entry.kind));
  line.resize(10, ' ');
  return line + Phrase(entry) + '\n';
}

}  // namespace

void WriteVocabulary(VocabularyQuery const& query, Format format, Output& output) {
  std::vector<VocabularyEntry> const entries = Vocabulary();
  std::vector<std::string> const types = TypeAndBases(entries, query.type);
  if (format == Format::kTsv) {
    output.Write("kind\tsingular\tplural\tparameter\tobject\tresult\tfingerprint\tlibrary\n");
  }
  for (VocabularyEntry const& entry : entries) {
    if (!IsWanted(entry, query.words) || !IsAskedOf(entry, types)) continue;
    switch (format) {
      case Format::kTsv:
        output.Write(Row(entry));
        break;
      case Format::kJson:
        output.Write(JsonLineOf(entry, NameOf(entry.kind), RoomOf(entry.library)));
        break;
      default:
        output.Write(Line(entry));
    }
  }
  output.Flush();
}

}  // namespace gatotu::host
