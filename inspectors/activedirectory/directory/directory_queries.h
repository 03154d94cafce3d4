// What the directory is asked about accounts and groups. All questions go to the search node and
// wait for its answer; they share nothing, so that threads may ask at once. They throw the
// exceptions of the directory's calls, `MacintoshPlatform::DSGetRecordListFailed` among them.
#pragma once

#include <string>
#include <vector>

#include "inspectors/activedirectory/directory/active_directory_group.h"

namespace MacintoshPlatform {

struct ADAttributeArgs {
  std::string name;  // of the record; for a group its SID as text
  std::string type;  // "dsRecTypeStandard:Users"
};

// The distinguished name, empty when no record has the name.
GATOTU_API std::string GetDNInternal(ADAttributeArgs const& args);

// The groups of every record that has the name, with nothing but their SIDs. Values that are no
// SID are left out.
GATOTU_API std::vector<ActiveDirectoryGroup> GetSIDsInternal(ADAttributeArgs const& args);

// The group that has the SID: its name, distinguished name and the time; empty when there is none.
// The name is what its distinguished name begins with, "Staff" of "CN=Staff,DC=corp", and empty for
// one of another form. The SID is left out.
GATOTU_API ActiveDirectoryGroup GetGroupInternal(ADAttributeArgs const& args);

// The text for the exception that is being handled.
GATOTU_API std::string DirectoryErrorText();

// Empty, with the answer in `result`; or why the routine failed, with `result` left alone.
template <class Result>
std::string CallODRoutineAndCatchError(Result (*routine)(ADAttributeArgs const&),
                                       ADAttributeArgs const& args, Result& result) {
  try {
    result = routine(args);
    return {};
  } catch (...) {
    return DirectoryErrorText();
  }
}

}  // namespace MacintoshPlatform
