#include "frame/inspector_version.h"

namespace MacintoshPlatform {
namespace {

constexpr std::uint8_t Byte(std::uint32_t value, int index) {
  return static_cast<std::uint8_t>(value >> (8 * index));
}

constexpr std::uint16_t BinaryCodedDecimal(std::uint8_t byte) {
  return static_cast<std::uint16_t>((byte >> 4) * 10 + (byte & 0x0F));
}

}  // namespace

inspector_version::inspector_version(std::uint16_t major, std::uint16_t minor,
                                     std::uint16_t bug_fix, std::uint8_t stage,
                                     std::uint16_t non_release_revision, ConstData text)
    : major(major),
      minor(minor),
      bug_fix(bug_fix),
      stage(stage),
      non_release_revision(non_release_revision),
      text(text) {}

inspector_version::inspector_version(std::uint16_t major, std::uint16_t minor,
                                     std::uint16_t bug_fix, std::uint8_t stage,
                                     std::uint16_t non_release_revision)
    : inspector_version(major, minor, bug_fix, stage, non_release_revision, ConstData()) {}

inspector_version::inspector_version(std::uint32_t num_version)
    : inspector_version(BinaryCodedDecimal(Byte(num_version, 3)), Byte(num_version, 2) >> 4,
                        Byte(num_version, 2) & 0x0F, Byte(num_version, 1), Byte(num_version, 0)) {}

}  // namespace MacintoshPlatform
