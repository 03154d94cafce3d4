// Opening bundles: anew, and again while they are kept.
#include <CoreFoundation/CoreFoundation.h>
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "evaluator/evaluator.h"

namespace {

// What an application's dictionary has in the middle: forty keys in four kilobytes.
std::string InfoPropertyList(std::string const& version) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
  text += "<key>CFBundleIdentifier</key><string>org.example.application</string>\n";
  text += "<key>CFBundleVersion</key><string>" + version + "</string>\n";
  for (int i = 0; i < 40; ++i) {
    text += "\t<key>ApplicationKey" + std::to_string(i) +
            "</key>\n\t<array><string>A text of some length for each of them</string></array>\n";
  }
  return text + "</dict>\n</plist>\n";
}

// Applications in a folder of their own, old enough for their stamps to tell every change.
class Applications {
 public:
  static constexpr int kCount = 1024;  // more than are kept

  Applications() {
    char folder[] = "/tmp/gatotu_bundles_bench.XXXXXX";
    folder_ = mkdtemp(folder);
    for (int i = 0; i < kCount; ++i) Write(std::to_string(i) + ".app/Contents/Info.plist", "1.2.3");
    Write("Text.app/Contents/Info.plist", "2024.10.1");
    Write("Translated.app/Contents/Info.plist", "2024.10.1");
    Write("Translated.app/Contents/Resources/en.lproj/InfoPlist.strings", "");
    Write("Tool.framework/Versions/A/Resources/Info.plist", "1.2.3");
    std::filesystem::create_symlink("A", folder_ + "/Tool.framework/Versions/Current");
    Write("Flat.plugin/Info.plist", "1.2.3");
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    for (int i = 0; i < kCount; ++i) urls_.push_back(Url(std::to_string(i) + ".app"));
  }
  ~Applications() {
    for (CFURLRef url : urls_) CFRelease(url);
    std::filesystem::remove_all(folder_);
  }

  CFURLRef Url(std::string const& name) const {
    std::string const path = folder_ + '/' + name;
    return CFURLCreateFromFileSystemRepresentation(nullptr,
                                                   reinterpret_cast<UInt8 const*>(path.data()),
                                                   static_cast<CFIndex>(path.size()), true);
  }
  std::vector<CFURLRef> const& urls() const { return urls_; }
  std::string FolderPhrase(int number) const {
    return "folder \"" + folder_ + '/' + std::to_string(number) + ".app\"";
  }

 private:
  void Write(std::string const& name, std::string const& version) const {
    std::filesystem::path const path = folder_ + '/' + name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << (path.extension() == ".plist" ? InfoPropertyList(version)
                                                         : "CFBundleName = \"Name\";\n");
  }

  std::string folder_;
  std::vector<CFURLRef> urls_;
};

Applications const& All() {
  static Applications const applications;
  return applications;
}

bool AskVersion(CFURLRef url) {
  CFBundleRef const bundle = CFBundleCreate(nullptr, url);
  if (bundle == nullptr) return false;
  bool const is_known =
      CFBundleGetVersionNumber(bundle) != 0 ||
      CFBundleGetValueForInfoDictionaryKey(bundle, kCFBundleVersionKey) != nullptr;
  CFRelease(bundle);
  return is_known;
}

// Each opening is of another application than the last thousand.
void FirstOpened(benchmark::State& state) {
  auto const& urls = All().urls();
  std::size_t next = 0;
  for (auto _ : state) {
    if (!AskVersion(urls[next++ % urls.size()])) state.SkipWithError("no bundle");
  }
}
BENCHMARK(FirstOpened)->Unit(benchmark::kMicrosecond);

void OpenedAgain(benchmark::State& state, char const* name) {
  CFURLRef const url = All().Url(name);
  for (auto _ : state) {
    if (!AskVersion(url)) state.SkipWithError("no bundle");
  }
  CFRelease(url);
}
BENCHMARK_CAPTURE(OpenedAgain, Application, "1.app");
BENCHMARK_CAPTURE(OpenedAgain, Framework, "Tool.framework");
BENCHMARK_CAPTURE(OpenedAgain, Flat, "Flat.plugin");
BENCHMARK_CAPTURE(OpenedAgain, VersionIsText, "Text.app");
BENCHMARK_CAPTURE(OpenedAgain, VersionIsTextAndTranslated, "Translated.app");

void Evaluate(benchmark::State& state, std::vector<std::string> const& texts) {
  std::vector<std::unique_ptr<gatotu::Expression const>> expressions;
  for (std::string const& text : texts) {
    expressions.push_back(gatotu::Compile(text).expression);
    if (expressions.back() == nullptr) return state.SkipWithError("does not compile");
  }
  std::size_t next = 0;
  for (auto _ : state) {
    auto const& expression = expressions[next++ % expressions.size()];
    auto const asked = gatotu::Evaluate(*expression, [](gatotu::Value const&) { return true; });
    if (asked.outcome != gatotu::Outcome::kAnswered) state.SkipWithError("no answer");
  }
}

constexpr char kVersion[] = "bundle version of bundle of ";

void FirstOpenedByExpression(benchmark::State& state) {
  std::vector<std::string> texts;
  for (int i = 0; i < Applications::kCount; ++i) texts.push_back(kVersion + All().FolderPhrase(i));
  Evaluate(state, texts);
}
BENCHMARK(FirstOpenedByExpression)->Unit(benchmark::kMicrosecond);

void OpenedAgainByExpression(benchmark::State& state) {
  Evaluate(state, {kVersion + All().FolderPhrase(1)});
}
BENCHMARK(OpenedAgainByExpression);

void FolderByExpression(benchmark::State& state) { Evaluate(state, {All().FolderPhrase(1)}); }
BENCHMARK(FolderByExpression);

// The least that can notice a change: the state of one file.
void StateByCall(benchmark::State& state) {
  CFURLRef const url = All().Url("1.app/Contents/Info.plist");
  char path[1024];
  CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(path), sizeof path);
  CFRelease(url);
  for (auto _ : state) benchmark::DoNotOptimize(std::filesystem::last_write_time(path));
}
BENCHMARK(StateByCall);

}  // namespace
