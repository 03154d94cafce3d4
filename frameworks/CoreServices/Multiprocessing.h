#pragma once

#include <CoreServices/MacTypes.h>

// How many processors are online; 0 when the machine in use does not tell.
CF_EXPORT ItemCount MPProcessors(void);
