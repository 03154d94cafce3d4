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

special_folder_decl<FolderCode("macs")> system_folder("system folder", "system folders");
special_folder_decl<FolderCode("amnu")> apple_menu_items_folder("apple menu items folder",
                                                                "apple menu items folders");
special_folder_decl<FolderCode("ctrl")> control_panels_folder("control panels folder",
                                                              "control panels folders");
special_folder_decl<FolderCode("desk")> desktop_folder("desktop folder", "desktop folders");
special_folder_decl<FolderCode("extn")> extensions_folder("extensions folder",
                                                          "extensions folders");
special_folder_decl<FolderCode("font")> fonts_folder("fonts folder", "fonts folders");
special_folder_decl<FolderCode("pref")> preferences_folder("preferences folder",
                                                           "preferences folders");
special_folder_decl<FolderCode("prnt")> printmonitor_documents_folder(
    "printmonitor documents folder", "printmonitor documents folders");
special_folder_decl<FolderCode("strt")> startup_items_folder("startup items folder",
                                                             "startup items folders");
special_folder_decl<FolderCode("shdf")> shutdown_items_folder("shutdown items folder",
                                                              "shutdown items folders");
special_folder_decl<FolderCode("temp")> temporary_items_folder("temporary items folder",
                                                               "temporary items folders");
special_folder_decl<FolderCode("strD")> disabled_startup_items_folder(
    "disabled startup items folder", "disabled startup items folders");
special_folder_decl<FolderCode("extD")> disabled_extensions_folder("disabled extensions folder",
                                                                   "disabled extensions folders");
special_folder_decl<FolderCode("apps")> applications_folder("applications folder",
                                                            "applications folders");
special_folder_decl<FolderCode("docs")> documents_folder("documents folder", "documents folders");
special_folder_decl<FolderCode("flnt")> chewable_items_folder("chewable items folder",
                                                              "chewable items folders");
special_folder_decl<FolderCode("asup")> application_support_folder("application support folder",
                                                                   "application support folders");
special_folder_decl<FolderCode("\xC4tex")> text_encodings_folder("text encodings folder",
                                                                 "text encodings folders");
special_folder_decl<FolderCode("\xC4hlp")> help_folder("help folder", "help folders");
special_folder_decl<FolderCode("\xC4net")> internet_plugins_folder("internet plugins folder",
                                                                   "internet plugins folders");
special_folder_decl<FolderCode("\xC4mod")> modem_scripts_folder("modem scripts folder",
                                                                "modem scripts folders");
special_folder_decl<FolderCode("ppdf")> printer_descriptions_folder("printer descriptions folder",
                                                                    "printer descriptions folders");
special_folder_decl<FolderCode("\xC4prd")> printer_drivers_folder("printer drivers folder",
                                                                  "printer drivers folders");
special_folder_decl<FolderCode("\xC4scr")> scripting_additions_folder(
    "scripting additions folder", "scripting additions folders");
special_folder_decl<FolderCode("\xC4lib")> shared_libraries_folder("shared libraries folder",
                                                                   "shared libraries folders");
special_folder_decl<FolderCode("fvoc")> voices_folder("voices folder", "voices folders");
special_folder_decl<FolderCode("sdev")> control_strip_modules_folder(
    "control strip modules folder", "control strip modules folders");
special_folder_decl<FolderCode("ast\xC4")> assistants_folder("assistants folder",
                                                             "assistants folders");
special_folder_decl<FolderCode("uti\xC4")> utilities_folder("utilities folder",
                                                            "utilities folders");
special_folder_decl<FolderCode("aex\xC4")> apple_extras_folder("apple extras folder",
                                                               "apple extras folders");
special_folder_decl<FolderCode("cmnu")> contextual_menu_items_folder(
    "contextual menu items folder", "contextual menu items folders");
special_folder_decl<FolderCode("mor\xC4")> macos_read_me_folder("macos read me folder",
                                                                "macos read me folders");
