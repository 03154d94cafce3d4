// The registry of drivers and devices, answered by the machine in use.
//
// Objects are numbers, never given twice in a process. A function that hands one over gives the
// caller a reference, which `IOObjectRelease` takes back; the last one ends the object. Names are
// UTF-8 with a NUL. Safe on several threads; an iterator is for one.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

using kern_return_t = int;
using mach_port_t = unsigned int;
using io_object_t = mach_port_t;
using io_registry_entry_t = io_object_t;
using io_iterator_t = io_object_t;
using IOOptionBits = UInt32;
using IOReturn = kern_return_t;

using io_name_t = char[128];
using io_string_t = char[512];

inline constexpr mach_port_t MACH_PORT_NULL = 0;
inline constexpr io_object_t IO_OBJECT_NULL = 0;

inline constexpr kern_return_t KERN_SUCCESS = 0;
inline constexpr IOReturn kIOReturnSuccess = KERN_SUCCESS;
inline constexpr IOReturn kIOReturnError = static_cast<IOReturn>(0xE00002BC);
inline constexpr IOReturn kIOReturnNoDevice = static_cast<IOReturn>(0xE00002C0);
inline constexpr IOReturn kIOReturnNotPrivileged = static_cast<IOReturn>(0xE00002C1);
inline constexpr IOReturn kIOReturnBadArgument = static_cast<IOReturn>(0xE00002C2);
inline constexpr IOReturn kIOReturnUnsupported = static_cast<IOReturn>(0xE00002C7);
inline constexpr IOReturn kIOReturnTimeout = static_cast<IOReturn>(0xE00002D6);
inline constexpr IOReturn kIOReturnNoSpace = static_cast<IOReturn>(0xE00002DB);
inline constexpr IOReturn kIOReturnNotFound = static_cast<IOReturn>(0xE00002F0);

inline constexpr char kIOServicePlane[] = "IOService";
inline constexpr char kIOPowerPlane[] = "IOPower";
inline constexpr char kIODeviceTreePlane[] = "IODeviceTree";
inline constexpr char kIOAudioPlane[] = "IOAudio";
inline constexpr char kIOFireWirePlane[] = "IOFireWire";
inline constexpr char kIOUSBPlane[] = "IOUSB";

// Always there, and not to be released. The bootstrap port says nothing here.
CF_EXPORT kern_return_t IOMasterPort(mach_port_t bootstrapPort, mach_port_t* masterPort);

CF_EXPORT kern_return_t IOObjectRetain(io_object_t object);
// `kIOReturnBadArgument` for a number that is no object, or none any more.
CF_EXPORT kern_return_t IOObjectRelease(io_object_t object);
// 0 for a number that is no object.
CF_EXPORT UInt32 IOObjectGetUserRetainCount(io_object_t object);
// Whether both stand for the same entry of the registry, however they were reached.
CF_EXPORT Boolean IOObjectIsEqualTo(io_object_t object, io_object_t anObject);
CF_EXPORT kern_return_t IOObjectGetClass(io_object_t object, io_name_t className);

// Null when the machine has no registry.
CF_EXPORT io_registry_entry_t IORegistryGetRootEntry(mach_port_t masterPort);
// A path is its plane, ":" and the way from the plane's root. Null where there is no such entry.
CF_EXPORT io_registry_entry_t IORegistryEntryFromPath(mach_port_t masterPort, char const* path);
// The first child in a plane.
CF_EXPORT kern_return_t IORegistryEntryGetChildEntry(io_registry_entry_t entry, char const* plane,
                                                     io_registry_entry_t* child);
// The direct children in a plane. `options` is 0: no other order is supported.
CF_EXPORT kern_return_t IORegistryEntryCreateIterator(io_registry_entry_t entry, char const* plane,
                                                      IOOptionBits options,
                                                      io_iterator_t* iterator);
// Null after the last.
CF_EXPORT io_object_t IOIteratorNext(io_iterator_t iterator);

// A name or path that does not fit is `kIOReturnNoSpace`: half of one would be another's.
CF_EXPORT kern_return_t IORegistryEntryGetNameInPlane(io_registry_entry_t entry, char const* plane,
                                                      io_name_t name);
CF_EXPORT kern_return_t IORegistryEntryGetPath(io_registry_entry_t entry, char const* plane,
                                               io_string_t path);
// The caller releases the dictionary. `options` is 0.
CF_EXPORT kern_return_t IORegistryEntryCreateCFProperties(io_registry_entry_t entry,
                                                          CFMutableDictionaryRef* properties,
                                                          CFAllocatorRef allocator,
                                                          IOOptionBits options);
