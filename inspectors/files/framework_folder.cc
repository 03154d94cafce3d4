#include "inspectors/files/framework_folder.h"

#include <string>

#include "frame/registration.h"
#include "inspectors/files/special_folder.h"

folder framework_folder(unsigned char const* name, unsigned long length) {
  return framework_folder_of_domain(name, length, kDomainOfWorld);
}

folder framework_folder_of_domain(unsigned char const* name, unsigned long length,
                                  domain const& domain) {
  std::string const text = std::string(name, name + length) + ".framework";
  return folder_of(reinterpret_cast<unsigned char const*>(text.data()), text.size(),
                   special_folder_of_domain<kFrameworksFolderType>(domain));
}

namespace {

NamedGlobalProperty<folder> framework("framework", "frameworks", framework_folder, nullptr);
NamedProperty<domain, folder> framework_of_domain("framework", "frameworks",
                                                  framework_folder_of_domain, nullptr);

}  // namespace
