// The encoding in which system strings are reported: the setting
// "_KPXClient_DeploymentEncoding_IANAName" of the section "Client", an IANA character-set name.
// Looked up afresh at each call, so that a changed setting takes effect at the next string.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>

#include <string>

#include "frame/settings.h"

// Where nothing else is set or known.
inline constexpr TextEncoding kDefaultReportEncoding = 0x0500;  // Windows Latin-1

// `InspectorSettingsContextError` of a settings context without a store passes through.
TextEncoding GetReportEncodingFromInspector();

// The name as it is set, empty where none is.
std::string GetReportEncodingNameFromInspector();
std::string GetReportEncodingNameFromSettingStore(SettingStore<CFPreferenceSettingIterator>& store);

// The default for an empty name, one of more than 255 bytes and one the system does not know.
TextEncoding GetReportEncodingFromName(std::string const& name);
