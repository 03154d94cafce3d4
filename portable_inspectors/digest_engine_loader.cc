#include <string>

#include "portable_inspectors/digest_engine.h"
#include "portable_inspectors/engine_library.h"

namespace {

DigestEngine* LoadEngine() {
  std::string error;
  void* const entry = LoadEngineEntry(GATOTU_DIGEST_LIBRARY, kDigestEngineEntry, error);
  if (entry == nullptr) throw DigestsUnavailable(error);
  return reinterpret_cast<DigestEngineEntry>(entry)();
}

}  // namespace

DigestEngine& TheDigestEngine() {
  static DigestEngine& engine = *LoadEngine();
  return engine;
}
