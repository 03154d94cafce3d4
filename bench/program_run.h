// A program that is run for how long it takes.
#pragma once

#include <string>
#include <vector>

// Its path and arguments; its output goes nowhere. Whether it succeeded.
bool RunProgram(std::vector<std::string> words);
