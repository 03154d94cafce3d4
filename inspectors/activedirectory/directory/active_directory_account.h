// A record of an account: what belongs to groups and is kept in a cache file between runs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "inspectors/activedirectory/directory/active_directory_base.h"
#include "inspectors/activedirectory/directory/active_directory_group.h"
#include "portable/file_location.h"

class ActiveDirectoryInspectorContext;

// A cache file of more than `kLargestRecordFile` bytes, or one that would grow far beyond its size
// in memory. The record keeps what was assigned until then.
class GATOTU_API DirectoryRecordTooLarge : public DebuggableException {};

// Many times what an account that the directory lets sign in can need: some 60,000 groups.
inline constexpr long long kLargestRecordFile = 16 * 1024 * 1024;

class GATOTU_API ActiveDirectoryAccount : public ActiveDirectoryBase {
 public:
  void ClearData() override;

  std::vector<ActiveDirectoryGroup> const& GetGroups() const { return groups_; }
  std::string const& GetGroupsErrorMessage() const { return groups_error_message_; }
  // In the order the directory gave them.
  void SetGroups(std::vector<ActiveDirectoryGroup> groups) { groups_ = std::move(groups); }
  void SetGroupsErrorMessage(std::string message) { groups_error_message_ = std::move(message); }

  // Fills the record and leaves alone what the text does not mention; the text of another version
  // of the format clears it. `DirectoryRecordTooLarge`.
  virtual void FromXml(std::string const& text) = 0;

  // False without a context and where the host keeps no file for this record. Throws what writing
  // a file throws.
  bool SaveToCache(ActiveDirectoryInspectorContext const* context) const;
  // The same, and false where there is no file; true also for a file of another version. Throws
  // what reading a file and `FromXml` throw.
  bool LoadFromCache(ActiveDirectoryInspectorContext const* context);
  // Always true: a file that is not there is a failure here.
  bool LoadFromCache(FileLocation const& location);

 protected:
  using ActiveDirectoryBase::ActiveDirectoryBase;

  // The whole record in an element of this name.
  std::string AccountXml(std::string_view element, std::string_view version,
                         std::string_view domain) const;
  template <class Matches>
  bool CopyFirstGroup(Matches const& matches, ActiveDirectoryGroup& out) const;

 private:
  virtual bool FindCache(ActiveDirectoryInspectorContext const& context,
                         FileLocation& out) const = 0;

  std::vector<ActiveDirectoryGroup> groups_;
  std::string groups_error_message_;
};

template <class Matches>
bool ActiveDirectoryAccount::CopyFirstGroup(Matches const& matches,
                                            ActiveDirectoryGroup& out) const {
  for (ActiveDirectoryGroup const& group : groups_) {
    if (!matches(group)) continue;
    out = group;
    return true;
  }
  return false;
}
