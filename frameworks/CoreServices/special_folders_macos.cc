// The folders of a macOS volume, as Apple's Folder Manager Reference and the platform's file system
// layout (hier(7), File System Basics) have them; those of the classic domain as the Mac OS 8 and 9
// system folder has them (Inside Macintosh, Folder Manager).
#include "frameworks/CoreServices/special_folders.h"

namespace {

constexpr DomainSet S = kInSystem, L = kInLocal, U = kInUser, N = kInNetwork, C = kInClassic;
using enum FolderBase;

constexpr DomainLibrary kLibraries[] = {
    {S, kRoot, "/System/Library"},
    {L, kRoot, "/Library"},
    {U, kHome, "Library"},
    {N, kRoot, "/Network/Library"},
};

constexpr SpecialFolderRow kRows[] = {
    // The tops of the domains, and what lies beside the libraries.
    {kSystemFolderType, S, kRoot, "/System"},
    {kDomainTopLevelFolderType, S, kRoot, "/System"},
    {kDomainTopLevelFolderType, L, kRoot, "/"},
    {kDomainTopLevelFolderType, U, kHome, ""},
    {kDomainTopLevelFolderType, N, kRoot, "/Network"},
    {kDomainLibraryFolderType, S | L | U | N, kLibrary, ""},
    {kApplicationsFolderType, S | L, kRoot, "/Applications"},
    {kApplicationsFolderType, U, kHome, "Applications"},
    {kApplicationsFolderType, N, kRoot, "/Network/Applications"},
    {kUtilitiesFolderType, S | L, kRoot, "/Applications/Utilities"},
    {kDeveloperFolderType, S | L, kRoot, "/Developer"},
    {kDeveloperDocsFolderType, S | L, kRoot, "/Developer/Documentation"},
    {kDeveloperHelpFolderType, S | L, kRoot, "/Developer/Documentation/DeveloperHelp"},
    {kUsersFolderType, S | L | U | N | C, kRoot, "/Users"},
    {kSharedUserDataFolderType, S | L | U | N | C, kRoot, "/Users/Shared"},
    {kCurrentUserFolderType, S | L | U | N | C, kHome, ""},
    {kDesktopFolderType, U, kHome, "Desktop"},
    {kDocumentsFolderType, U, kHome, "Documents"},
    {kTemporaryFolderType, S | L, kRoot, "/tmp"},
    {kTemporaryFolderType, U, kLibrary, "Caches/TemporaryItems"},
    {kChewableItemsFolderType, S | L, kRoot, "/tmp"},
    {kChewableItemsFolderType, U, kLibrary, "Caches/TemporaryItems"},
    {kUserSpecificTmpFolderType, S | L, kRoot, "/tmp"},
    {kUserSpecificTmpFolderType, U, kLibrary, "Caches/TemporaryItems"},

    // In some libraries.
    {kExtensionFolderType, S | L, kLibrary, "Extensions"},
    {kKernelExtensionsFolderType, S | L, kLibrary, "Extensions"},
    {kExtensionDisabledFolderType, S | L, kLibrary, "Extensions (Disabled)"},
    {kStartupFolderType, S | L, kLibrary, "StartupItems"},
    {kStartupItemsDisabledFolderType, S | L, kLibrary, "StartupItems (Disabled)"},
    {kShutdownFolderType, S | L, kLibrary, "ShutdownItems"},
    {kShutdownItemsDisabledFolderType, S | L, kLibrary, "ShutdownItems (Disabled)"},
    {kControlPanelFolderType, S | L | U, kLibrary, "PreferencePanes"},
    {kControlPanelDisabledFolderType, S | L | U, kLibrary, "PreferencePanes (Disabled)"},
    {kTextEncodingsFolderType, S | L, kLibrary, "TextEncodings"},
    {kSharedLibrariesFolderType, S | L, kLibrary, "CFMSupport"},
    {kCarbonLibraryFolderType, S | L, kLibrary, "Frameworks/Carbon.framework"},
    {kCoreServicesFolderType, S | L, kLibrary, "CoreServices"},
    {kLocalesFolderType, S | L, kLibrary, "Locales"},
    {kISSDownloadsFolderType, U, kLibrary, "Caches/Downloads"},

    // In every library.
    {kFontsFolderType, S | L | U | N, kLibrary, "Fonts"},
    {kPreferencesFolderType, S | L | U | N, kLibrary, "Preferences"},
    {kApplicationSupportFolderType, S | L | U | N, kLibrary, "Application Support"},
    {kInternetPlugInFolderType, S | L | U | N, kLibrary, "Internet Plug-Ins"},
    {kHelpFolderType, S | L | U | N, kLibrary, "Documentation/Help"},
    {kVoicesFolderType, S | L | U | N, kLibrary, "Speech/Voices"},
    {kColorSyncProfilesFolderType, S | L | U | N, kLibrary, "ColorSync/Profiles"},
    {kColorSyncFolderType, S | L | U | N, kLibrary, "ColorSync"},
    {kThemesFolderType, S | L | U | N, kLibrary, "Themes"},
    {kPrintersFolderType, S | L | U | N, kLibrary, "Printers"},
    {kSpeechFolderType, S | L | U | N, kLibrary, "Speech"},
    {kSystemSoundsFolderType, S | L | U | N, kLibrary, "Sounds"},
    {kAudioSupportFolderType, S | L | U | N, kLibrary, "Audio"},
    {kQuickTimeComponentsFolderType, S | L | U | N, kLibrary, "QuickTime"},
    {kComponentsFolderType, S | L | U | N, kLibrary, "Components"},
    {kCachedDataFolderType, S | L | U | N, kLibrary, "Caches"},
    {kFrameworksFolderType, S | L | U | N, kLibrary, "Frameworks"},
    {kPrivateFrameworksFolderType, S | L | U | N, kLibrary, "PrivateFrameworks"},
    {kDocumentationFolderType, S | L | U | N, kLibrary, "Documentation"},
    {kScriptingAdditionsFolderType, S | L | U | N, kLibrary, "ScriptingAdditions"},
    {kModemScriptsFolderType, S | L | U | N, kLibrary, "Modem Scripts"},
    {kPrinterDescriptionFolderType, S | L | U | N, kLibrary, "Printers/PPDs"},
    {kFavoritesFolderType, S | L | U | N, kLibrary, "Favorites"},
    {kAssistantsFolderType, S | L | U | N, kLibrary, "Assistants"},
    {kInstallerReceiptsFolderType, S | L | U | N, kLibrary, "Receipts"},

    // The classic system folder.
    {kSystemFolderType, C, kClassicSystem, ""},
    {kAppleMenuFolderType, C, kClassicSystem, "Apple Menu Items"},
    {kApplicationSupportFolderType, C, kClassicSystem, "Application Support"},
    {kColorSyncProfilesFolderType, C, kClassicSystem, "ColorSync Profiles"},
    {kContextualMenuItemsFolderType, C, kClassicSystem, "Contextual Menu Items"},
    {kControlPanelFolderType, C, kClassicSystem, "Control Panels"},
    {kControlPanelDisabledFolderType, C, kClassicSystem, "Control Panels (Disabled)"},
    {kControlStripModulesFolderType, C, kClassicSystem, "Control Strip Modules"},
    {kExtensionFolderType, C, kClassicSystem, "Extensions"},
    {kExtensionDisabledFolderType, C, kClassicSystem, "Extensions (Disabled)"},
    {kALMModulesFolderType, C, kClassicSystem, "Extensions/Location Manager Modules"},
    {kModemScriptsFolderType, C, kClassicSystem, "Extensions/Modem Scripts"},
    {kPrinterDescriptionFolderType, C, kClassicSystem, "Extensions/Printer Descriptions"},
    {kVoicesFolderType, C, kClassicSystem, "Extensions/Voices"},
    {kFavoritesFolderType, C, kClassicSystem, "Favorites"},
    {kFontsFolderType, C, kClassicSystem, "Fonts"},
    {kHelpFolderType, C, kClassicSystem, "Help"},
    {kInternetPlugInFolderType, C, kClassicSystem, "Internet Plug-Ins"},
    {kPreferencesFolderType, C, kClassicSystem, "Preferences"},
    {kALMPreferencesFolderType, C, kClassicSystem, "Preferences/Location Manager Prefs"},
    {kALMLocationsFolderType, C, kClassicSystem, "Preferences/Location Manager Prefs/Locations"},
    {kPrinterDriverFolderType, C, kClassicSystem, "Printer Drivers"},
    {kPrintMonitorDocsFolderType, C, kClassicSystem, "PrintMonitor Documents"},
    {kScriptingAdditionsFolderType, C, kClassicSystem, "Scripting Additions"},
    {kShutdownFolderType, C, kClassicSystem, "Shutdown Items"},
    {kShutdownItemsDisabledFolderType, C, kClassicSystem, "Shutdown Items (Disabled)"},
    {kStartupFolderType, C, kClassicSystem, "Startup Items"},
    {kStartupItemsDisabledFolderType, C, kClassicSystem, "Startup Items (Disabled)"},
    {kSystemExtensionDisabledFolderType, C, kClassicSystem, "System Extensions (Disabled)"},
    {kTextEncodingsFolderType, C, kClassicSystem, "Text Encodings"},
    {kThemesFolderType, C, kClassicSystem, "Appearance/Theme Files"},

    // Beside it. Of two places, the second is that of volumes which had the older system alone.
    {kApplicationsFolderType, C, kRoot, "/Applications (Mac OS 9)"},
    {kAppleExtrasFolderType, C, kRoot, "/Applications (Mac OS 9)/Apple Extras"},
    {kAppleExtrasFolderType, C, kRoot, "/Apple Extras"},
    {kUtilitiesFolderType, C, kRoot, "/Applications (Mac OS 9)/Utilities"},
    {kUtilitiesFolderType, C, kRoot, "/Utilities"},
    {kAssistantsFolderType, C, kRoot, "/Assistants"},
    {kChewableItemsFolderType, C, kRoot, "/Cleanup At Startup"},
    {kClassicDesktopFolderType, C, kRoot, "/Desktop Folder"},
    {kDesktopFolderType, C, kRoot, "/Desktop Folder"},
    {kDocumentsFolderType, C, kRoot, "/Documents"},
    {kMacOSReadMesFolderType, C, kRoot, "/Mac OS Read Me Files"},
    {kTemporaryFolderType, C, kRoot, "/Temporary Items"},
};

}  // namespace

constinit SpecialFolderTable const kMacOSFolders = {kRows, kLibraries};
