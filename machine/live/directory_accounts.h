// The local node of a Linux machine's directory: the users and groups of the name service, or for a
// recorded tree those of its own files.
#pragma once

#include <functional>

#include "machine/directory_records.h"
#include "machine/files.h"

namespace machine::live {

// Each offers what it has and says why it has nothing; somebody unknown is no failure. A list that
// may be long is left when `should_stop` says so.
Fact<Done> OfferNameService(DirectoryQuery const& query, std::function<bool()> const& should_stop,
                            DirectoryAnswer& answer);
Fact<Done> OfferAccountFiles(DirectoryQuery const& query, FileSource const& files,
                             DirectoryAnswer& answer);

}  // namespace machine::live
