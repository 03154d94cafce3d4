// Reads arbitrary bytes as directory records and as SIDs. A crash, a hang, a parser that minds how
// its input is cut into pieces, and a record of plain texts that does not read back as it was
// written, end the run.
#include <cstdint>
#include <cstdlib>

#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "inspectors/activedirectory/directory/sid.h"
#include "tests/directory/xml_events.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

bool IsPlain(std::string const& text) { return text.find_first_of("<&") == std::string::npos; }

bool HasPlainTexts(ActiveDirectoryBase const& record) {
  return IsPlain(record.GetName()) && IsPlain(record.GetDistinguishedName()) &&
         IsPlain(record.GetErrorMessage());
}

bool HasPlainTexts(ActiveDirectoryAccount const& account) {
  for (ActiveDirectoryGroup const& group : account.GetGroups()) {
    ActiveDirectoryBase const& record = group;
    if (!HasPlainTexts(record) || !IsPlain(group.GetSid())) return false;
  }
  ActiveDirectoryBase const& record = account;
  return HasPlainTexts(record) && IsPlain(account.GetGroupsErrorMessage());
}

template <class Account>
Account ReadBack(Account const& account) {
  Account again;
  again.FromXml(account.ToXml());
  return again;
}

void ReadComputer(std::string const& text) {
  ActiveDirectoryLocalComputer computer;
  computer.FromXml(text);
  Require(!HasPlainTexts(computer) || ReadBack(computer).ToXml() == computer.ToXml());
}

void ReadUser(std::string const& text) {
  ActiveDirectoryLocalUser user;
  user.FromXml(text);
  bool const is_plain = HasPlainTexts(user) && IsPlain(user.GetDomain());
  Require(!is_plain || ReadBack(user).ToXml() == user.ToXml());
}

void ReadSid(std::string const& text) {
  std::string const sid = XQConvertStringSidToSid(ConstData(text));
  Require(sid.empty() || XQEqualSid(ConstData(sid), ConstData(sid)));
  XQConvertSidToStringSid(ConstData(text));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  std::string const text(reinterpret_cast<char const*>(bytes), size);
  Require(EventsOf(text, 1) == EventsOf(text, size + 1));
  ReadComputer(text);
  ReadUser(text);
  ReadSid(text);
  return 0;
}
