// Libraries of ours that lie beside this one and are opened at their first need, because what they
// bring along costs more to load than most questions cost to answer.
#pragma once

namespace machine {

// The address that a library offers under a name, null when there is none. It stays loaded.
void* OpenLibraryBeside(char const* library, char const* entry);

}  // namespace machine
