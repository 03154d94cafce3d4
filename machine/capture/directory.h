// The directory of a capture: the records that its document has, with those of a macOS volume's
// local node or of the accounts in its files behind them.
//
// A document that was recorded also has the answers, by the text of their questions: a record
// alone does not tell by what it was found, and not that there is no other.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "machine/capture/facts.h"
#include "machine/directory_records.h"
#include "machine/files.h"

namespace machine::capture {

inline constexpr char kDirectory[] = "Directory", kDirectoryAnswers[] = "DirectoryAnswers";

// The same text for the same question.
std::string KeyOfQuery(DirectoryQuery const& query);
// Such a text with every name in it changed.
std::string WithNamesChanged(std::string_view key,
                             std::function<std::string(std::string_view)> const& change);

struct RecordsOfType;

class Directory final : public DirectorySource {
 public:
  Directory(Facts const& facts, FileSource const& files, RecordReader reader)
      : facts_(facts), files_(files), reader_(reader) {}
  Fact<DirectoryRecords> Find(DirectoryQuery const& query) const override;

 private:
  using Records = Fact<DirectoryRecords>;

  Records Recorded(DirectoryQuery const& query, std::string const& key) const;
  // Kept, since a host asks once and again for each of many users. For any thread.
  std::shared_ptr<RecordsOfType const> Known(std::string const& type) const;
  Fact<Done> OfferFiles(DirectoryQuery const& query, DirectoryAnswer& answer) const;

  Facts const& facts_;
  FileSource const& files_;
  RecordReader const reader_;
  mutable std::mutex guard_;
  mutable std::map<std::string, std::shared_ptr<RecordsOfType const>> known_;
};

}  // namespace machine::capture
