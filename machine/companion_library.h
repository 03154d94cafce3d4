// Libraries of ours that lie beside this one and are loaded at their first need, because what they
// link costs more to load than most questions cost to answer.
#pragma once

namespace machine {

// The address that the library offers under the name; null when the library or the name is missing,
// and `dlerror` tells which. The library stays loaded.
void* LoadFromCompanion(char const* library, char const* name);

}  // namespace machine
