#include "machine/capture/sources.h"
#include "machine/system_files.h"

namespace machine::capture {

Fact<Platform> System::SystemPlatform() const {
  constexpr char const* kKey = "Platform";
  if (facts_.Knows(kKey)) {
    return facts_.Ask(kKey, [](Field const& field) -> Fact<Platform> {
      auto const* text = field.As<std::string>();
      if (text != nullptr && *text == "macos") return Platform::kMacOS;
      if (text != nullptr && *text == "linux") return Platform::kLinux;
      return field.Malformed("neither macos nor linux");
    });
  }
  if (Fact<Platform> const platform = PlatformOfFiles(files_)) return platform;
  return facts_.Missing(kKey);
}

namespace {

Fact<SystemVersion> VersionIn(Field const& field) {
  auto const* entries = field.As<RecordDictionary>();
  if (entries == nullptr) return field.Malformed("not a dictionary");
  SystemVersion version;
  for (auto const& [key, value] : entries->entries()) {
    Fact<std::string> text = field[key].Text();
    if (!text) return text.absence();
    version.emplace_back(key, *std::move(text));
  }
  return version;
}

}  // namespace

Fact<SystemVersion> System::FindVersion() const {
  constexpr char const* kKey = "SystemVersion";
  if (facts_.Knows(kKey)) return facts_.Ask(kKey, VersionIn);
  Fact<SystemVersion> version = volume_.Version();
  if (!version && version.outcome() == Outcome::kAbsent) version = VersionInOsRelease(files_);
  if (!version && version.outcome() == Outcome::kAbsent) return facts_.Missing(kKey);
  return version;
}

Fact<SystemVersion> System::Version() const {
  constexpr char const* kKey = "Architecture";
  Fact<SystemVersion> version = FindVersion();
  if (!version || !facts_.Knows(kKey)) return version;
  for (auto const& [key, text] : *version) {
    if (key == kKey) return version;
  }
  if (Fact<std::string> name = facts_.Text(kKey)) {
    version.value().emplace_back(kKey, *std::move(name));
  }
  return version;
}

}  // namespace machine::capture
