// What the user asked of the command, read from its arguments.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "host/answer_writer.h"
#include "host/asker.h"
#include "host/capture_request.h"
#include "host/exit_status.h"
#include "host/several_machines.h"
#include "host/vocabulary_command.h"

namespace gatotu::host {

struct CommandLine {
  enum class Command { kAsk, kVocabulary, kCapture };

  Command command = Command::kAsk;
  std::string machine = "live";  // the one that is asked
  SeveralMachines several;
  std::string user;  // whose "~" a capture means; empty for the one it names
  Format format = Format::kText;
  std::vector<std::string> settings;  // SECTION:NAME=VALUE
  std::vector<std::string> plug_ins;  // files
  AskOptions ask;
  std::vector<std::string> expressions;  // to answer, or to capture for
  std::string file;                      // of expressions; empty for none, "-" for standard input
  VocabularyQuery vocabulary;
  CaptureRequest capture;
};

// Nothing more to do: what to print, and how to end.
struct Farewell {
  std::string text;
  ExitStatus status = ExitStatus::kAnswered;  // beyond this, `text` is a complaint
};

std::variant<CommandLine, Farewell> ReadCommandLine(int argc, char const* const* argv);

}  // namespace gatotu::host
