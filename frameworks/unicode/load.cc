#include "frameworks/unicode/service.h"
#include "machine/companion_library.h"

namespace unicode {
namespace {

Service* OpenLibrary() {
  void* const entry = machine::LoadFromCompanion("libFrameworksUnicode.so", kServiceFunctionName);
  return entry == nullptr ? nullptr : reinterpret_cast<ServiceFunction>(entry)();
}

}  // namespace

Service* LoadService() {
  static Service* const service = OpenLibrary();
  return service;
}

}  // namespace unicode
