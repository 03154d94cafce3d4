// What each shape registers, and the contract of its adapter.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "frame/prop.h"
#include "frame/registration.h"
#include "tests/support/recording_evaluator.h"

namespace {

struct Thing {
  std::int64_t number = 0;
  friend bool operator==(Thing, Thing) = default;
};
struct SpecialThing : Thing {};

// Counts those of its kind that stand.
struct Counted {
  explicit Counted(int& alive) : alive(alive) { ++alive; }
  Counted(Counted const&) = delete;
  ~Counted() { --alive; }
  int& alive;
};

}  // namespace

template <>
struct InspectorTypeName<Thing> {
  static constexpr char const* kName = "thing";
};
template <>
struct InspectorTypeName<SpecialThing> {
  static constexpr char const* kName = "special thing";
};
template <>
struct InspectorTypeName<Counted> {
  static constexpr char const* kName = "counted";
};

namespace {

int calls = 0;
bool fail_now = false;

integer Number() {
  ++calls;
  if (fail_now) throw std::runtime_error("broken");
  return 7;
}
integer NumberOf(Thing const& thing) { return thing.number + Number(); }
integer NumberOfProperty(Of, Thing const& thing) { return NumberOf(thing); }
integer LengthOf(unsigned char const* start, unsigned long length) {
  return start[0] + static_cast<integer>(length) + Number();
}
integer LengthIn(unsigned char const* start, unsigned long length, Thing const& thing) {
  return LengthOf(start, length) + thing.number;
}
integer LengthOfIndex(inspector_string const& name) { return LengthOf(name.start, name.length); }
integer Item(unsigned long long number) { return static_cast<integer>(number) + Number(); }
integer ItemIn(unsigned long long number, Thing const& thing) {
  return Item(number) + thing.number;
}
boolean Larger(Thing const& left, Thing const& right) {
  return left.number + Number() > right.number;
}
void Clear(Instant&, void*) {}

struct PlainNumbers {
  integer First() { return Number(); }
  integer Next() { return Number(); }
};
struct Numbers : PlainNumbers {
  using PlainNumbers::First;
  using PlainNumbers::Next;
  integer First(Thing const& thing) { return NumberOf(thing); }
  integer Next(Thing const& thing) { return NumberOf(thing); }
  integer First(unsigned char const* start, unsigned long length) {
    return LengthOf(start, length);
  }
  integer Next(unsigned char const* start, unsigned long length) { return LengthOf(start, length); }
  integer FirstNamed(inspector_string const& name) { return LengthOfIndex(name); }
};
template <class Shape, class... Arguments>
std::shared_ptr<void> Make(Arguments... arguments) {
  return std::make_shared<Shape>(arguments...);
}

struct ShapeCase {
  char const* name;
  std::shared_ptr<void> (*make)();
  char const* registers;
  std::optional<integer> answers;  // for the object 100 and the parameter "A" or 3
  char const* withdraws;
};

constexpr FingerprintFunction kDop = DependsOnlyOnParameters;

ShapeCase const kShapes[] = {
    {"Type",
     [] { return Make<Type<Thing>>(); },
     "Type 512 thing/ () of ((null)):  size 8",
     {},
     "Type"},
    {"PlainType",
     [] { return Make<Type<Thing, kPlainBytes>>(); },
     "Type 512 thing/ () of ((null)):  size 8 fingerprinting 1",
     {},
     "Type"},
    {"DerivedType",
     [] { return Make<DerivedType<SpecialThing, Thing>>(); },
     "Type 512 special thing/ () of (thing):  size 8",
     {},
     "Type"},
    {"GlobalProperty", [] { return Make<GlobalProperty<integer>>("x", "xs", Number, kDop); },
     "Property 128 x/xs () of (): integer self DOP", 7, "Property"},
    {"Property", [] { return Make<Property<Thing, integer>>("x", "xs", NumberOf, nullptr); },
     "Property 128 x/xs () of (thing): integer self", 107, "Property"},
    {"NamedGlobalProperty",
     [] { return Make<NamedGlobalProperty<integer>>("x", "xs", LengthOf, nullptr); },
     "Property 128 x/xs (string) of (): integer self", 'A' + 1 + 7, "Property"},
    {"NamedProperty", [] { return Make<NamedProperty<Thing, integer>>("x", "xs", LengthIn, kDop); },
     "Property 128 x/xs (string) of (thing): integer self DOP", 'A' + 1 + 107, "Property"},
    {"NumberedGlobalProperty",
     [] { return Make<NumberedGlobalProperty<integer>>("x", "xs", Item, nullptr); },
     "Property 128 x/xs (integer) of (): integer self", 10, "Property"},
    {"NumberedProperty",
     [] { return Make<NumberedProperty<Thing, integer>>("x", "xs", ItemIn, nullptr); },
     "Property 128 x/xs (integer) of (thing): integer self", 110, "Property"},
    {"IteratedGlobalProperty",
     [] { return Make<IteratedGlobalProperty<Numbers, integer>>("x", "xs", nullptr); },
     "Iterated_Property 128 x/xs () of (): integer size 1 self", 7, "Property"},
    {"IteratedProperty",
     [] { return Make<IteratedProperty<Numbers, Thing, integer>>("x", "xs", kDop); },
     "Iterated_Property 128 x/xs () of (thing): integer size 1 self DOP", 107, "Property"},
    {"IteratedNamedGlobalProperty",
     [] { return Make<IteratedNamedGlobalProperty<Numbers, integer>>("x", "xs", nullptr); },
     "Iterated_Property 128 x/xs (string) of (): integer size 1 self", 'A' + 1 + 7, "Property"},
    {"Cast", [] { return Make<Cast<Thing, integer>>("number", NumberOf, kDop); },
     "Cast 128 number/ () of (thing): integer self DOP", 107, "Cast"},
    {"Operator2",
     [] { return Make<Operator2<Thing, Thing, boolean>>(kOperatorLess, Larger, nullptr); },
     "Binary_Operator 128 7/ (thing) of (thing): boolean self",
     {},
     "Binary_Operator"},
    {"RelationEqual",
     [] { return Make<RelationEqual<Thing, Thing>>(nullptr); },
     "Binary_Operator 128 6/ (thing) of (thing): boolean self",
     {},
     "Binary_Operator"},
    {"Cache", [] { return Make<CacheRegistration>(Clear); }, "Cache 64 / () of (): ", {}, "Cache"},
    {"PropOfWorld", [] { return Make<Prop>("x", "xs", Number, kDop); },
     "Property 128 x/xs () of (): integer self DOP", 7, "Property"},
    {"PropOfObject", [] { return Make<Prop>("x", "xs", NumberOfProperty, nullptr); },
     "Property 128 x/xs () of (thing): integer self", 107, "Property"},
    {"PropByIndex", [] { return Make<Prop>("x", "xs", LengthOfIndex, nullptr); },
     "Property 128 x/xs (string) of (): integer self", 'A' + 1 + 7, "Property"},
    {"PropIterated",
     [] { return Make<Prop>("x", "xs", &PlainNumbers::First, &PlainNumbers::Next, nullptr); },
     "Iterated_Property 128 x/xs () of (): integer size 1 self", 7, "Property"},
    {"PropIteratedByIndex",
     [] { return Make<Prop>("x", "xs", &Numbers::FirstNamed, &Numbers::FirstNamed, kDop); },
     "Iterated_Property 128 x/xs (string) of (): integer size 1 self DOP", 'A' + 1 + 7, "Property"},
};

class Shapes : public testing::TestWithParam<ShapeCase> {
 protected:
  void SetUp() override {
    calls = 0;
    fail_now = false;
    shape_ = GetParam().make();
    registration_ = evaluator_.registered.back();
  }

