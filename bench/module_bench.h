// Benchmarks of expressions about the machine. The program's `main` loads the vocabulary first.
#pragma once

#include <benchmark/benchmark.h>

// Evaluates a compiled expression once an iteration and shows every value to the optimizer.
void EvaluateExpression(benchmark::State& state, char const* expression);
