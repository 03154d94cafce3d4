#include "inspectors/system/processor.h"

#include <CoreServices/CoreServices.h>

#include <cstring>

#include "evaluator/plugin/exceptions.h"
#include "frame/combine.h"
#include "frame/inspector_strings.h"
#include "frame/prop.h"
#include "frame/registration.h"
#include "inspectors/system/gestalt.h"
#include "inspectors/system/gestalt_selectors.h"

namespace {

struct NamedProcessor {
  std::uint32_t response;
  char const* name;
};

// The platform's published responses to its processor selectors, in ascending order. One table
// serves both selectors; the labels are those that reports have always shown.
constexpr NamedProcessor kProcessorNames[] = {
    {0x101, "PowerPC 601"},
    {0x103, "PowerPC 603"},
    {0x104, "PowerPC 604"},
    {0x106, "PowerPC 603e"},
    {0x107, "PowerPC 603ev"},
    {0x108, "PowerPC G3"},
    {0x109, "PowerPC 604e"},
    {0x10A, "PowerPC 604ev"},
    {0x10C, "PowerPC G4 7440"},
    {0x110, "PowerPC G4 7450"},
    {0x111, "PowerPC G4 7455"},
    {0x112, "PowerPC G4 7447"},
    {0x120, "PowerPC G4 750FX"},
    {0x139, "PowerPC G5 970"},
    {0x13C, "PowerPC G5 970FX"},
    {Combine('i', '4', '8', '6'), "i486"},
    {Combine('i', '5', '8', '6'), "i586"},
    {Combine('i', '5', 'i', 'i'), "i5ii"},
    {Combine('i', '5', 'p', 'r'), "i5pr"},
    {Combine('i', 'x', 'x', 'x'), "ixxx"},
};

char const* NameForResponse(std::uint32_t response) {
  for (NamedProcessor const& processor : kProcessorNames) {
    if (processor.response == response) return processor.name;
  }
  return "unknown";
}

inspector_string ProcessorName(OSType selector) {
  SInt32 response = 0;
  OSErr const status = Gestalt(selector, &response);
  if (status != noErr) ThrowRealOSError(status);
  return AsInspectorString(ConstData(NameForResponse(static_cast<std::uint32_t>(response))));
}

}  // namespace

InspectorProcessor ProcessorIterator::First() {
  count_ = static_cast<std::uint32_t>(MPProcessors());
  next_ = 0;
  return Next();
}

InspectorProcessor ProcessorIterator::Next() {
  if (next_++ == count_) throw NoSuchObject();
  return {};
}

InspectorProcessor main_processor_of() { return {}; }

hertz speed_of_processor(Of, InspectorProcessor const&) { return hertz{cpu_speed_of()}; }

inspector_string family_name_of_processor(Of, InspectorProcessor const&) {
  return ProcessorName(kGestaltProcessorFamily);
}

inspector_string processor_name_of_processor(Of, InspectorProcessor const&) {
  return ProcessorName(kGestaltProcessorType);
}

namespace {

Type<InspectorProcessor, kNoFingerprinting> processor_type;
Prop main_processor("main processor", "main processors", main_processor_of,
                    DependsOnlyOnParameters);
Prop processor_speed("speed", "speeds", speed_of_processor, nullptr);
Prop processor_family_name("family name", "family names", family_name_of_processor,
                           DependsOnlyOnParameters);
Prop processor_type_name("type", "types", processor_name_of_processor, DependsOnlyOnParameters);
Prop processors("processor", "processors", &ProcessorIterator::First, &ProcessorIterator::Next,
                nullptr);

}  // namespace