  // Calls one adapter of the registration, `next` or the other.
  bool Call(InspectorGet adapter, void* result) {
    unsigned char const letter = 'A';
    inspector_string const name{&letter, 1};
    integer const number = 3;
    void const* const parameter = registration_.parameter == "integer"
                                      ? static_cast<void const*>(&number)
                                      : static_cast<void const*>(&name);
    Thing const object{100};
    if (registration_.cast != nullptr) {
      registration_.cast(result, &object, registration_.context);
      return true;
    }
    Numbers state;
    return adapter(result, parameter, &object, &state, registration_.context);
  }

  RecordingEvaluator& evaluator_ = RecordingEvaluator::Instance();
  std::shared_ptr<void> shape_;
  RecordedRegistration registration_;
};

class AnsweringShapes : public Shapes {};

TEST_P(Shapes, RegistersItselfAndWithdrawsOnce) {
  EXPECT_EQ(registration_.handle, shape_.get());
  EXPECT_EQ(registration_.Text(), GetParam().registers);
  std::size_t const withdrawn_before = evaluator_.withdrawn.size();
  void* const handle = shape_.get();
  shape_.reset();
  ASSERT_EQ(evaluator_.withdrawn.size(), withdrawn_before + 1);
  EXPECT_EQ(evaluator_.withdrawn.back(), std::pair(std::string(GetParam().withdraws), handle));
}

TEST_P(AnsweringShapes, ConstructsItsValueOrLetsTheExceptionPass) {
  for (InspectorGet const adapter : {registration_.get, registration_.next}) {
    if (adapter == nullptr && registration_.cast == nullptr) continue;
    RawStorage result(sizeof(integer));
    fail_now = false;
    EXPECT_TRUE(Call(adapter, result.Address()));
    EXPECT_EQ(*static_cast<integer*>(result.Address()), *GetParam().answers);
    fail_now = true;
    EXPECT_THROW(Call(adapter, result.Address()), std::runtime_error);
  }
}

TEST_P(AnsweringShapes, ANullResultCallsNothing) {
  EXPECT_TRUE(Call(registration_.get, nullptr));
  if (registration_.next != nullptr) {
    EXPECT_TRUE(Call(registration_.next, nullptr));
  }
  EXPECT_EQ(calls, 0);
}

std::vector<ShapeCase> ShapesWithAnswers() {
  std::vector<ShapeCase> answering;
  for (ShapeCase const& shape : kShapes) {
    if (shape.answers) answering.push_back(shape);
  }
  return answering;
}

std::string NameOf(testing::TestParamInfo<ShapeCase> const& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(All, Shapes, testing::ValuesIn(kShapes), NameOf);
INSTANTIATE_TEST_SUITE_P(All, AnsweringShapes, testing::ValuesIn(ShapesWithAnswers()), NameOf);

TEST(NumberedShapes, RefuseNegativeNumbersBeforeAnythingElse) {
  NumberedGlobalProperty<integer> global("x", "xs", Item, nullptr);
  NumberedProperty<Thing, integer> of_thing("x", "xs", ItemIn, nullptr);
  Thing const object;
  calls = 0;
  for (void const* handle : {static_cast<void*>(&global), static_cast<void*>(&of_thing)}) {
    auto const registration = *RecordingEvaluator::Instance().Find(handle);
    for (integer const number : {integer{-1}, INT64_MIN}) {
      integer result = 42;
      EXPECT_FALSE(registration.get(&result, &number, &object, nullptr, handle));
      EXPECT_FALSE(registration.get(nullptr, &number, &object, nullptr, handle));
      EXPECT_EQ(result, 42);
    }
  }
  EXPECT_EQ(calls, 0);
}

TEST(Operators, StoreOneByteAndNothingWithoutAResult) {
  fail_now = false;
  RelationEqual<Thing, Thing> equal(nullptr);
  Operator2<Thing, Thing, boolean> less(kOperatorLess, Larger, nullptr);
  auto const registered = RecordingEvaluator::Instance().registered;
  RecordedRegistration const& equality = *(registered.end() - 2);
  RecordedRegistration const& order = registered.back();
  Thing const one{1}, two{2};
  unsigned char bytes[2] = {0xA5, 0xA5};
  equality.apply(bytes, &one, &two, &equal);
  EXPECT_THAT(bytes, testing::ElementsAre(0, 0xA5));
  equality.apply(bytes, &two, &two, &equal);
  EXPECT_THAT(bytes, testing::ElementsAre(1, 0xA5));
  order.apply(bytes + 1, &one, &two, &less);
  EXPECT_EQ(bytes[1], 1);  // 1 + 7 > 2
  calls = 0;
  order.apply(nullptr, &one, &two, &less);
  EXPECT_EQ(calls, 0);
}

int alive = 0;
Counted MakeCounted() { return Counted(alive); }

TEST(Types, ValuesAreBuiltInPlaceAndDestroyedByTheirCallback) {
  Type<Counted> type;
  InspectorDestroy const destroy = RecordingEvaluator::Instance().registered.back().destroy;
  GlobalProperty<Counted> property("x", "xs", MakeCounted, nullptr);
  RawStorage value(sizeof(Counted));
  auto const get = RecordingEvaluator::Instance().registered.back().get;
  ASSERT_TRUE(get(value.Address(), nullptr, nullptr, nullptr, &property));
  EXPECT_EQ(alive, 1);
  destroy(value.Address());
  EXPECT_EQ(alive, 0);
}

}  // namespace
