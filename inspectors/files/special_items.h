// Extensions, control panels, startup items and shutdown items by name, of which the system uses
// the enabled ones. `NoSuchObject` when there is none of that name.
#pragma once

#include "inspectors/files/enableable_file.h"

EnableableFile Neex(inspector_string const& name);  // enabled extension
EnableableFile Necp(inspector_string const& name);  // enabled control panel
EnableableFile Nest(inspector_string const& name);  // enabled startup item
EnableableFile Nesd(inspector_string const& name);  // enabled shutdown item
EnableableFile Ndex(inspector_string const& name);  // disabled extension
EnableableFile Ndcp(inspector_string const& name);  // disabled control panel
EnableableFile Ndst(inspector_string const& name);  // disabled startup item
EnableableFile Ndsd(inspector_string const& name);  // disabled shutdown item
