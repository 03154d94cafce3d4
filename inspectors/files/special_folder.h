// The well-known folders of the system, by four-character code and domain. None is ever created;
// one that is not there, or is no folder, is `NoSuchObject`.
//
// The ten found last are remembered until the evaluator clears its caches: a folder that was moved
// since is still where it was.
#pragma once

#include "inspectors/files/domain.h"
#include "portable/macintosh/special_folder.h"
#include "portable_inspectors/filesystem_object.h"

using MacintoshPlatform::MacFileType;

folder FindSpecialFolder(MacFileType code, domain const& domain);

template <MacFileType code>
folder special_folder_of_domain(domain const& domain) {
  return FindSpecialFolder(code, domain);
}

// Of world is of the system domain: neither the user's nor the machine's own folder is looked for.
inline constexpr domain kDomainOfWorld{kSystemDomain};

template <MacFileType code>
folder special_folder() {
  return special_folder_of_domain<code>(kDomainOfWorld);
}

// Of the evaluator: forgets all folders.
void ClearSpecialFolderCaches(Instant& now, void* context);
