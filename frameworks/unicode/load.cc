#include <dlfcn.h>

#include <string>

#include "frameworks/unicode/service.h"

namespace unicode {
namespace {

// The library lies beside this one. Its full path is spelled out, because under the sanitizers
// `dlopen` does not see who called and with that not the caller's search path.
Service* OpenLibrary() {
  Dl_info self = {};
  std::string path = "libFrameworksUnicode.so";
  if (::dladdr(reinterpret_cast<void const*>(&OpenLibrary), &self) != 0) {
    std::string const own = self.dli_fname;
    path.insert(0, own.substr(0, own.rfind('/') + 1));
  }
  void* const library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return nullptr;
  auto const function = reinterpret_cast<ServiceFunction>(::dlsym(library, kServiceFunctionName));
  return function == nullptr ? nullptr : function();
}

}  // namespace

Service* LoadService() {
  static Service* const service = OpenLibrary();
  return service;
}

}  // namespace unicode
