// Reading a preference again, and finding the folders that the system has for a purpose.
#include <CoreServices/CoreServices.h>
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "machine/machine.h"

namespace {

class SourceCounter final : public machine::SourceObserver {
 public:
  SourceCounter() { machine::SetSourceObserver(this); }
  ~SourceCounter() override { machine::SetSourceObserver(nullptr); }
  void Consulted(machine::Announcement const& announcement) override {
    ++sources;
    bytes += static_cast<double>(announcement.bytes);
  }

  double sources = 0, bytes = 0;
};

// The home of a user, for as long as this lives, with preferences of some size.
class Home {
 public:
  Home() {
    char folder[] = "/tmp/gatotu_preferences_bench.XXXXXX";
    folder_ = ::mkdtemp(folder);
    std::string text = "<plist version=\"1.0\"><dict>\n";
    for (int i = 0; i < 200; ++i) {
      text += "<key>key" + std::to_string(i) + "</key><string>A value as many are</string>\n";
    }
    std::string const preferences = folder_ + "/Library/Preferences";
    std::filesystem::create_directories(preferences);
    for (char const* name : {"/org.example.application.plist", "/.GlobalPreferences.plist"}) {
      std::ofstream(preferences + name) << text << "</dict></plist>\n";
    }
    ::setenv("HOME", folder_.c_str(), 1);
    // From here on the times of the files tell every change.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  ~Home() { std::filesystem::remove_all(folder_); }

 private:
  std::string folder_;
};

void ReadPreference(benchmark::State& state, char const* key) {
  Home const home;
  CFStringRef const name = CFStringCreateWithCString(nullptr, key, kCFStringEncodingUTF8);
  auto const read = [&] {
    CFPropertyListRef const value =
        CFPreferencesCopyAppValue(name, CFSTR("org.example.application"));
    if (value != nullptr) CFRelease(value);
  };
  read();
  {
    SourceCounter counter;
    read();
    // The machine tells its host's number and the home besides the files.
    state.counters["sources"] = counter.sources;
    state.counters["bytes"] = counter.bytes;
  }
  for (auto _ : state) read();
  CFRelease(name);
}
BENCHMARK_CAPTURE(ReadPreference, Found, "key150");
BENCHMARK_CAPTURE(ReadPreference, Missing, "none");

constexpr OSType kTypes[] = {kSystemFolderType,
                             kAppleMenuFolderType,
                             kControlPanelFolderType,
                             kDesktopFolderType,
                             kExtensionFolderType,
                             kFontsFolderType,
                             kPreferencesFolderType,
                             kPrintMonitorDocsFolderType,
                             kStartupFolderType,
                             kShutdownFolderType,
                             kTemporaryFolderType,
                             kStartupItemsDisabledFolderType,
                             kExtensionDisabledFolderType,
                             kApplicationsFolderType,
                             kDocumentsFolderType,
                             kChewableItemsFolderType,
                             kApplicationSupportFolderType,
                             kTextEncodingsFolderType,
                             kHelpFolderType,
                             kInternetPlugInFolderType,
                             kModemScriptsFolderType,
                             kPrinterDescriptionFolderType,
                             kPrinterDriverFolderType,
                             kScriptingAdditionsFolderType,
                             kSharedLibrariesFolderType,
                             kVoicesFolderType,
                             kControlStripModulesFolderType,
                             kAssistantsFolderType,
                             kUtilitiesFolderType,
                             kAppleExtrasFolderType,
                             kContextualMenuItemsFolderType,
                             kMacOSReadMesFolderType,
                             kColorSyncProfilesFolderType,
                             kThemesFolderType,
                             kFavoritesFolderType,
                             kControlPanelDisabledFolderType,
                             kSystemExtensionDisabledFolderType,
                             kShutdownItemsDisabledFolderType,
                             kALMModulesFolderType,
                             kALMPreferencesFolderType,
                             kALMLocationsFolderType,
                             kClassicDesktopFolderType,
                             kDomainTopLevelFolderType,
                             kDomainLibraryFolderType,
                             kColorSyncFolderType,
                             kPrintersFolderType,
                             kSpeechFolderType,
                             kCarbonLibraryFolderType,
                             kDocumentationFolderType,
                             kDeveloperDocsFolderType,
                             kDeveloperHelpFolderType,
                             kISSDownloadsFolderType,
                             kUserSpecificTmpFolderType,
                             kCachedDataFolderType,
                             kFrameworksFolderType,
                             kPrivateFrameworksFolderType,
                             kDeveloperFolderType,
                             kSystemSoundsFolderType,
                             kComponentsFolderType,
                             kQuickTimeComponentsFolderType,
                             kCoreServicesFolderType,
                             kAudioSupportFolderType,
                             kKernelExtensionsFolderType,
                             kUsersFolderType,
                             kCurrentUserFolderType,
                             kSharedUserDataFolderType,
                             kVolumeSettingsFolderType,
                             kLocalesFolderType,
                             kInstallerReceiptsFolderType};
static_assert(std::size(kTypes) == 69);

void FindFolders(benchmark::State& state, FSVolumeRefNum domain) {
  double found = 0;
  for (auto _ : state) {
    found = 0;
    for (OSType const type : kTypes) {
      FSRef ref;
      if (FSFindFolder(domain, type, false, &ref) == noErr) ++found;
    }
  }
  state.counters["found"] = found;
}
BENCHMARK_CAPTURE(FindFolders, OfWorld, kSystemDomain)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FindFolders, OfUser, kUserDomain)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
