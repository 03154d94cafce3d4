#include <CoreServices/Components.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <optional>
#include <unordered_map>

#include "machine/machine.h"
#include "machine/never_destroyed.h"

namespace {

using machine::SharedComponents;

// Null where the machine does not tell.
SharedComponents RegisteredComponents() {
  machine::Fact<SharedComponents> components = machine::CurrentMachine().Components().Components();
  return components ? *std::move(components) : nullptr;
}

// A component's number is its place in the list, counted from 1.
machine::Component const* FindComponent(SharedComponents const& components, Component number) {
  bool const exists = components != nullptr && number != 0 && number <= components->size();
  return exists ? &(*components)[number - 1] : nullptr;
}

bool IsAsDescribed(machine::Component const& component, ComponentDescription const& looking) {
  auto const is = [](OSType wanted, OSType code) { return wanted == 0 || wanted == code; };
  return is(looking.componentType, component.type) &&
         is(looking.componentSubType, component.subtype) &&
         is(looking.componentManufacturer, component.maker) &&
         (looking.componentFlags & looking.componentFlagsMask) == 0;
}

OSErr FillHandle(Handle handle, std::optional<std::string> const& text) {
  constexpr std::size_t kMostBytes = 255;
  if (handle == nullptr) return noErr;
  if (!text) {
    EmptyHandle(handle);
    return noErr;
  }
  std::size_t const length = std::min(text->size(), kMostBytes);
  SetHandleSize(handle, static_cast<Size>(length + 1));
  if (OSErr const error = MemError(); error != noErr) return error;
  **handle = static_cast<char>(length);
  std::memcpy(*handle + 1, text->data(), length);
  return noErr;
}

// The open instances with the versions of their components.
class Instances {
 public:
  ComponentInstance Add(std::uint32_t version) {
    std::lock_guard lock(guard_);
    versions_.emplace(++last_, version);
    return last_;
  }
  std::optional<std::uint32_t> VersionOf(ComponentInstance instance) {
    std::lock_guard lock(guard_);
    auto const found = versions_.find(instance);
    if (found == versions_.end()) return {};
    return found->second;
  }
  bool Remove(ComponentInstance instance) {
    std::lock_guard lock(guard_);
    return versions_.erase(instance) != 0;
  }

 private:
  std::mutex guard_;
  std::unordered_map<ComponentInstance, std::uint32_t> versions_;
  ComponentInstance last_ = 0;
};

Instances& OpenInstances() {
  static machine::NeverDestroyed<Instances> instances;
  return *instances;
}

}  // namespace

Component FindNextComponent(Component component, ComponentDescription* looking) {
  SharedComponents const components = RegisteredComponents();
  if (components == nullptr) return 0;
  for (std::size_t place = component; place < components->size(); ++place) {
    if (looking == nullptr || IsAsDescribed((*components)[place], *looking)) {
      return static_cast<Component>(place + 1);
    }
  }
  return 0;
}

OSErr GetComponentInfo(Component component, ComponentDescription* description, Handle name,
                       Handle info, Handle icon) {
  SharedComponents const components = RegisteredComponents();
  machine::Component const* const found = FindComponent(components, component);
  if (found == nullptr) return invalidComponentID;
  if (description != nullptr) *description = {found->type, found->subtype, found->maker, 0, 0};
  if (OSErr const error = FillHandle(name, found->name); error != noErr) return error;
  if (OSErr const error = FillHandle(info, found->info); error != noErr) return error;
  return FillHandle(icon, {});
}

ComponentInstance OpenComponent(Component component) {
  SharedComponents const components = RegisteredComponents();
  machine::Component const* const found = FindComponent(components, component);
  return found != nullptr && found->version ? OpenInstances().Add(*found->version) : 0;
}

SInt32 GetComponentVersion(ComponentInstance instance) {
  std::optional<std::uint32_t> const version = OpenInstances().VersionOf(instance);
  return version ? static_cast<SInt32>(*version) : badComponentInstance;
}

OSErr CloseComponent(ComponentInstance instance) {
  if (!OpenInstances().Remove(instance)) return invalidComponentID;
  return noErr;
}
