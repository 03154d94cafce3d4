#include "inspectors/system/bios.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "inspectors/system/registry.h"
#include "portable/const_data.h"

bios Bios_of_world() { return {}; }

inspector_string Date_of(bios const&) { throw NoSuchObject(); }

// Where the newer machines have it, else where the older ones do.
inspector_string Version_of(bios const&) {
  try {
    return KeyOfIORegPath("BootROM-version", "rom/boot-rom");
  } catch (...) {
  }
  return KeyOfIORegPath("version", "rom");
}

inspector_string AsString(bios const& firmware) { return Version_of(firmware); }

inspector_string KeyOfIORegPath(char const* key, char const* path) {
  ConstData const key_text(key), path_text(path);
  registry_node const node =
      named_node_of(path_text.begin, path_text.Length(), devicetreeplane(theroot()));
  return cstring_of_dictionary(key_text.begin, key_text.Length(), dictionary_of(node));
}

namespace {

Type<bios, kNoFingerprinting> bios_type;
GlobalProperty<bios> bios_of_world("bios", "bioses", Bios_of_world, nullptr);
Property<bios, inspector_string> date("date", "dates", Date_of, nullptr);
Property<bios, inspector_string> version("version", "versions", Version_of, nullptr);
Cast<bios, inspector_string> bios_as_string("string", AsString, DependsOnlyOnParameters);

}  // namespace
