// Tests on a tree, empty at first, and the machine that has it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/machine/recorded_tree.h"

class OnRecordedTree : public testing::Test {
 protected:
  RecordedTree tree;
  std::shared_ptr<machine::Machine const> const machine = tree.Machine();
};