special_folder_decl<FolderCode("prof")> colorsync_profiles_folder("colorsync profiles folder",
                                                                  "colorsync profiles folders");
special_folder_decl<FolderCode("thme")> themes_folder("themes folder", "themes folders");
special_folder_decl<FolderCode("favs")> favorites_folder("favorites folder", "favorites folders");
special_folder_decl<FolderCode("ctrD")> disabled_control_panels_folder(
    "disabled control panels folder", "disabled control panels folders");
special_folder_decl<FolderCode("macD")> disabled_system_extensions_folder(
    "disabled system extensions folder", "disabled system extensions folders");
special_folder_decl<FolderCode("shdD")> disabled_shutdown_items_folder(
    "disabled shutdown items folder", "disabled shutdown items folders");
special_folder_decl<FolderCode("walk")> location_manager_modules_folder(
    "location manager modules folder", "location manager modules folders");
special_folder_decl<FolderCode("trip")> location_manager_preferences_folder(
    "location manager preferences folder", "location manager preferences folders");
special_folder_decl<FolderCode("fall")> locations_folder("locations folder", "locations folders");
special_folder_decl<FolderCode("sdsk")> classic_folder("classic folder", "classic folders");
special_folder_decl<FolderCode("dtop")> domain_top_folder("domain top folder",
                                                          "domain top folders");
special_folder_decl<FolderCode("dlib")> domain_library_folder("domain library folder",
                                                              "domain library folders");
special_folder_decl<FolderCode("sync")> color_sync_folder("color sync folder",
                                                          "color sync folders");
special_folder_decl<FolderCode("impr")> printers_folder("printers folder", "printers folders");
special_folder_decl<FolderCode("spch")> speech_folder("speech folder", "speech folders");
special_folder_decl<FolderCode("carb")> carbon_folder("carbon folder", "carbon folders");
special_folder_decl<FolderCode("info")> documentation_folder("documentation folder",
                                                             "documentation folders");
special_folder_decl<FolderCode("ddoc")> developer_docs_folder("developer docs folder",
                                                              "developer docs folders");
special_folder_decl<FolderCode("devh")> developer_help_folder("developer help folder",
                                                              "developer help folders");
special_folder_decl<FolderCode("issd")> iss_download_folder("iss download folder",
                                                            "iss download folders");
special_folder_decl<FolderCode("utmp")> user_temp_folder("user temp folder", "user temp folders");
special_folder_decl<FolderCode("cach")> cache_folder("cache folder", "cache folders");
special_folder_decl<FolderCode("fram")> framework_folder("framework folder", "framework folders");
special_folder_decl<FolderCode("pfrm")> private_framework_folder("private framework folder",
                                                                 "private framework folders");
special_folder_decl<FolderCode("devf")> developer_folder("developer folder", "developer folders");
special_folder_decl<FolderCode("ssnd")> sound_folder("sound folder", "sound folders");
special_folder_decl<FolderCode("cmpd")> component_folder("component folder", "component folders");
special_folder_decl<FolderCode("wcmp")> quicktime_folder("quicktime folder", "quicktime folders");
special_folder_decl<FolderCode("csrv")> core_services_folder("core services folder",
                                                             "core services folders");
special_folder_decl<FolderCode("adio")> audio_folder("audio folder", "audio folders");
special_folder_decl<FolderCode("kext")> kernel_extensions_folder("kernel extensions folder",
                                                                 "kernel extensions folders");
special_folder_decl<FolderCode("usrs")> users_folder("users folder", "users folders");
special_folder_decl<FolderCode("cusr")> current_user_folder("current user folder",
                                                            "current user folders");
special_folder_decl<FolderCode("sdat")> shared_folder("shared folder", "shared folders");
special_folder_decl<FolderCode("vsfd")> volume_settings_folder("volume settings folder",
                                                               "volume settings folders");
special_folder_decl<FolderCode("\xC4loc")> locales_folder("locales folder", "locales folders");
special_folder_decl<FolderCode("rcpt")> receipts_folder("receipts folder", "receipts folders");

}  // namespace
