#include <CoreFoundation/CFPriv.h>

#include "frameworks/CoreFoundation/recorded_facts.h"
#include "machine/machine.h"

CFDictionaryRef _CFCopySystemVersionDictionary() {
  auto const version = machine::CurrentMachine().System().Version();
  if (!version) return nullptr;
  machine::RecordDictionary entries;
  for (auto const& [key, value] : *version) entries.Add(key, value);
  return CreateRecordedDictionary(entries);
}
