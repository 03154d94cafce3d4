#include "inspectors/system/usb.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/combine.h"
#include "frame/registration.h"
#include "inspectors/system/gestalt.h"

namespace {

constexpr OSType kGestaltUSBAttributes = Combine('u', 's', 'b', ' ');
constexpr OSType kGestaltUSBVersion = Combine('u', 's', 'b', 'v');

constexpr std::uint32_t kUSBPresent = 1, kUSBHasIsochronous = 2;

}  // namespace

usb usb_of() {
  MacGestalt const attributes(kGestaltUSBAttributes);
  if ((attributes.Response() & kUSBPresent) == 0) throw NoSuchObject();
  return {attributes.Response()};
}

inspector_version usb_version_of(usb const&) { return MacGestalt(kGestaltUSBVersion).Version(); }

boolean isoch_of(usb const& bus) { return (bus.attributes & kUSBHasIsochronous) != 0; }

namespace {

Type<usb, kNoFingerprinting> usb_type;
GlobalProperty<usb> usb_of_world("usb", "usbs", usb_of, nullptr);
Property<usb, inspector_version> usb_version("version", "versions", usb_version_of, nullptr);
Property<usb, boolean> isochronous("isochronous", "isochronouses", isoch_of, nullptr);

}  // namespace
