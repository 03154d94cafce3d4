#include "inspectors/files/domain.h"

#include <CoreServices/CoreServices.h>

#include "frame/registration.h"

namespace {

Type<domain, kNoFingerprinting> domain_type;
GlobalProperty<domain> system_domain("system domain", "system domains",
                                     domain_of_world<kSystemDomain>, nullptr);
GlobalProperty<domain> local_domain("local domain", "local domains", domain_of_world<kLocalDomain>,
                                    nullptr);
GlobalProperty<domain> user_domain("user domain", "user domains", domain_of_world<kUserDomain>,
                                   nullptr);
GlobalProperty<domain> network_domain("network domain", "network domains",
                                      domain_of_world<kNetworkDomain>, nullptr);
GlobalProperty<domain> classic_domain("classic domain", "classic domains",
                                      domain_of_world<kClassicDomain>, nullptr);
GlobalProperty<domain> on_system_disk("on system disk domain", "on system disk domains",
                                      domain_of_world<kOnSystemDisk>, nullptr);
GlobalProperty<domain> on_appropriate_disk("on appropriate disk domain",
                                           "on appropriate disk domains",
                                           domain_of_world<kOnAppropriateDisk>, nullptr);

}  // namespace
