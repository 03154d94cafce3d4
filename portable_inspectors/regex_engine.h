// The regular-expression engine, in a library of its own that is loaded by the first pattern: it
// costs more to load than most questions take. Matching takes time linear in the text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "evaluator/plugin/exceptions.h"

// A pattern that cannot be used; `what()` says why.
class GATOTU_API BadRegularExpression : public DebuggableException {
 public:
  explicit BadRegularExpression(std::string reason) : reason_(std::move(reason)) {}
  char const* what() const noexcept override { return reason_.c_str(); }

 private:
  std::string reason_;
};

// The engine is missing from the installation; `what()` is the loader's word on it.
class GATOTU_API RegularExpressionsUnavailable : public DebuggableException {
 public:
  explicit RegularExpressionsUnavailable(std::string reason) : reason_(std::move(reason)) {}
  char const* what() const noexcept override { return reason_.c_str(); }

 private:
  std::string reason_;
};

// A stretch of the text; a null start for a group that took no part.
struct RegexSpan {
  char const* start = nullptr;
  std::size_t length = 0;
};

// Patterns and texts are UTF-8; a byte that is none is matched by none but `\C`.
class RegexEngine {
 public:
  // Capturing groups of the pattern. This and the others throw `BadRegularExpression`.
  virtual std::size_t CountGroups(std::string_view pattern) = 0;

  // The first match of `text` at or after `from`; fills the whole match and the groups, in all
  // `count` spans.
  virtual bool Match(std::string_view pattern, std::string_view text, std::size_t from,
                     RegexSpan* spans, std::size_t count) = 0;

  // The number of the group named so, 0 for none.
  virtual std::size_t GroupNamed(std::string_view pattern, std::string_view name) = 0;

 protected:
  ~RegexEngine() = default;
};

// Of this process; loads the engine when first called. Not for two threads at once, like every
// inspector.
RegexEngine& TheRegexEngine();

// What the engine's library offers, under the name `kRegexEngineEntry`.
using RegexEngineEntry = RegexEngine* (*)();
inline constexpr char const* kRegexEngineEntry = "GatotuRegexEngine";
