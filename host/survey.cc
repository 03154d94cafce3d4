#include "host/survey.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include "host/conversation.h"
#include "host/machine_choice.h"
#include "machine/capture/capture.h"

namespace gatotu::host {
namespace {

// Machines whose answers may wait for one before them.
constexpr std::size_t kWindow = kMostJobs;

// What a worker takes beyond the limit of its evaluations, on a busy machine too.
constexpr std::chrono::seconds kGrace{2};

// A worker ends its evaluations by itself. This is for one that cannot: it is stopped, say.
MachineWorker::Clock::duration LongestSilence(CommandLine const& line) {
  constexpr double kNobodyWaitsLonger = 1e8;
  if (line.ask.time_limit.count() == 0) return {};
  double const each = std::chrono::duration<double>(line.ask.time_limit + kGrace).count();
  double const all = each * static_cast<double>(line.expressions.size() + 1);
  return std::chrono::duration_cast<MachineWorker::Clock::duration>(
      std::chrono::duration<double>(std::min(all, kNobodyWaitsLonger)));
}

ExitStatus SayUnusable(Format format, std::string const& machine, std::string const& message) {
  if (format != Format::kJson) {
    Complain(message);
    return ExitStatus::kUnusable;
  }
  Output answers(STDOUT_FILENO);
  answers.Write(JsonLineOf(MachineFailure{machine, "unusable-machine", message}));
  answers.Flush();
  return ExitStatus::kUnusable;
}

}  // namespace

Survey::Survey(CommandLine const& line, bool names_expression, MachineList machines)
    : line_(line),
      names_expression_(names_expression),
      machines_(std::move(machines)),
      answers_(STDOUT_FILENO, interruption_),
      messages_(STDERR_FILENO, interruption_),
      longest_silence_(LongestSilence(line)) {}

ExitStatus Survey::Hold() {
  for (;;) {
    PassOn();
    StartWorkers();
    if (turns_.empty() && !has_more_) break;
    // Where no worker could be started there is something to say at once.
    if (turns_.empty() || turns_.front()->IsRunning()) Wait();
    if (answers_.IsBroken() || interruption_.IsOver()) break;
    if (interruption_.HasCome()) Interrupt();
    Collect();
  }
  // Those that still run end here.
  turns_.clear();
  return End();
}

void Survey::StartWorkers() {
  is_list_late_ = false;
  while (has_more_ && !is_list_late_ && turns_.size() < kWindow && Running() < line_.several.jobs) {
    if (!StartNext()) return;
  }
}

// False when it is to be tried again later.
bool Survey::StartNext() {
  std::string name;
  if (next_ == nullptr) {
    auto const result = machines_.Next(name);
    has_more_ = result != MachineList::Result::kEnd;
    is_list_late_ = result == MachineList::Result::kLater;
    if (result != MachineList::Result::kMachine) return false;
    next_ = std::make_unique<MachineTurn>(std::move(name), line_.format);
  }
  auto const ask = [this] { return Ask(next_->Machine()); };
  if (!next_->Start(ask, interruption_.SignalsBefore())) {
    // There will be room for one more process when others have ended.
    if (Running() > 0) return false;
    next_->Fail(errno);
  }
  turns_.push_back(std::move(next_));
  return true;
}

std::size_t Survey::Running() const {
  return static_cast<std::size_t>(std::count_if(
      turns_.begin(), turns_.end(), [](auto const& turn) { return turn->IsRunning(); }));
}

// In the worker. What the inspectors open is not to lack the files that others are read from.
ExitStatus Survey::Ask(std::string const& machine) {
  for (auto const& turn : turns_) turn->Disown();
  turns_.clear();
  if (machine.find('\0') != std::string::npos) {
    return SayUnusable(line_.format, machine, machine + ": no name has a zero byte");
  }
  auto opened = OpenMachine(machine, line_.user);
  if (!opened) {
    return SayUnusable(line_.format, machine, machine::CaptureMessage(opened.absence()));
  }
  machine::SetCurrentMachine(std::move(opened).value());
  return Converse(line_, {machine, names_expression_});
}

bool Survey::IsReadFrom(MachineTurn const& turn) const {
  return turn.IsRunning() && (&turn == turns_.front().get() || !turn.IsFull());
}

void Survey::Wait() {
  std::vector<pollfd> polled = {{interruption_.Descriptor(), POLLIN, 0},
                                {answers_.Descriptor(), 0, 0}};
  if (is_list_late_) polled.push_back({machines_.Descriptor(), POLLIN, 0});
  for (auto const& turn : turns_) {
    if (!IsReadFrom(*turn)) continue;
    polled.push_back({turn->Worker().Answers(), POLLIN, 0});
    polled.push_back({turn->Worker().Messages(), POLLIN, 0});
  }
  if (::poll(polled.data(), polled.size(), WaitMilliseconds()) < 0) return;
  if (polled[0].revents != 0) interruption_.Look();
  // Else it would be noticed by the next answer only, and that may take its time.
  if ((polled[1].revents & POLLERR) != 0) answers_.NoteReaderIsGone();
}

int Survey::WaitMilliseconds() const {
  if (interruption_.HasCome()) return 100;
  return longest_silence_.count() > 0 && Running() > 0 ? 1000 : -1;
}

void Survey::Collect() {
  for (auto const& turn : turns_) {
    if (!IsReadFrom(*turn)) continue;
    turn->Collect();
    if (messages_.IsBroken()) turn->DropMessages();
    if (turn->IsRunning() && longest_silence_.count() > 0) turn->EndIfSilent(longest_silence_);
  }
}

// The one whose turn it is may finish what it says; nobody hears of the others.
void Survey::Interrupt() {
  has_more_ = false;
  next_.reset();
  if (turns_.size() > 1) turns_.resize(1);
  if (!turns_.empty() && !std::exchange(is_interrupted_, true)) turns_.front()->Interrupt();
}

void Survey::PassOn() {
  while (!turns_.empty() && !answers_.IsBroken()) {
    MachineTurn& turn = *turns_.front();
    turn.PassOn(answers_, messages_);
    if (turn.IsRunning()) return;
    status_ = Worse(status_, turn.Status());
    turns_.pop_front();
  }
}

ExitStatus Survey::End() {
  if (machines_.Failure()) {
    Complain(*machines_.Failure());
    status_ = Worse(status_, ExitStatus::kRefused);
  }
  if (interruption_.HasCome()) {
    Complain("interrupted");
    return Worse(status_, ExitStatus::kInterrupted);
  }
  return Worse(status_, EndOfAnswers(answers_.Error()));
}

}  // namespace gatotu::host
