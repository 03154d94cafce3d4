#include "inspectors/system/component.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"
#include "frame/registration.h"

namespace {

// A handle that is disposed of at the end.
class AutoHandle {
 public:
  explicit AutoHandle(Size size) : handle_(NewHandle(size)) {
    if (handle_ == nullptr) throw MemoryFullError();
  }
  ~AutoHandle() { DisposeHandle(handle_); }
  AutoHandle(AutoHandle const&) = delete;
  AutoHandle& operator=(AutoHandle const&) = delete;

  Handle Get() const { return handle_; }
  // The length-prefixed text in it; `NoSuchObject` where it has been emptied.
  inspector_string CopyText() const {
    if (*handle_ == nullptr) throw NoSuchObject();
    auto const* const text = reinterpret_cast<unsigned char const*>(*handle_);
    return CopyToInspectorString(ConstData(text + 1, text[0]));
  }

 private:
  Handle const handle_;
};

constexpr Size kHandleSize = 16;

void GetInfo(ComponentClass const& component, ComponentDescription* description, Handle name,
             Handle info) {
  OSErr const status = GetComponentInfo(component.Number(), description, name, info, nullptr);
  if (status != noErr) throw OSError(status);
}

// The first character is the code's most significant byte, whatever the processor's order.
inspector_string TextOfCode(OSType ComponentDescription::*code, ComponentClass const& component) {
  ComponentDescription description = {};
  GetInfo(component, &description, nullptr, nullptr);
  unsigned char text[4];
  for (int i = 0; i < 4; ++i) {
    text[i] = static_cast<unsigned char>(description.*code >> (24 - 8 * i));
  }
  return CopyToInspectorString(ConstData(text, sizeof text));
}

}  // namespace

inspector_version ComponentClass::theVersion() const {
  ComponentInstance const instance = OpenComponent(number_);
  if (instance == 0) throw NoSuchObject();
  auto const version = static_cast<std::uint32_t>(GetComponentVersion(instance));
  CloseComponent(instance);
  return MacintoshPlatform::inspector_version(static_cast<std::uint16_t>(version >> 16),
                                              static_cast<std::uint16_t>(version), 0, 0, 0);
}

ComponentClass ComponentIterator::First() {
  last_ = 0;
  return Next();
}

ComponentClass ComponentIterator::Next() {
  ComponentDescription any = {};
  Component const next = FindNextComponent(last_, &any);
  if (next == 0) throw NoSuchObject();
  last_ = next;
  return ComponentClass(next);
}

inspector_string maker_of(ComponentClass const& component) {
  return TextOfCode(&ComponentDescription::componentManufacturer, component);
}

inspector_string type_of(ComponentClass const& component) {
  return TextOfCode(&ComponentDescription::componentType, component);
}

inspector_string subtype_of(ComponentClass const& component) {
  return TextOfCode(&ComponentDescription::componentSubType, component);
}

inspector_string name_of(ComponentClass const& component) {
  AutoHandle const name(kHandleSize);
  GetInfo(component, nullptr, name.Get(), nullptr);
  return name.CopyText();
}

inspector_string info_of(ComponentClass const& component) {
  AutoHandle const info(kHandleSize);
  GetInfo(component, nullptr, nullptr, info.Get());
  return info.CopyText();
}

inspector_version version_of(ComponentClass const& component) { return component.theVersion(); }

namespace {

Type<ComponentClass, kNoFingerprinting> component_type;
Property<ComponentClass, inspector_string> maker("maker", "makers", maker_of, nullptr);
Property<ComponentClass, inspector_string> type("type", "types", type_of, nullptr);
Property<ComponentClass, inspector_string> subtype("subtype", "subtypes", subtype_of, nullptr);
Property<ComponentClass, inspector_string> name("name", "names", name_of, nullptr);
Property<ComponentClass, inspector_string> info("info", "infos", info_of, nullptr);
Property<ComponentClass, inspector_version> version("version", "versions", version_of, nullptr);
IteratedGlobalProperty<ComponentIterator, ComponentClass> components("component", "components",
                                                                     nullptr);

}  // namespace
