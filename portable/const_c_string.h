// Text that somebody else owns, told apart by its form.
#pragma once

// NUL-terminated.
class ConstCString {
 public:
  explicit ConstCString(char const* text) : text_(text) {}
  char const* Text() const { return text_; }

 private:
  char const* text_;
};

// NUL-terminated, with bytes below 0x80 alone.
class USAsciiString {
 public:
  explicit USAsciiString(ConstCString text) : text_(text.Text()) {}
  char const* Text() const { return text_; }

 private:
  char const* text_;
};
