// The engines that are libraries of their own, beside this one.
#pragma once

#include <string>

// The address that the library offers under the name, or null with the loader's word on it. The
// library stays loaded: whoever got something from it may come back at any time.
void* LoadEngineEntry(char const* library, char const* entry, std::string& error);
