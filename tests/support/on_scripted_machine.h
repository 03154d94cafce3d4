// Tests on a machine of which nothing is known but what the test says.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/scripted_machine.h"

class OnScriptedMachine : public testing::Test {
 protected:
  std::shared_ptr<ScriptedMachine> machine_ = std::make_shared<ScriptedMachine>();
  MachineInUse use_{machine_};
};
