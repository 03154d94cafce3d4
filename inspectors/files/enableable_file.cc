#include "inspectors/files/enableable_file.h"

#include "frame/registration.h"

boolean enabled_of(EnableableFile const& file) { return file.IsEnabled(); }

boolean disabled_of(EnableableFile const& file) { return !file.IsEnabled(); }

namespace {

DerivedType<EnableableFile, file, kNoFingerprinting> enableable_file_type;
Property<EnableableFile, boolean> enabled("enabled", "enableds", enabled_of, nullptr);
Property<EnableableFile, boolean> disabled("disabled", "disableds", disabled_of, nullptr);

}  // namespace
