#include "frameworks/unicode/service.h"
#include "machine/library_beside.h"

namespace unicode {
namespace {

Service* OpenService() {
  auto const function = reinterpret_cast<ServiceFunction>(
      machine::OpenLibraryBeside("libFrameworksUnicode.so", kServiceFunctionName));
  return function == nullptr ? nullptr : function();
}

}  // namespace

Service* LoadService() {
  static Service* const service = OpenService();
  return service;
}

}  // namespace unicode
