// Frameworks by name: "X" is the folder "X.framework" in the frameworks folder of a domain.
#pragma once

#include "inspectors/files/domain.h"

class folder;

// Of the system domain. The name counts by its exact letters; `NoSuchObject` when either folder is
// missing.
folder framework_folder(unsigned char const* name, unsigned long length);
folder framework_folder_of_domain(unsigned char const* name, unsigned long length,
                                  domain const& domain);
