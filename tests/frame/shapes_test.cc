// What each shape registers, and the contract of its adapter.
#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "evaluator/plugin/exceptions.h"
#include "frame/prop.h"
#include "frame/registration.h"
#include "tests/support/recording_evaluator.h"

namespace {

struct Thing {
  std::int64_t number = 0;
  friend bool operator==(Thing, Thing) = default;
};

int alive = 0;

// Counts those of its kind that stand.
struct SpecialThing : Thing {
  SpecialThing() { ++alive; }
  SpecialThing(SpecialThing const&) = delete;
  ~SpecialThing() { --alive; }
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
integer ItemIn(unsigned long long number, Thing const& in) { return Item(number) + in.number; }
boolean Larger(Thing const& a, Thing const& b) { return a.number + Number() > b.number; }
void Clear(Instant&, void*) {}

struct PlainNumbers {
  integer First() { return Number(); }
  integer Next() { return Number(); }
};
struct Numbers {
  integer First() { return Number(); }
  integer Next() { return Number(); }
  integer First(Thing const& thing) { return NumberOf(thing); }
  integer Next(Thing const& thing) { return NumberOf(thing); }
  integer First(unsigned char const* start, unsigned long size) { return LengthOf(start, size); }
  integer Next(unsigned char const* start, unsigned long size) { return LengthOf(start, size); }
  integer FirstNamed(inspector_string const& name) { return LengthOfIndex(name); }
};
constexpr FingerprintFunction kDop = DependsOnlyOnParameters;
constexpr integer kNoAnswer = -1;
constexpr integer kA = 'A';

// Calls an adapter with the object 100 and the parameter "A" or 3.
bool Call(RecordedRegistration const& registration, InspectorGet adapter, void* result) {
  unsigned char const letter = 'A';
  inspector_string const name{&letter, 1};
  integer const number = 3;
  bool const is_numbered = registration.parameter == "integer";
  void const* const parameter = is_numbered ? static_cast<void const*>(&number) : &name;
  Thing const object{100};
  Numbers state;
  if (adapter != nullptr) return adapter(result, parameter, &object, &state, registration.context);
  registration.cast(result, &object, registration.context);
  return true;
}

// The adapter constructs the answer, lets an exception pass, and calls nothing without a result.
void ExpectAnswer(RecordedRegistration const& registration, InspectorGet adapter, integer answer) {
  RawStorage result(sizeof(integer));
  EXPECT_TRUE(Call(registration, adapter, result.Address()));
  EXPECT_EQ(*static_cast<integer*>(result.Address()), answer);
  fail_now = true;
  EXPECT_THROW(Call(registration, adapter, result.Address()), std::runtime_error);
  EXPECT_TRUE(Call(registration, adapter, nullptr));
  fail_now = false;
}

// What a shape hands to the evaluator, what its adapters answer, and that it withdraws itself.
template <class Shape>
void Expect(std::string const& registers, integer answer, auto... arguments) {
  SCOPED_TRACE(registers);
  auto& evaluator = RecordingEvaluator::Instance();
  auto shape = std::make_unique<Shape>(arguments...);
  RecordedRegistration const registration = evaluator.registered.back();
  EXPECT_EQ(registration.handle, shape.get());
  EXPECT_EQ(registration.Text(), registers);
  if (answer != kNoAnswer) ExpectAnswer(registration, registration.get, answer);
  if (registration.next != nullptr) ExpectAnswer(registration, registration.next, answer);

  evaluator.withdrawn.clear();
  shape.reset();
  std::string const call =
      registration.call == "Iterated_Property" ? "Property" : registration.call;
  EXPECT_THAT(evaluator.withdrawn, testing::ElementsAre(testing::Pair(call, registration.handle)));
}

// A property's names, the rest of its arguments, and on what it depends.
template <class Shape>
void ExpectProperty(std::string const& types, integer answer, auto... arguments) {
  Expect<Shape>("Property 128 x/xs " + types + ": integer self DOP", answer, "x", "xs",
                arguments..., kDop);
}
template <class Shape>
void ExpectIterated(std::string const& types, integer answer, auto... arguments) {
  Expect<Shape>("Iterated_Property 128 x/xs " + types + ": integer size 1 self DOP", answer, "x",
                "xs", arguments..., kDop);
}

TEST(Shapes, OfTypesCastsOperatorsAndCaches) {
  Expect<Type<Thing>>("Type 512 thing/ () of ((null)):  size 8", kNoAnswer);
  Expect<Type<Thing, kPlainBytes>>("Type 512 thing/ () of ((null)):  size 8 fingerprinting 1",
                                   kNoAnswer);
  Expect<DerivedType<SpecialThing, Thing>>("Type 512 special thing/ () of (thing):  size 8",
                                           kNoAnswer);
  Expect<Cast<Thing, integer>>("Cast 128 number/ () of (thing): integer self DOP", 107, "number",
                               NumberOf, kDop);
  Expect<Operator2<Thing, Thing, boolean>>(
      "Binary_Operator 128 7/ (thing) of (thing): boolean self", kNoAnswer, kOperatorLess, Larger,
      nullptr);
  Expect<RelationEqual<Thing, Thing>>("Binary_Operator 128 6/ (thing) of (thing): boolean self",
                                      kNoAnswer, nullptr);
  Expect<CacheRegistration>("Cache 64 / () of (): ", kNoAnswer, Clear);
}

TEST(Shapes, OfProperties) {
  ExpectProperty<GlobalProperty<integer>>("() of ()", 7, Number);
  ExpectProperty<Property<Thing, integer>>("() of (thing)", 107, NumberOf);
  ExpectProperty<NamedGlobalProperty<integer>>("(string) of ()", kA + 8, LengthOf);
  ExpectProperty<NamedProperty<Thing, integer>>("(string) of (thing)", kA + 108, LengthIn);
  ExpectProperty<NumberedGlobalProperty<integer>>("(integer) of ()", 10, Item);
  ExpectProperty<NumberedProperty<Thing, integer>>("(integer) of (thing)", 110, ItemIn);
  ExpectIterated<IteratedGlobalProperty<Numbers, integer>>("() of ()", 7);
  ExpectIterated<IteratedProperty<Numbers, Thing, integer>>("() of (thing)", 107);
  ExpectIterated<IteratedNamedGlobalProperty<Numbers, integer>>("(string) of ()", kA + 8);
  Expect<Property<Thing, integer>>("Property 128 x/xs () of (thing): integer self", 107, "x", "xs",
                                   NumberOf, nullptr);
}

TEST(Shapes, ThatPropPicks) {
  ExpectProperty<Prop>("() of ()", 7, Number);
  ExpectProperty<Prop>("() of (thing)", 107, NumberOfProperty);
  ExpectProperty<Prop>("(string) of ()", kA + 8, LengthOfIndex);
  ExpectIterated<Prop>("() of ()", 7, &PlainNumbers::First, &PlainNumbers::Next);
  ExpectIterated<Prop>("(string) of ()", kA + 8, &Numbers::FirstNamed, &Numbers::FirstNamed);
  Expect<Prop>("Property 128 x/xs () of (): integer self", 7, "x", "xs", Number, nullptr);
}

TEST(Shapes, NumberedOnesRefuseNegativeNumbersBeforeAnythingElse) {
  NumberedGlobalProperty<integer> global("x", "xs", Item, nullptr);
  NumberedProperty<Thing, integer> of_thing("x", "xs", ItemIn, nullptr);
  Thing const object;
  calls = 0;
  for (void const* handle : {static_cast<void*>(&global), static_cast<void*>(&of_thing)}) {
    InspectorGet const get = RecordingEvaluator::Instance().Find(handle)->get;
    for (integer const number : {integer{-1}, INT64_MIN}) {
      integer result = 42;
      EXPECT_FALSE(get(&result, &number, &object, nullptr, handle));
      EXPECT_FALSE(get(nullptr, &number, &object, nullptr, handle));
      EXPECT_EQ(result, 42);
    }
  }
  EXPECT_EQ(calls, 0);
}

TEST(Shapes, OperatorsStoreOneByteAndNothingWithoutAResult) {
  RelationEqual<Thing, Thing> equal(nullptr);
  InspectorOperator const apply = RecordingEvaluator::Instance().registered.back().apply;
  Thing const one{1}, two{2};
  unsigned char bytes[2] = {0xA5, 0xA5};
  apply(bytes, &one, &two, &equal);
  EXPECT_THAT(bytes, testing::ElementsAre(0, 0xA5));
  apply(bytes, &two, &two, &equal);
  EXPECT_THAT(bytes, testing::ElementsAre(1, 0xA5));
  apply(nullptr, nullptr, nullptr, &equal);
}

TEST(Shapes, ValuesOfATypeAreBuiltInPlaceAndDestroyedByTheirCallback) {
  DerivedType<SpecialThing, Thing> type;
  InspectorDestroy const destroy = RecordingEvaluator::Instance().registered.back().destroy;
  GlobalProperty<SpecialThing> property(
      "x", "xs", +[] { return SpecialThing(); }, nullptr);
  RawStorage value(sizeof(SpecialThing));
  auto const get = RecordingEvaluator::Instance().registered.back().get;
  ASSERT_TRUE(get(value.Address(), nullptr, nullptr, nullptr, &property));
  EXPECT_EQ(alive, 1);
  destroy(value.Address());
  EXPECT_EQ(alive, 0);
}

}  // namespace
