// Whom a capture tells of: the names of people and machines and the numbers of devices in what was
// recorded.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "machine/capture/pseudonyms.h"
#include "machine/capture/record.h"

namespace machine::capture {

// Of a target's standard inquiry data: what a vendor may fill as it likes.
inline constexpr char kInquiry[] = "Inquiry";
inline constexpr std::size_t kVendorBytesStart = 36, kVendorBytesSize = 20;

class Identities {
 public:
  // The document but for its files.
  explicit Identities(RecordDictionary const& document);

  // A file as passwd(5) says.
  void LearnAccounts(std::string_view accounts);
  // Folders where homes lie are named for their owners.
  void LearnPath(std::string_view path);
  // A plane of the registry.
  void LearnDevices(Record const& plane) { LearnDevices(plane, {}, 0); }

  void AddTo(Pseudonyms& pseudonyms) const;

 private:
  void LearnUsers(RecordDictionary const& document);
  void LearnSessions(Record const* sessions);
  void LearnMachine(RecordDictionary const& document);
  void LearnDirectory(RecordDictionary const& document);
  void LearnQuestions(Record const& questions);
  void LearnInquiries(Record const& buses);
  void LearnDevices(Record const& record, std::string_view key, int depth);
  void LearnAccount(std::string_view name, std::string_view number, std::string_view full_name);
  void LearnSerials(std::string_view text);
  void LearnHost(std::string const& name);

  // Accounts below belong to the system; every machine of a kind has the same.
  std::uint32_t first_person_;
  std::set<std::string, std::less<>> users_, system_accounts_;
  std::set<std::string, std::less<>> names_;  // of anything else
  std::set<std::string, std::less<>> bytes_;
};

}  // namespace machine::capture
