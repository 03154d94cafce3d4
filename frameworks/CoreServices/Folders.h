// The folders that the system has for a purpose, by a four-character code and a domain.
#pragma once

#include <CoreServices/Files.h>

// The first two are ways to search: `kOnSystemDisk` the system domain, then the local one,
// `kOnAppropriateDisk` the user's, then the local one, then the system's.
enum : FSVolumeRefNum {
  kOnSystemDisk = -32768,
  kOnAppropriateDisk = -32767,
  kSystemDomain = -32766,
  kLocalDomain = -32765,
  kNetworkDomain = -32764,
  kUserDomain = -32763,
  kClassicDomain = -32762,
};

// In the comments the Mac Roman byte 0xC4 is an ƒ.
enum : OSType {
  kSystemFolderType = 0x6D616373,                   // macs
  kAppleMenuFolderType = 0x616D6E75,                // amnu
  kControlPanelFolderType = 0x6374726C,             // ctrl
  kDesktopFolderType = 0x6465736B,                  // desk
  kExtensionFolderType = 0x6578746E,                // extn
  kFontsFolderType = 0x666F6E74,                    // font
  kPreferencesFolderType = 0x70726566,              // pref
  kPrintMonitorDocsFolderType = 0x70726E74,         // prnt
  kStartupFolderType = 0x73747274,                  // strt
  kShutdownFolderType = 0x73686466,                 // shdf
  kTemporaryFolderType = 0x74656D70,                // temp
  kStartupItemsDisabledFolderType = 0x73747244,     // strD
  kExtensionDisabledFolderType = 0x65787444,        // extD
  kApplicationsFolderType = 0x61707073,             // apps
  kDocumentsFolderType = 0x646F6373,                // docs
  kChewableItemsFolderType = 0x666C6E74,            // flnt
  kApplicationSupportFolderType = 0x61737570,       // asup
  kTextEncodingsFolderType = 0xC4746578,            // ƒtex
  kHelpFolderType = 0xC4686C70,                     // ƒhlp
  kInternetPlugInFolderType = 0xC46E6574,           // ƒnet
  kModemScriptsFolderType = 0xC46D6F64,             // ƒmod
  kPrinterDescriptionFolderType = 0x70706466,       // ppdf
  kPrinterDriverFolderType = 0xC4707264,            // ƒprd
  kScriptingAdditionsFolderType = 0xC4736372,       // ƒscr
  kSharedLibrariesFolderType = 0xC46C6962,          // ƒlib
  kVoicesFolderType = 0x66766F63,                   // fvoc
  kControlStripModulesFolderType = 0x73646576,      // sdev
  kAssistantsFolderType = 0x617374C4,               // astƒ
  kUtilitiesFolderType = 0x757469C4,                // utiƒ
  kAppleExtrasFolderType = 0x616578C4,              // aexƒ
  kContextualMenuItemsFolderType = 0x636D6E75,      // cmnu
  kMacOSReadMesFolderType = 0x6D6F72C4,             // morƒ
  kColorSyncProfilesFolderType = 0x70726F66,        // prof
  kThemesFolderType = 0x74686D65,                   // thme
  kFavoritesFolderType = 0x66617673,                // favs
  kControlPanelDisabledFolderType = 0x63747244,     // ctrD
  kSystemExtensionDisabledFolderType = 0x6D616344,  // macD
  kShutdownItemsDisabledFolderType = 0x73686444,    // shdD
  kALMModulesFolderType = 0x77616C6B,               // walk
  kALMPreferencesFolderType = 0x74726970,           // trip
  kALMLocationsFolderType = 0x66616C6C,             // fall
  kClassicDesktopFolderType = 0x7364736B,           // sdsk
  kDomainTopLevelFolderType = 0x64746F70,           // dtop
  kDomainLibraryFolderType = 0x646C6962,            // dlib
  kColorSyncFolderType = 0x73796E63,                // sync
  kPrintersFolderType = 0x696D7072,                 // impr
  kSpeechFolderType = 0x73706368,                   // spch
  kCarbonLibraryFolderType = 0x63617262,            // carb
  kDocumentationFolderType = 0x696E666F,            // info
  kDeveloperDocsFolderType = 0x64646F63,            // ddoc
  kDeveloperHelpFolderType = 0x64657668,            // devh
  kISSDownloadsFolderType = 0x69737364,             // issd
  kUserSpecificTmpFolderType = 0x75746D70,          // utmp
  kCachedDataFolderType = 0x63616368,               // cach
  kFrameworksFolderType = 0x6672616D,               // fram
  kPrivateFrameworksFolderType = 0x7066726D,        // pfrm
  kDeveloperFolderType = 0x64657666,                // devf
  kSystemSoundsFolderType = 0x73736E64,             // ssnd
  kComponentsFolderType = 0x636D7064,               // cmpd
  kQuickTimeComponentsFolderType = 0x77636D70,      // wcmp
  kCoreServicesFolderType = 0x63737276,             // csrv
  kAudioSupportFolderType = 0x6164696F,             // adio
  kKernelExtensionsFolderType = 0x6B657874,         // kext
  kUsersFolderType = 0x75737273,                    // usrs
  kCurrentUserFolderType = 0x63757372,              // cusr
  kSharedUserDataFolderType = 0x73646174,           // sdat
  kVolumeSettingsFolderType = 0x76736664,           // vsfd
  kLocalesFolderType = 0xC46C6F63,                  // ƒloc
  kInstallerReceiptsFolderType = 0x72637074,        // rcpt
};

// The folder that the machine in use has for the purpose in the domain, links followed; whatever
// lies in its place, which need not be a folder. `fnfErr` where the domain has no such folder, or
// it is not there. With `createFolder` it is then made, together with the folders above it, in the
// first domain that has a place for it: for its owner alone in the user's domain (0700), else
// 0755. A machine that is not the running one answers `vLckdErr` to that.
CF_EXPORT OSErr FSFindFolder(FSVolumeRefNum vRefNum, OSType folderType, Boolean createFolder,
                             FSRef* foundRef);
