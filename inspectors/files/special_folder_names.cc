// The names of the special folders: each of world and of a domain.
#include "frame/registration.h"
#include "inspectors/files/special_folder.h"

namespace {

// A folder under both forms of its name, which are withdrawn together.
template <MacFileType code>
class special_folder_decl {
 public:
  special_folder_decl(char const* singular, char const* plural)
      : of_world_(singular, plural, special_folder<code>, nullptr),
        of_domain_(singular, plural, special_folder_of_domain<code>, nullptr) {}

 private:
  GlobalProperty<folder> of_world_;
  Property<domain, folder> of_domain_;
};

special_folder_decl<kSystemFolderType> system_folder("system folder", "system folders");
special_folder_decl<kAppleMenuFolderType> apple_menu_items_folder("apple menu items folder",
                                                                  "apple menu items folders");
special_folder_decl<kControlPanelFolderType> control_panels_folder("control panels folder",
                                                                   "control panels folders");
special_folder_decl<kDesktopFolderType> desktop_folder("desktop folder", "desktop folders");
special_folder_decl<kExtensionFolderType> extensions_folder("extensions folder",
                                                            "extensions folders");
special_folder_decl<kFontsFolderType> fonts_folder("fonts folder", "fonts folders");
special_folder_decl<kPreferencesFolderType> preferences_folder("preferences folder",
                                                               "preferences folders");
special_folder_decl<kPrintMonitorDocsFolderType> printmonitor_documents_folder(
    "printmonitor documents folder", "printmonitor documents folders");
special_folder_decl<kStartupFolderType> startup_items_folder("startup items folder",
                                                             "startup items folders");
special_folder_decl<kShutdownFolderType> shutdown_items_folder("shutdown items folder",
                                                               "shutdown items folders");
special_folder_decl<kTemporaryFolderType> temporary_items_folder("temporary items folder",
                                                                 "temporary items folders");
special_folder_decl<kStartupItemsDisabledFolderType> disabled_startup_items_folder(
    "disabled startup items folder", "disabled startup items folders");
special_folder_decl<kExtensionDisabledFolderType> disabled_extensions_folder(
    "disabled extensions folder", "disabled extensions folders");
special_folder_decl<kApplicationsFolderType> applications_folder("applications folder",
                                                                 "applications folders");
special_folder_decl<kDocumentsFolderType> documents_folder("documents folder", "documents folders");
special_folder_decl<kChewableItemsFolderType> chewable_items_folder("chewable items folder",
                                                                    "chewable items folders");
special_folder_decl<kApplicationSupportFolderType> application_support_folder(
    "application support folder", "application support folders");
special_folder_decl<kTextEncodingsFolderType> text_encodings_folder("text encodings folder",
                                                                    "text encodings folders");
special_folder_decl<kHelpFolderType> help_folder("help folder", "help folders");
special_folder_decl<kInternetPlugInFolderType> internet_plugins_folder("internet plugins folder",
                                                                       "internet plugins folders");
special_folder_decl<kModemScriptsFolderType> modem_scripts_folder("modem scripts folder",
                                                                  "modem scripts folders");
special_folder_decl<kPrinterDescriptionFolderType> printer_descriptions_folder(
    "printer descriptions folder", "printer descriptions folders");
special_folder_decl<kPrinterDriverFolderType> printer_drivers_folder("printer drivers folder",
                                                                     "printer drivers folders");
special_folder_decl<kScriptingAdditionsFolderType> scripting_additions_folder(
    "scripting additions folder", "scripting additions folders");
special_folder_decl<kSharedLibrariesFolderType> shared_libraries_folder("shared libraries folder",
                                                                        "shared libraries folders");
special_folder_decl<kVoicesFolderType> voices_folder("voices folder", "voices folders");
special_folder_decl<kControlStripModulesFolderType> control_strip_modules_folder(
    "control strip modules folder", "control strip modules folders");
special_folder_decl<kAssistantsFolderType> assistants_folder("assistants folder",
                                                             "assistants folders");
special_folder_decl<kUtilitiesFolderType> utilities_folder("utilities folder", "utilities folders");
special_folder_decl<kAppleExtrasFolderType> apple_extras_folder("apple extras folder",
                                                                "apple extras folders");
special_folder_decl<kContextualMenuItemsFolderType> contextual_menu_items_folder(
    "contextual menu items folder", "contextual menu items folders");
special_folder_decl<kMacOSReadMesFolderType> macos_read_me_folder("macos read me folder",
                                                                  "macos read me folders");
special_folder_decl<kColorSyncProfilesFolderType> colorsync_profiles_folder(
    "colorsync profiles folder", "colorsync profiles folders");
special_folder_decl<kThemesFolderType> themes_folder("themes folder", "themes folders");
special_folder_decl<kFavoritesFolderType> favorites_folder("favorites folder", "favorites folders");
special_folder_decl<kControlPanelDisabledFolderType> disabled_control_panels_folder(
    "disabled control panels folder", "disabled control panels folders");
special_folder_decl<kSystemExtensionDisabledFolderType> disabled_system_extensions_folder(
    "disabled system extensions folder", "disabled system extensions folders");
special_folder_decl<kShutdownItemsDisabledFolderType> disabled_shutdown_items_folder(
    "disabled shutdown items folder", "disabled shutdown items folders");
special_folder_decl<kALMModulesFolderType> location_manager_modules_folder(
    "location manager modules folder", "location manager modules folders");
special_folder_decl<kALMPreferencesFolderType> location_manager_preferences_folder(
    "location manager preferences folder", "location manager preferences folders");
special_folder_decl<kALMLocationsFolderType> locations_folder("locations folder",
                                                              "locations folders");
special_folder_decl<kClassicDesktopFolderType> classic_folder("classic folder", "classic folders");
special_folder_decl<kDomainTopLevelFolderType> domain_top_folder("domain top folder",
                                                                 "domain top folders");
special_folder_decl<kDomainLibraryFolderType> domain_library_folder("domain library folder",
                                                                    "domain library folders");
special_folder_decl<kColorSyncFolderType> color_sync_folder("color sync folder",
                                                            "color sync folders");
special_folder_decl<kPrintersFolderType> printers_folder("printers folder", "printers folders");
special_folder_decl<kSpeechFolderType> speech_folder("speech folder", "speech folders");
special_folder_decl<kCarbonLibraryFolderType> carbon_folder("carbon folder", "carbon folders");
special_folder_decl<kDocumentationFolderType> documentation_folder("documentation folder",
                                                                   "documentation folders");
special_folder_decl<kDeveloperDocsFolderType> developer_docs_folder("developer docs folder",
                                                                    "developer docs folders");
special_folder_decl<kDeveloperHelpFolderType> developer_help_folder("developer help folder",
                                                                    "developer help folders");
special_folder_decl<kISSDownloadsFolderType> iss_download_folder("iss download folder",
                                                                 "iss download folders");
special_folder_decl<kUserSpecificTmpFolderType> user_temp_folder("user temp folder",
                                                                 "user temp folders");
special_folder_decl<kCachedDataFolderType> cache_folder("cache folder", "cache folders");
special_folder_decl<kFrameworksFolderType> framework_folder("framework folder",
                                                            "framework folders");
special_folder_decl<kPrivateFrameworksFolderType> private_framework_folder(
    "private framework folder", "private framework folders");
special_folder_decl<kDeveloperFolderType> developer_folder("developer folder", "developer folders");
special_folder_decl<kSystemSoundsFolderType> sound_folder("sound folder", "sound folders");
special_folder_decl<kComponentsFolderType> component_folder("component folder",
                                                            "component folders");
special_folder_decl<kQuickTimeComponentsFolderType> quicktime_folder("quicktime folder",
                                                                     "quicktime folders");
special_folder_decl<kCoreServicesFolderType> core_services_folder("core services folder",
                                                                  "core services folders");
special_folder_decl<kAudioSupportFolderType> audio_folder("audio folder", "audio folders");
special_folder_decl<kKernelExtensionsFolderType> kernel_extensions_folder(
    "kernel extensions folder", "kernel extensions folders");
special_folder_decl<kUsersFolderType> users_folder("users folder", "users folders");
special_folder_decl<kCurrentUserFolderType> current_user_folder("current user folder",
                                                                "current user folders");
special_folder_decl<kSharedUserDataFolderType> shared_folder("shared folder", "shared folders");
special_folder_decl<kVolumeSettingsFolderType> volume_settings_folder("volume settings folder",
                                                                      "volume settings folders");
special_folder_decl<kLocalesFolderType> locales_folder("locales folder", "locales folders");
special_folder_decl<kInstallerReceiptsFolderType> receipts_folder("receipts folder",
                                                                  "receipts folders");

}  // namespace
