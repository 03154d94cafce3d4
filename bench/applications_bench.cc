// Scanning a machine for applications: a tree of 200,000 files, by expression and by C calls that
// read as many bytes of each file.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "bench/module_bench.h"
#include "evaluator/evaluator.h"
#include "machine/machine.h"

namespace {

constexpr int kFolders = 10'000, kFilesOfFolder = 20;
constexpr std::size_t kHeaderBytes = 28;

void Write(std::string const& path, std::string_view content) { std::ofstream(path) << content; }

// A root with text files, one program in every hundredth folder and a bundle in every tenth of
// those, which has files that nobody is to read.
class Tree {
 public:
  Tree() {
    root_ = std::filesystem::temp_directory_path() / "gatotu_applications_bench.XXXXXX";
    if (mkdtemp(root_.data()) == nullptr) std::abort();
    for (int i = 0; i < kFolders; ++i) Fill(i);
  }
  ~Tree() { std::filesystem::remove_all(root_); }

  std::string const& root() const { return root_; }

 private:
  void Fill(int number) const {
    std::string const folder = root_ + "/Applications/" + std::to_string(number % 100) + "/" +
                               std::to_string(number / 100 % 10) + "/" + std::to_string(number);
    std::filesystem::create_directories(folder);
    for (int i = 0; i < kFilesOfFolder; ++i) {
      bool const is_program = i == 0 && number % 100 == 0;
      Write(folder + "/a file of some name " + std::to_string(i),
            is_program ? std::string_view("\xcf\xfa\xed\xfe\7\0\0\1\3\0\0\0\2\0\0\0"
                                          "\0\0\0\0\0\0\0\0\0\0\0\0",
                                          kHeaderBytes)
                       : "Some text that is longer than the header of a program.\n");
    }
    if (number % 1000 == 0) FillBundle(folder + "/Example.app/Contents");
  }
  static void FillBundle(std::string const& contents) {
    std::filesystem::create_directories(contents);
    Write(contents + "/PkgInfo", "APPL????");
    for (int i = 0; i < 1000; ++i) Write(contents + "/" + std::to_string(i), "inside");
  }

  std::string root_;
};

Tree const& All() {
  static Tree const tree;
  return tree;
}

long CountBelow(int folder, char const* name);

long LookAt(int folder, dirent const& entry) {
  std::string_view const name = entry.d_name;
  if (name == "." || name == "..") return 0;
  if (entry.d_type == DT_DIR) return name.ends_with(".app") ? 1 : CountBelow(folder, entry.d_name);
  int const file = openat(folder, entry.d_name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
  if (file < 0) return 0;
  char header[kHeaderBytes];
  long const found = read(file, header, sizeof header) > 0 && header[0] == '\xcf';
  close(file);
  return found;
}

long CountBelow(int folder, char const* name) {
  DIR* const open = fdopendir(openat(folder, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (open == nullptr) return 0;
  long count = 0;
  while (dirent const* const entry = readdir(open)) count += LookAt(dirfd(open), *entry);
  closedir(open);
  return count;
}

void ScanByCalls(benchmark::State& state) {
  std::string const start = All().root() + "/Applications";
  for (auto _ : state) {
    state.counters["applications"] = static_cast<double>(CountBelow(AT_FDCWD, start.c_str()));
  }
}
BENCHMARK(ScanByCalls)->Unit(benchmark::kMillisecond);

void Count(benchmark::State& state, gatotu::Expression const& expression) {
  gatotu::Evaluate(expression, [&](gatotu::Value const& count) {
    state.counters["applications"] = static_cast<double>(count.Integer());
    return true;
  });
}

// What is found is kept for as long as the machine is in use.
enum class Machines { kNew, kSame };

void ScanByExpression(benchmark::State& state, Machines machines) {
  auto const compilation = gatotu::Compile("number of applications");
  if (!compilation.expression) return state.SkipWithError("the expression does not compile");
  auto const machine = machine::MakeLiveMachine(All().root());
  auto const before = machine::SetCurrentMachine(machine);
  Count(state, *compilation.expression);
  for (auto _ : state) {
    if (machines == Machines::kNew) machine::SetCurrentMachine(machine);
    Count(state, *compilation.expression);
  }
  machine::SetCurrentMachine(before);
}
BENCHMARK_CAPTURE(ScanByExpression, Anew, Machines::kNew)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ScanByExpression, Kept, Machines::kSame)->Unit(benchmark::kMillisecond);

}  // namespace
