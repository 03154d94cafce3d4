// Preferences by application and key, read from the property lists that the machine in use keeps of
// them. Nothing is written.
//
// Of an application named <id>, the first of these files that is a dictionary with the key answers:
//   ~/Library/Preferences/ByHost/<id>.<host>.plist             current user, current host
//   ~/Library/Preferences/<id>.plist                           current user, any host
//   ~/Library/Preferences/ByHost/.GlobalPreferences.<host>.plist
//   ~/Library/Preferences/.GlobalPreferences.plist
//   /Library/Preferences/<id>.plist                            any user
//   /Library/Preferences/.GlobalPreferences.plist
// What is no regular file, may not be read, is damaged or larger than 16 MiB is passed over. On a
// machine that does not tell its host's identifier, a file by host counts where there is exactly
// one such file of the application. A machine without a current user has the last two alone.
//
// An <id> that is no name of a file (empty, with "/" or NUL) has no files of its own, so that the
// global ones alone answer: an identifier is a name, never a path.
#pragma once

#include <CoreFoundation/CFString.h>

// This process, which has no preferences of its own: the global ones alone answer.
#define kCFPreferencesCurrentApplication CFSTR("kCFPreferencesCurrentApplication")
// The global preferences alone.
#define kCFPreferencesAnyApplication CFSTR("kCFPreferencesAnyApplication")

#define kCFPreferencesCurrentUser CFSTR("kCFPreferencesCurrentUser")
#define kCFPreferencesAnyUser CFSTR("kCFPreferencesAnyUser")
#define kCFPreferencesCurrentHost CFSTR("kCFPreferencesCurrentHost")
#define kCFPreferencesAnyHost CFSTR("kCFPreferencesAnyHost")

// The value, for the caller to release, or null. Files are asked anew at each call: a changed one
// is read again, and values given out before stay as they are.
CF_EXPORT CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID);
// From one of the files alone. Null for users other than the two above.
CF_EXPORT CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef applicationID,
                                                   CFStringRef userName, CFStringRef hostName);
