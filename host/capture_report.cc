#include "host/capture_report.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "host/output.h"
#include "machine/capture/capture.h"

namespace gatotu::host {
namespace {

void AppendLeftOut(std::string& text, char const* why, std::vector<std::string> const& paths) {
  constexpr std::size_t kMostNamed = 10;
  for (std::size_t i = 0; i < std::min(paths.size(), kMostNamed); ++i) {
    text += std::string("left out, ") + why + ": ";
    AppendShown(text, paths[i]);
    text += '\n';
  }
  if (paths.size() > kMostNamed) {
    text += "and " + std::to_string(paths.size() - kMostNamed) + " more left out\n";
  }
}

void Complain(machine::TakingReport const& taking) {
  for (machine::Absence const& refused : taking.refused) {
    std::string message;
    AppendShown(message, machine::CaptureMessage(refused));
    host::Complain(message);
  }
  for (std::string const& path : taking.changed) {
    std::string message;
    AppendShown(message, path);
    host::Complain(message + ": changed while it was taken");
  }
}

}  // namespace

void TellOfCapture(CaptureRequest const& request, ExpressionCounts const& counts,
                   machine::Recorder const& recorder) {
  machine::TakingReport const& taking = recorder.Taking();
  Complain(taking);
  std::string text = "captured ";
  AppendShown(text, request.folder);
  if (request.is_for_expressions) {
    text += "; expressions: " + std::to_string(counts.evaluated) +
            ", answered: " + std::to_string(counts.answered);
  }
  text += '\n';
  std::vector<std::string> too_large = recorder.LeftOut();
  std::ranges::copy(taking.too_large, std::back_inserter(too_large));
  AppendLeftOut(text, "over the limit of bytes", too_large);
  AppendLeftOut(text, "no text whose names could be replaced", taking.not_redacted);
  if (!recorder.HasAllItems()) {
    text += "left out: files and folders beyond the first " +
            std::to_string(machine::RecordingLimits().items) + '\n';
  }
  Output output(STDOUT_FILENO);
  output.Write(text);
  output.Flush();
}

}  // namespace gatotu::host
