// RE2 behind the engine's interface. A library of its own, see `regex_engine.h`.
#include <re2/re2.h>

#include <algorithm>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "portable_inspectors/regex_engine.h"

namespace {

constexpr std::size_t kPatternsKept = 16;
constexpr std::int64_t kPatternMemory = 8 << 20;

re2::StringPiece Piece(std::string_view text) { return {text.data(), text.size()}; }

class Re2Engine final : public RegexEngine {
 public:
  std::size_t CountGroups(std::string_view pattern) override {
    return static_cast<std::size_t>(Compiled(pattern).NumberOfCapturingGroups());
  }

  bool Match(std::string_view pattern, std::string_view text, std::size_t from, RegexSpan* spans,
             std::size_t count) override {
    RE2 const& compiled = Compiled(pattern);
    pieces_.resize(count);
    if (!compiled.Match(Piece(text), from, text.size(), RE2::UNANCHORED, pieces_.data(),
                        static_cast<int>(count))) {
      return false;
    }
    std::transform(pieces_.begin(), pieces_.end(), spans, [](re2::StringPiece const& piece) {
      return RegexSpan{piece.data(), piece.size()};
    });
    return true;
  }

  std::size_t GroupNamed(std::string_view pattern, std::string_view name) override {
    std::map<std::string, int> const& groups = Compiled(pattern).NamedCapturingGroups();
    auto const group = groups.find(std::string(name));
    return group == groups.end() ? 0 : static_cast<std::size_t>(group->second);
  }

 private:
  // The patterns used last are kept, the latest first.
  RE2 const& Compiled(std::string_view pattern) {
    auto const known = std::find_if(patterns_.begin(), patterns_.end(), [&](auto const& kept) {
      return std::string_view(kept->pattern()) == pattern;
    });
    if (known != patterns_.end()) {
      patterns_.splice(patterns_.begin(), patterns_, known);
    } else {
      patterns_.push_front(Compile(pattern));
      if (patterns_.size() > kPatternsKept) patterns_.pop_back();
    }
    return *patterns_.front();
  }

  static std::unique_ptr<RE2> Compile(std::string_view pattern) {
    RE2::Options options;
    options.set_log_errors(false);
    options.set_max_mem(kPatternMemory);
    auto compiled = std::make_unique<RE2>(Piece(pattern), options);
    if (!compiled->ok()) throw BadRegularExpression(compiled->error());
    return compiled;
  }

  std::list<std::unique_ptr<RE2>> patterns_;
  std::vector<re2::StringPiece> pieces_;
};

}  // namespace

extern "C" GATOTU_API RegexEngine* GatotuRegexEngine() {
  static Re2Engine engine;
  return &engine;
}
