#include <string>

#include "portable_inspectors/engine_library.h"
#include "portable_inspectors/regex_engine.h"

namespace {

RegexEngine* LoadEngine() {
  std::string error;
  void* const entry = LoadEngineEntry(GATOTU_REGEX_LIBRARY, kRegexEngineEntry, error);
  if (entry == nullptr) throw RegularExpressionsUnavailable(error);
  return reinterpret_cast<RegexEngineEntry>(entry)();
}

}  // namespace

RegexEngine& TheRegexEngine() {
  static RegexEngine& engine = *LoadEngine();
  return engine;
}
