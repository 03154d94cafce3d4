// The Component Manager over the components that the machine in use has registered.
#pragma once

#include <CoreServices/MacMemory.h>
#include <CoreServices/MacTypes.h>

enum : OSErr { invalidComponentID = -3000 };
// From calls whose result is a number.
enum : SInt32 { badComponentInstance = static_cast<SInt32>(0x80008001) };

// Numbers where the classic interface has pointers to records; 0 is none. A component's number
// means the same component for as long as the machine's list does not change.
using Component = UInt32;
using ComponentInstance = UInt32;

// Zero is any. No machine tells of flags: every component's are 0.
struct ComponentDescription {
  OSType componentType;
  OSType componentSubType;
  OSType componentManufacturer;
  UInt32 componentFlags;
  UInt32 componentFlagsMask;
};

// The next component after this one, or the first of all after 0, that is as described. 0 after the
// last, and where the machine has none or does not tell.
CF_EXPORT Component FindNextComponent(Component component, ComponentDescription* looking);

// Fills what is not null, or answers `invalidComponentID`. Handles become as long as the text and
// hold it with its length in front, at most 255 bytes; a text or an icon that the component lacks
// leaves the handle empty, its contents null. No component has an icon. Where a handle cannot be
// made long enough, `memFullErr`.
CF_EXPORT OSErr GetComponentInfo(Component component, ComponentDescription* description,
                                 Handle name, Handle info, Handle icon);

// 0 for a component that does not exist or cannot be opened. `CloseComponent` ends an instance.
CF_EXPORT ComponentInstance OpenComponent(Component component);
// As it was when the instance was opened: the interface's version in the upper half, the code's in
// the lower.
CF_EXPORT SInt32 GetComponentVersion(ComponentInstance instance);
CF_EXPORT OSErr CloseComponent(ComponentInstance instance);
