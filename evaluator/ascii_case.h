// Letters of the language: ASCII alone, whatever the locale.
#pragma once

namespace gatotu {

constexpr char LowerCaseAscii(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsWordStart(char c) {
  return (LowerCaseAscii(c) >= 'a' && LowerCaseAscii(c) <= 'z') || c == '_';
}
constexpr bool IsWordByte(char c) { return IsWordStart(c) || IsDigit(c); }

}  // namespace gatotu
