#include "evaluator/diagnostic.h"

#include <algorithm>

#include "evaluator/diagnostics.h"
#include "evaluator/utf8.h"

namespace gatotu {
namespace {

// A line longer than this is shown in part, around the marks.
constexpr std::size_t kShownBefore = 60;
constexpr std::size_t kShownBehind = 100;

std::size_t CountCharacters(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size(); at += CharacterSize(text, at)) ++count;
  return count;
}

void AppendShown(std::string& out, std::string_view text, std::size_t at, std::size_t size) {
  static constexpr char kHex[] = "0123456789abcdef";
  auto byte = static_cast<unsigned char>(text[at]);
  if (size > 1 && !IsTerminalControl(text.substr(at, size))) {
    out.append(text, at, size);
  } else if (byte == '\t') {
    out += ' ';
  } else if (size == 1 && byte >= 0x20 && byte < 0x7f) {
    out += text[at];
  } else {
    for (std::size_t i = at; i < at + size; ++i) {
      byte = static_cast<unsigned char>(text[i]);
      out += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
    }
  }
}

// The first character boundary at or behind `at`.
std::size_t BoundaryFrom(std::string_view text, std::size_t at) {
  while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xc0) == 0x80) ++at;
  return std::min(at, text.size());
}

void AppendMarkedLine(std::string& out, Position const& position, std::string_view text) {
  std::size_t at = std::min(position.offset, text.size());
  std::size_t begin = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
  begin = begin == std::string_view::npos ? 0 : begin + 1;
  std::size_t end = std::min(text.find('\n', at), text.size());
  if (at - begin > kShownBefore) begin = BoundaryFrom(text, at - kShownBefore);
  if (end - at > kShownBehind) end = BoundaryFrom(text, at + kShownBehind);

  std::string before = PrintableText(text.substr(begin, at - begin));
  std::string marked = PrintableText(text.substr(at, std::min(position.size, end - at)));
  std::string behind = PrintableText(text.substr(at + std::min(position.size, end - at),
                                                 end - at - std::min(position.size, end - at)));
  out += "  " + before + marked + behind + "\n  ";
  out.append(CountCharacters(before), ' ');
  out += '^';
  std::size_t width = CountCharacters(marked);
  if (width > 1) out.append(width - 1, '~');
  out += '\n';
}

}  // namespace

std::string PrintableText(std::string_view text) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t size = CharacterSize(text, at);
    AppendShown(out, text, at, size);
    at += size;
  }
  return out;
}

Position PositionIn(std::string_view text, std::size_t offset, std::size_t size) {
  offset = std::min(offset, text.size());
  size = std::min(size, text.size() - offset);
  Position position{offset, size, 1, 1, 0};
  std::string_view before = text.substr(0, offset);
  position.line += static_cast<unsigned>(std::count(before.begin(), before.end(), '\n'));
  std::size_t line_begin = before.rfind('\n');
  line_begin = line_begin == std::string_view::npos ? 0 : line_begin + 1;
  position.column += static_cast<unsigned>(CountCharacters(before.substr(line_begin)));
  position.length = static_cast<unsigned>(CountCharacters(text.substr(offset, size)));
  return position;
}

std::string Render(Diagnostic const& diagnostic, std::string_view text) {
  std::string out = "error: " + PrintableText(diagnostic.message) + '\n';
  AppendMarkedLine(out, diagnostic.position, text);
  if (!diagnostic.suggestion.empty()) {
    out += "  did you mean \"" + PrintableText(diagnostic.suggestion) + "\"?";
    out += diagnostic.notes.empty() ? '\n' : ' ';
  }
  for (std::size_t i = 0; i < diagnostic.notes.size(); ++i) {
    bool follows_suggestion = i == 0 && !diagnostic.suggestion.empty();
    out += (follows_suggestion ? "" : "  ") + PrintableText(diagnostic.notes[i]) + '\n';
  }
  return out;
}

std::vector<Diagnostic> Diagnostics::Take() {
  std::stable_sort(list_.begin(), list_.end(), [](Diagnostic const& a, Diagnostic const& b) {
    return a.position.offset < b.position.offset;
  });
  return std::move(list_);
}

}  // namespace gatotu
