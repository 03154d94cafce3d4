// Iterations as an evaluator drives them.
#include <gmock/gmock.h>

#include <stdexcept>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "frame/prop.h"
#include "frame/registration.h"
#include "tests/support/recording_evaluator.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

int constructed = 0;
int destroyed = 0;
int length = 0;      // of the next sequence
int broken_at = -1;  // the element that fails

// Counts down from its start: 10, 9, 8, ...
class Countdown {
 public:
  Countdown() { ++constructed; }
  Countdown(Countdown const&) = delete;
  virtual ~Countdown() { ++destroyed; }

  integer First() {
    index_ = 0;
    return Next();
  }
  virtual integer Next() {
    if (index_ == length) throw NoSuchObject();
    return Element();
  }
  integer Named(inspector_string const& name) { return Element() + 100 * name.start[0]; }

  void Start() { started_ = 1000; }
  bool AtEnd() { return index_ == length; }

 protected:
  integer Element() {
    if (index_ == broken_at) throw std::runtime_error("broken");
    return started_ + 10 - index_++;
  }

 private:
  int index_ = 0;
  int started_ = 0;
};

// Overrides a member that is reached through a pointer to the base's.
class NegativeCountdown : public Countdown {
 public:
  integer Next() override { return -Countdown::Next(); }
};

constexpr integer kBroken = -999;

// At most `limit` elements, then an early stop; `kBroken` last where one failed.
template <class I = Countdown>
std::vector<integer> Drive(void const* handle, int limit = 100) {
  auto const registration = *RecordingEvaluator::Instance().Find(handle);
  unsigned char const parameter_byte = 1;
  inspector_string const parameter{&parameter_byte, 1};
  RawStorage state(sizeof(I));
  std::vector<integer> elements;
  IteratorBasics<I>::Construct(state.Address());
  try {
    InspectorGet step = registration.get;
    integer element = 0;
    while (limit-- > 0 && step(&element, &parameter, nullptr, state.Address(), handle)) {
      elements.push_back(element);
      step = registration.next;
    }
  } catch (NoSuchObject const&) {
  } catch (std::runtime_error const&) {
    elements.push_back(kBroken);
  }
  IteratorBasics<I>::Destroy(state.Address());
  return elements;
}

class Iteration : public testing::Test {
 protected:
  void SetUp() override {
    RecordingEvaluator::Instance().registered.clear();
    constructed = destroyed = 0;
    length = 3;
    broken_at = -1;
  }
  void TearDown() override {
    EXPECT_GT(constructed, 0);
    EXPECT_EQ(constructed, destroyed);
  }
};

TEST_F(Iteration, EndsOnceAtTheEndOnAnErrorAndOnAnEarlyStop) {
  static IteratedGlobalProperty<Countdown, integer> countdown("x", "xs", nullptr);
  EXPECT_THAT(Drive(&countdown), ElementsAre(10, 9, 8));
  EXPECT_THAT(Drive(&countdown, 2), ElementsAre(10, 9));
  broken_at = 1;
  EXPECT_THAT(Drive(&countdown), ElementsAre(10, kBroken));
  length = 0;
  EXPECT_THAT(Drive(&countdown), IsEmpty());
  IteratorBasics<Countdown>::Construct(nullptr);
  EXPECT_EQ(constructed, 4);
}

TEST_F(Iteration, MembersStartIfAskedAndEndBySayingSoOrByTheirEndTest) {
  Prop plain("x", "xs", &Countdown::First, &Countdown::Next, nullptr);
  Prop tested("x", "xs", &Countdown::First, &Countdown::Next, nullptr, nullptr, &Countdown::AtEnd);
  Prop started("x", "xs", &Countdown::First, &Countdown::Next, nullptr, &Countdown::Start);
  Prop named("x", "xs", &Countdown::Named, &Countdown::Named, nullptr, &Countdown::Start,
             &Countdown::AtEnd);
  EXPECT_THAT(Drive(&plain), ElementsAre(10, 9, 8));
  EXPECT_THAT(Drive<NegativeCountdown>(&plain), ElementsAre(-10, -9, -8)) << "virtual members";
  EXPECT_THAT(Drive(&tested), ElementsAre(10, 9, 8));
  EXPECT_THAT(Drive(&started), ElementsAre(1010, 1009, 1008));
  EXPECT_THAT(Drive(&named), ElementsAre(1110, 1109, 1108));
  length = 0;
  EXPECT_THAT(Drive(&tested), IsEmpty());
}

TEST_F(Iteration, AnEndTestIsAskedEvenWithoutAResult) {
  Prop countdown("x", "xs", &Countdown::First, &Countdown::Next, nullptr, nullptr,
                 &Countdown::AtEnd);
  auto const registration = *RecordingEvaluator::Instance().Find(&countdown);
  Countdown state;
  EXPECT_TRUE(registration.get(nullptr, nullptr, nullptr, &state, &countdown));
  EXPECT_TRUE(registration.next(nullptr, nullptr, nullptr, &state, &countdown));
  length = 0;
  integer untouched = 42;
  EXPECT_FALSE(registration.get(nullptr, nullptr, nullptr, &state, &countdown));
  EXPECT_FALSE(registration.next(&untouched, nullptr, nullptr, &state, &countdown));
  EXPECT_EQ(untouched, 42);
}

}  // namespace
