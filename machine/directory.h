// Users, groups and computers as the machine's directory knows them. There are two nodes: the local
// one, and where one is set up that of the network.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/directory_record.h"
#include "machine/export.h"
#include "machine/fact.h"

namespace machine {

// The names of record types and attributes are those of the directory service. What is behind the
// native prefix is the node's own name.
inline constexpr std::string_view kUserRecords = "dsRecTypeStandard:Users";
inline constexpr std::string_view kGroupRecords = "dsRecTypeStandard:Groups";
inline constexpr std::string_view kComputerRecords = "dsRecTypeStandard:Computers";
inline constexpr std::string_view kStandardPrefix = "dsAttrTypeStandard:";
inline constexpr std::string_view kNativePrefix = "dsAttrTypeNative:";
inline constexpr std::string_view kRecordName = "dsAttrTypeStandard:RecordName";
inline constexpr std::string_view kRecordType = "dsAttrTypeStandard:RecordType";
inline constexpr std::string_view kRecordNode = "dsAttrTypeStandard:AppleMetaNodeLocation";
// Instead of an attribute's name: all of a record's, or all of one kind.
inline constexpr std::string_view kAllAttributes = "dsAttributesAll";
inline constexpr std::string_view kAllStandardAttributes = "dsAttributesStandardAll";
inline constexpr std::string_view kAllNativeAttributes = "dsAttributesNativeAll";

inline constexpr char kLocalNode[] = "/Local/Default";
inline constexpr char kSearchNode[] = "/Search";

enum class DirectoryNode { kLocal, kSearch };
enum class DirectoryMatch { kExact, kIgnoringCase };

struct DirectoryQuery {
  DirectoryNode node = DirectoryNode::kSearch;
  std::string type;
  // Records of which this attribute has one of the values; without values, all of the type.
  std::string attribute{kRecordName};
  std::vector<std::string> values;
  DirectoryMatch match = DirectoryMatch::kIgnoringCase;
  // What the answer is to hold of a record, as far as the record has it.
  std::vector<std::string> requested;
  // Of records in the answer; 0: all.
  std::size_t limit = 0;

  bool operator==(DirectoryQuery const&) const = default;
};

class MACHINE_API DirectorySource {
 public:
  virtual ~DirectorySource() = default;

  // An empty answer is one: nobody is known by that name. Of records of one name the first node's
  // counts, but a node does not answer for a record of which it has none of the requested native
  // attributes: the next node is asked. An absence when a node failed and no other answered.
  virtual Fact<DirectoryRecords> Find(DirectoryQuery const& query) const;
};

// How the live machine reaches the network's directory, beyond the ordinary configuration of LDAP
// clients (ldap.conf, LDAPURI, LDAPBASE and the like). What is empty here comes from there.
struct DirectorySettings {
  std::string uri;   // "ldaps://dc1.example.com"
  std::string base;  // "DC=example,DC=com"
  // With a name the bind is simple, and over TLS only; else it is SASL/GSSAPI with the Kerberos
  // credentials at hand.
  std::string bind_name, bind_password;
  // For tests: a simple bind without TLS where the server is this machine.
  bool allows_clear_loopback = false;
  // Of one question, however many requests it takes. A server that let it pass is not asked again
  // for as long: questions are absent as timed out at once then.
  std::chrono::milliseconds time_limit{10'000};
  // Asked again and again while a question is on its way, on the thread that asks it; with true the
  // question is given up, and is absent as timed out.
  std::function<bool()> should_stop;
};

// For all live machines of the process, to be set between evaluations.
MACHINE_API void SetDirectorySettings(DirectorySettings settings);

}  // namespace machine
