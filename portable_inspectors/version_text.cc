#include "portable_inspectors/version_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string_view>

#include "evaluator/plugin/exceptions.h"
#include "portable_inspectors/text.h"

namespace MacintoshPlatform {

namespace {

// Stage codes of the system. Versions whose stage does not count carry 0.
constexpr std::uint8_t kDevelopmentCode = 0x20;
constexpr std::uint8_t kAlphaCode = 0x40;
constexpr std::uint8_t kBetaCode = 0x60;
constexpr std::uint8_t kReleaseCode = 0x80;

VersionStage StageOfCode(std::uint8_t code) {
  if (code == 0 || code >= kReleaseCode) return VersionStage::kRelease;
  if (code >= kBetaCode) return VersionStage::kBeta;
  if (code >= kAlphaCode) return VersionStage::kAlpha;
  return VersionStage::kDevelopment;
}

std::uint8_t CodeOfStage(VersionStage stage) {
  switch (stage) {
    case VersionStage::kBeforeAll:
    case VersionStage::kDevelopment:
      return kDevelopmentCode;
    case VersionStage::kAlpha:
      return kAlphaCode;
    case VersionStage::kBeta:
    case VersionStage::kReleaseCandidate:
      return kBetaCode;
    case VersionStage::kRelease:
      break;
  }
  return kReleaseCode;
}

char const* StageMark(VersionStage stage) {
  switch (stage) {
    case VersionStage::kBeforeAll:
    case VersionStage::kDevelopment:
      return "d";
    case VersionStage::kAlpha:
      return "a";
    case VersionStage::kBeta:
      return "b";
    case VersionStage::kReleaseCandidate:
      return "fc";
    case VersionStage::kRelease:
      break;
  }
  return "-";  // a revision of the release itself
}

std::uint16_t Clamp(std::int64_t number) {
  constexpr std::int64_t kLargest = std::numeric_limits<std::uint16_t>::max();
  return static_cast<std::uint16_t>(std::min(number, kLargest));
}

template <unsigned long N>
constexpr unsigned long CapacityOf(ConstDataOfCapacity<N> const*) {
  return N;
}
constexpr unsigned long kLongestText = CapacityOf(static_cast<inspector_version::Text*>(nullptr));

std::string_view TextOf(inspector_version const& version) {
  ConstData const text = version.text;
  return View(text.begin, text.Length());
}

// The text of a version, its own or the one its numbers make.
class VersionText {
 public:
  explicit VersionText(inspector_version const& version) : text_(TextOf(version)) {
    if (text_.empty()) text_ = {buffer_, Write(version)};
  }
  VersionText(VersionText const&) = delete;
  VersionText& operator=(VersionText const&) = delete;

  std::string_view View() const { return text_; }

 private:
  std::size_t Write(inspector_version const& version) {
    int length =
        std::snprintf(buffer_, sizeof(buffer_), "%u.%u", unsigned{version.major}, version.minor);
    if (version.bug_fix != 0) {
      length += std::snprintf(buffer_ + length, sizeof(buffer_) - length, ".%u",
                              unsigned{version.bug_fix});
    }
    VersionStage const stage = StageOfCode(version.stage);
    if (stage != VersionStage::kRelease || version.non_release_revision != 0) {
      length += std::snprintf(buffer_ + length, sizeof(buffer_) - length, "%s%u", StageMark(stage),
                              unsigned{version.non_release_revision});
    }
    return static_cast<std::size_t>(length);
  }

  char buffer_[48];
  std::string_view text_;
};

}  // namespace

inspector_version TextToVersion(ConstData data) {
  ConstData const trimmed = TrimAsciiWhitespace(data);
  unsigned long const size = trimmed.Length();
  std::string_view const text = View(trimmed.begin, size);
  if (size > kLongestText || !IsVersionText(text)) throw NoSuchObject();
  VersionParts const parts = PartsOfVersionText(text);
  return inspector_version(Clamp(parts.numbers[0]), Clamp(parts.numbers[1]),
                           Clamp(parts.numbers[2]), CodeOfStage(parts.stage),
                           Clamp(parts.non_release_revision), trimmed);
}

std::string AsString(inspector_version const& version) {
  return std::string(VersionText(version).View());
}

VersionParts PartsOf(inspector_version const& version) {
  std::string_view const text = TextOf(version);
  if (!text.empty()) return PartsOfVersionText(text);
  return {{version.major, version.minor, version.bug_fix},
          StageOfCode(version.stage),
          version.non_release_revision};
}

std::weak_ordering Compare(inspector_version const& left, inspector_version const& right) {
  VersionText const left_text(left);
  VersionText const right_text(right);
  return CompareVersionTexts(left_text.View(), right_text.View());
}

}  // namespace MacintoshPlatform

inspector_string AsString(inspector_version const& version) {
  return CopyText(MacintoshPlatform::AsString(version));
}
