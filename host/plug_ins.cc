#include "host/plug_ins.h"

#include <unistd.h>

#include <array>
#include <climits>

namespace gatotu::host {
namespace {

std::string ProgramFolder() {
  std::array<char, PATH_MAX> path;
  ssize_t const length = ::readlink("/proc/self/exe", path.data(), path.size());
  if (length <= 0) return ".";
  std::string const program(path.data(), static_cast<std::size_t>(length));
  return program.substr(0, program.rfind('/'));
}

}  // namespace

PlugIns::~PlugIns() {
  while (!loaded_.empty()) loaded_.pop_back();
}

std::optional<std::string> PlugIns::Load(std::string const& path) {
  // A bare name would be looked for among the system's libraries.
  std::string const file = path.find('/') == std::string::npos ? "./" + path : path;
  std::string error;
  auto plug_in = PlugIn::Load(file, error);
  if (plug_in == nullptr) return "cannot load the plug-in " + path + ": " + error;
  loaded_.push_back(std::move(plug_in));
  return std::nullopt;
}

std::string MachineVocabularyPath() {
  std::string const folder = ProgramFolder();
  // The folder of the libraries has its own name on some systems, but for the build.
  for (char const* libraries : {GATOTU_LIBRARY_FOLDER, "lib"}) {
    std::string path = folder + "/../" + libraries + "/Gatotu.so";
    if (::access(path.c_str(), F_OK) == 0) return path;
  }
  return folder + "/../lib/Gatotu.so";
}

}  // namespace gatotu::host
