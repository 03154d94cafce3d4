#include "machine/live/directory.h"

#include "machine/live/directory_accounts.h"

namespace machine::live {

// A node that fails hides nothing that another one has.
Fact<DirectoryRecords> Directory::Find(DirectoryQuery const& query) const {
  NumberedSettings const settings = CurrentDirectorySettings();
  DirectoryAnswer answer(query);
  Fact<Done> const local = root_.is_running()
                               ? OfferNameService(query, settings.settings->should_stop, answer)
                               : OfferAccountFiles(query, files_, answer);
  answer.EndNode();
  bool const may_ask_network = query.node == DirectoryNode::kSearch && root_.is_running() &&
                               !answer.is_complete() &&
                               IsNetworkDirectoryConfigured(root_, *settings.settings);
  Fact<Done> const network =
      may_ask_network ? network_.Offer(query, settings, answer) : Fact<Done>(Done{});
  if (answer.is_empty() && !local) return local.absence();
  if (answer.is_empty() && !network) return network.absence();
  return answer.Take();
}

}  // namespace machine::live
