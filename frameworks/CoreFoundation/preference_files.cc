#include "frameworks/CoreFoundation/preference_files.h"

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFPropertyList.h>

#include <algorithm>

#include "machine/machine.h"
#include "machine/never_destroyed.h"

namespace {

constexpr std::size_t kMostFiles = 64;
// Of a file, and of all that are kept.
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

// Null when the text is no property list or another kind of value than a dictionary.
CFTypeRef CreateDictionary(std::string const& text) {
  CFDataRef const data = CFDataCreate(nullptr, reinterpret_cast<UInt8 const*>(text.data()),
                                      static_cast<CFIndex>(text.size()));
  CFPropertyListRef const root =
      CFPropertyListCreateWithData(nullptr, data, kCFPropertyListImmutable, nullptr, nullptr);
  CFRelease(data);
  if (root == nullptr || CFGetTypeID(root) == CFDictionaryGetTypeID()) return root;
  CFRelease(root);
  return nullptr;
}

}  // namespace

PreferenceFiles& PreferenceFiles::Shared() {
  static machine::NeverDestroyed<PreferenceFiles> files;
  return *files;
}

CFTypeRef PreferenceFiles::CopyValue(std::string const& path, CFStringRef key) {
  std::lock_guard lock(guard_);
  Kept const* const file = Find(path);
  if (file == nullptr) return nullptr;
  if (file->dictionary == nullptr) {
    machine::Announce(path, machine::Outcome::kMalformed);
    return nullptr;
  }
  auto const dictionary = static_cast<CFDictionaryRef>(file->dictionary.get());
  CFTypeRef const value = CFDictionaryGetValue(dictionary, key);
  return value == nullptr ? nullptr : CFRetain(value);
}

PreferenceFiles::Kept const* PreferenceFiles::Find(std::string const& path) {
  if (std::uint64_t const number = machine::CurrentMachineNumber(); number != machine_) {
    kept_.clear();
    kept_bytes_ = 0;
    machine_ = number;
  }
  auto const state = FileState::Of(path);
  auto const found = kept_.find(path);
  if (found != kept_.end()) {
    if (state && found->second.state.StillHolds(*state)) {
      found->second.last_use = ++uses_;
      return &found->second;
    }
    kept_bytes_ -= found->second.bytes;
    kept_.erase(found);
  }
  return state ? Read(path, *state) : nullptr;
}

// A pipe or device is not even opened, and neither is what nobody would want to wait for.
PreferenceFiles::Kept const* PreferenceFiles::Read(std::string const& path,
                                                   FileState const& state) {
  if (state.kind != machine::ItemKind::kFile || state.bytes > kMostBytes) {
    machine::Announce(path, machine::Outcome::kMalformed);
    return nullptr;
  }
  auto const text = machine::CurrentMachine().Files().ReadFile(path, kMostBytes);
  if (!text) return nullptr;
  while (kept_.size() >= kMostFiles ||
         (!kept_.empty() && kept_bytes_ + text->size() > kMostBytes)) {
    DropOldest();
  }
  kept_bytes_ += text->size();
  Kept file = {state, {}, text->size(), ++uses_};
  file.dictionary.reset(CreateDictionary(*text));
  return &kept_.emplace(path, std::move(file)).first->second;
}

void PreferenceFiles::DropOldest() {
  auto const oldest = std::min_element(kept_.begin(), kept_.end(), [](auto& one, auto& other) {
    return one.second.last_use < other.second.last_use;
  });
  kept_bytes_ -= oldest->second.bytes;
  kept_.erase(oldest);
}
