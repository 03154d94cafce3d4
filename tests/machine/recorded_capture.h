// Captures as tests write and open them.
#pragma once

#include <CoreFoundation/recorded_facts.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "machine/capture/capture.h"
#include "machine/capture/recorder.h"
#include "tests/machine/recorded_tree.h"

using SharedMachine = std::shared_ptr<machine::Machine const>;

// Null, and a failure, where it cannot be opened.
inline SharedMachine OpenedCapture(std::string const& folder, std::string const& user = {}) {
  auto const capture = machine::OpenCapture(folder, {user}, ReadRecordedFacts);
  EXPECT_TRUE(capture) << machine::CaptureMessage(capture.absence());
  return capture ? *capture : nullptr;
}

// The capture of a tree whose document has these entries.
inline SharedMachine Documented(RecordedTree const& tree, std::string const& entries) {
  tree.Write("/machine.plist", "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
  return OpenedCapture(tree.At(""));
}

// What a recorder has, written to a folder and opened there.
inline SharedMachine Recorded(machine::Recorder const& recorder, std::string const& folder) {
  EXPECT_TRUE(recorder.Write(folder, WriteRecordedFacts));
  return OpenedCapture(folder);
}

// All of a machine, recorded below a folder.
inline SharedMachine RecordedWhole(SharedMachine const& machine, std::string const& folder) {
  machine::Recorder recorder(machine);
  recorder.RecordEverything();
  return Recorded(recorder, folder);
}
