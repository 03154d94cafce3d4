// A small vocabulary of shelves and books for the evaluator's tests, as awkward as the plug-in
// interface allows: values notice being moved, iterators notice an item that outlives its turn,
// and every way to fail has a property. The linked registrations last as long as the program.
//
//   world     shelf/shelves (1 to 3), shelf N (0 to 9), count/counts N, say "s", yes "s", no "s",
//             fail N, endless, swallow, bulky/bulkies N, twin/twins, known "s", build number,
//             ghost, stone, weight N, exclusive
//   shelf     book/books (N of shelf N, numbered from 10 * N), book N, first title, keeper
//   thing     label, itself's base: a book is a thing
//   book      title, page count, weight
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "evaluator/evaluator.h"
#include "evaluator/plugin/entry_points.h"
#include "evaluator/plugin/exceptions.h"

// What the inspectors noticed. Tests may reset the counters, except for the living ones.
struct Ledger {
  int living = 0;       // values and iterators constructed and not destroyed
  int misused = 0;      // values moved or used dead, items alive at the wrong time
  std::string said;     // the parameters of `say`, `yes` and `no`, in the order of the calls
  int known_calls = 0;  // of `known`, which depends on its parameter alone
  int cache_clears = 0;
};
extern Ledger ledger;

// Something that must stay where it was constructed and be destroyed once.
class Pinned {
 public:
  Pinned() : self_(this) { ++ledger.living; }
  ~Pinned() {
    Check();
    self_ = nullptr;
    --ledger.living;
  }
  Pinned(Pinned const&) = delete;
  Pinned& operator=(Pinned const&) = delete;
  void Check() const {
    if (self_ != this) ++ledger.misused;
  }

 private:
  Pinned const* self_;
};

// One registration, withdrawn by the destructor.
class Registration {
 public:
  Registration() = default;
  ~Registration() { Withdraw(); }
  Registration(Registration const&) = delete;
  Registration& operator=(Registration const&) = delete;

  // Calls an entry point with the block and the rest, and remembers the one that withdraws.
  template <class Register, class... Rest>
  bool Add(Register add, bool (*withdraw)(void*), Rest... rest) {
    bool const is_added = add(block_, sizeof block_, rest...);
    if (is_added) withdraw_ = withdraw;
    return is_added;
  }
  bool Property(char const* singular, char const* plural, char const* parameter, char const* result,
                InspectorGet get) {
    return Add(Register_Property, Unregister_Property, singular, plural, parameter, "", result, get,
               nullptr, nullptr);
  }
  bool Withdraw() {
    auto* const withdraw = std::exchange(withdraw_, nullptr);
    return withdraw != nullptr && withdraw(block_);
  }

 private:
  alignas(std::max_align_t) unsigned char block_[512];
  bool (*withdraw_)(void*) = nullptr;
};

inspector_string InspectorText(std::string_view text);

// The answer to `text`, and a test failure when a value or an iterator was misused or left over.
// Values are joined by "|", tuples are in parentheses; a failed evaluation adds "!" and its code
// (and gives no values where exactly one was asked for), refused text is "?" and the codes.
std::string Answer(std::string_view text, gatotu::EvaluateOptions const& options = {});
std::string AnswerOf(gatotu::Expression const& expression,
                     gatotu::EvaluateOptions const& options = {});
std::string Shown(gatotu::Value const& value);
void ExpectLedgerBalances(std::string_view text);

// A callback that wants every value and looks at none.
inline bool Ignore(gatotu::Value const&) { return true; }

// `unit` so many times over.
std::string Repeat(std::string_view unit, std::size_t times);
