// Versions as inspectors give them.
#pragma once

#include <cstdint>
#include <type_traits>

#include "evaluator/plugin/type_name.h"
#include "portable/const_data.h"
#include "portable/const_data_of_capacity.h"

namespace MacintoshPlatform {

// The text is that of a version that was read; it is empty where the version comes from numbers.
// Plain bytes, so that the evaluator may copy and keep versions.
struct inspector_version {
  using Text = ConstDataOfCapacity<48>;

  inspector_version(std::uint16_t major, std::uint16_t minor, std::uint16_t bug_fix,
                    std::uint8_t stage, std::uint16_t non_release_revision);
  inspector_version(std::uint16_t major, std::uint16_t minor, std::uint16_t bug_fix,
                    std::uint8_t stage, std::uint16_t non_release_revision, ConstData text);

  // From the packed form (`NumVersion`): major revision, minor and bug revision, stage and
  // non-release revision, a byte each, the major one most significant. The major byte is
  // binary-coded decimal, the non-release byte is not.
  explicit inspector_version(std::uint32_t num_version);

  std::uint16_t major;
  std::uint16_t minor;
  std::uint16_t bug_fix;
  std::uint8_t stage;  // the release stage code of the system, not translated
  std::uint16_t non_release_revision;
  Text text;
};

}  // namespace MacintoshPlatform

// The evaluator's value of type "version".
struct inspector_version : MacintoshPlatform::inspector_version {
  explicit(false) inspector_version(MacintoshPlatform::inspector_version const& version)
      : MacintoshPlatform::inspector_version(version) {}
};

static_assert(std::is_trivially_copyable_v<inspector_version>);

template <>
struct InspectorTypeName<inspector_version> {
  static constexpr char const* kName = "version";
};
