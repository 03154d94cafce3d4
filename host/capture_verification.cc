#include "host/capture_verification.h"

#include <unistd.h>

#include "host/output.h"

namespace gatotu::host {
namespace {

void Tell(char const* what, std::vector<std::string> const& paths, Output& output) {
  for (std::string const& path : paths) {
    std::string line = what;
    AppendShown(line, path);
    output.Write(line + "\n");
  }
}

}  // namespace

ExitStatus TellOfVerification(std::string const& folder, ManifestCheck const& checked) {
  if (auto const* failure = std::get_if<std::string>(&checked)) {
    Complain(*failure);
    return ExitStatus::kUnusable;
  }
  ManifestDifferences const& differences = std::get<ManifestDifferences>(checked);
  Output output(STDOUT_FILENO);
  Tell("altered: ", differences.altered, output);
  Tell("missing: ", differences.missing, output);
  Tell("added: ", differences.added, output);
  std::size_t const count =
      differences.altered.size() + differences.missing.size() + differences.added.size();
  std::string verdict;
  AppendShown(verdict, folder);
  verdict += count == 0 ? " is as it was written; entries: " + std::to_string(differences.count)
                        : " is not as it was written; differences: " + std::to_string(count);
  output.Write(verdict + "\n");
  output.Flush();
  return count == 0 ? ExitStatus::kAnswered : ExitStatus::kNoAnswer;
}

}  // namespace gatotu::host
