// What the parts of the File Manager share: from references to paths of the machine in use and
// back, and from its failures to status codes.
#pragma once

#include <CoreServices/Files.h>

#include <optional>
#include <string>
#include <string_view>

#include "machine/machine.h"

inline machine::FileSource const& MachineFiles() { return machine::CurrentMachine().Files(); }

// The status code for a failure at a path.
OSErr CodeOf(machine::Absence const& absence, std::string const& path);

// An item found where its reference says, with what was asked of it.
struct FoundItem {
  OSErr code = noErr;
  std::string path;
  machine::Item item;
};
// `fnfErr` when another item is in the place now. `kAll` or `kStatus`.
FoundItem FindItem(FSRef const* ref, machine::Detail detail);
// The same, and `errFSNotAFolder` for what is none.
FoundItem FindFolder(FSRef const* ref);

// A place in a folder, where there may be nothing yet.
struct FoundPlace {
  OSErr code = noErr;
  std::string path;
  UInt32 folder = 0;
  std::string name;
};
FoundPlace FindPlace(FSRef const* parent, UniCharCount length, UniChar const* name);

// The path that the reference's place has, whatever is there.
std::optional<std::string> PathOf(FSRef const& ref);
// The number that the items of a folder have in their references.
UInt32 NumberOf(FSRef const& folder);

FSRef MakeRef(UInt32 folder, std::string_view name, machine::ItemStatus const& status);
// Asks the machine for the item at a place.
OSErr MakeRefAt(FoundPlace const& place, FSRef* ref);
// The folder of an item; zeros for the root.
OSErr MakeParentRef(FSRef const& ref, FSRef* parent);

FSSpec MakeSpec(FSRef const& ref, FSVolumeRefNum volume);
