#include "inspectors/system/gestalt.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/combine.h"
#include "frame/inspector_strings.h"
#include "frame/registration.h"
#include "inspectors/system/gestalt_selectors.h"

namespace {

constexpr std::uint32_t kNativePowerPC = 2;
constexpr std::uint32_t kVirtualMemoryPresent = 1;

// Without sign, as all responses but that of "gestalt" itself.
integer NumberOf(OSType selector) { return MacGestalt(selector).Response(); }

SInt32 Ask(OSType selector) {
  SInt32 response = 0;
  OSErr const status = Gestalt(selector, &response);
  if (status == gestaltUndefSelectorErr) throw NoSuchObject();
  if (status != noErr) throw OSError(status);
  return response;
}

}  // namespace

MacGestalt::MacGestalt(OSType selector) : response_(static_cast<std::uint32_t>(Ask(selector))) {}

inspector_string MacGestalt::String() const {
  unsigned char const* const text = GestaltResponseString(static_cast<SInt32>(response_));
  if (text == nullptr) throw NoSuchObject();
  return AsInspectorString(ConstData(text + 1, text[0]));
}

inspector_version MacGestalt::Version() const {
  return MacintoshPlatform::inspector_version(response_);
}

inspector_version MacGestalt::SimpleVersion() const {
  return MacintoshPlatform::inspector_version(response_ << 16);
}

integer gestalt_of(unsigned char const* selector, unsigned long length) {
  if (length != 4) throw NoSuchObject();
  return Ask(Combine(selector[0], selector[1], selector[2], selector[3]));
}

integer phys_ram_of() { return NumberOf(kGestaltPhysicalRAMSizeInMegabytes) << 20; }
integer log_ram_of() { return NumberOf(kGestaltLogicalRAMSize); }
boolean native_processor() {
  return MacGestalt(kGestaltSystemArchitecture).Response() == kNativePowerPC;
}
boolean virtual_mem() {
  return (MacGestalt(kGestaltVirtualMemory).Response() & kVirtualMemoryPresent) != 0;
}
inspector_version qd_version_of() { return MacGestalt(kGestaltQuickDrawVersion).SimpleVersion(); }
inspector_version rom_version_of() { return MacGestalt(kGestaltROMVersion).SimpleVersion(); }
integer machine_type_of() { return NumberOf(kGestaltMachineType); }
integer keyboard_type_of() { return NumberOf(kGestaltKeyboardType); }
integer nubus_map_of() { return NumberOf(kGestaltNuBusSlots); }
inspector_version name_registry_of() { return MacGestalt(kGestaltNameRegistryVersion).Version(); }
integer cpu_speed_of() { return NumberOf(kGestaltClockSpeedInMegahertz) * 1'000'000; }
inspector_string machine_name_of() { return MacGestalt(kGestaltMachineName).String(); }

namespace {

NamedGlobalProperty<integer> gestalt("gestalt", "gestalts", gestalt_of, nullptr);
GlobalProperty<integer> physical_ram("physical ram", "physical rams", phys_ram_of, nullptr);
GlobalProperty<integer> logical_ram("logical ram", "logical rams", log_ram_of, nullptr);
GlobalProperty<boolean> powerpc("powerpc", "powerpcs", native_processor, nullptr);
GlobalProperty<boolean> virtual_memory("virtual memory", "virtual memories", virtual_mem, nullptr);
GlobalProperty<inspector_version> quickdraw_version("quickdraw version", "quickdraw versions",
                                                    qd_version_of, nullptr);
GlobalProperty<inspector_version> rom_version("rom version", "rom versions", rom_version_of,
                                              nullptr);
GlobalProperty<integer> machine_type("machine type", "machine types", machine_type_of, nullptr);
GlobalProperty<integer> keyboard_type("keyboard type", "keyboard types", keyboard_type_of, nullptr);
GlobalProperty<integer> nubus_map("nubus map", "nubus maps", nubus_map_of, nullptr);
GlobalProperty<inspector_version> name_registry_version("name registry version",
                                                        "name registry versions", name_registry_of,
                                                        nullptr);
GlobalProperty<integer> cpu_speed("cpu speed", "cpu speeds", cpu_speed_of, nullptr);
GlobalProperty<inspector_string> machine_name("machine name", "machine names", machine_name_of,
                                              nullptr);

}  // namespace
