#include "tests/evaluator/test_vocabulary.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <new>
#include <stdexcept>
#include <thread>
#include <type_traits>

#include "evaluator/plugin/type_name.h"

Ledger ledger;

inspector_string InspectorText(std::string_view text) {
  auto* const bytes = static_cast<unsigned char*>(Allocate_Inspector_Memory(text.size()));
  std::copy(text.begin(), text.end(), bytes);
  return {bytes, text.size()};
}

namespace {

// Iterates 1 to a limit, and notices items that are alive when the next one is asked for.
struct Counter : Pinned {
  ~Counter() {
    if (item_alive) ++ledger.misused;
  }
  integer at = 0;
  bool item_alive = false;
};

struct Thing : Pinned {
  static constexpr char const* kName = "thing";
  explicit Thing(integer number, Counter* iterator = nullptr) : number(number), iterator(iterator) {
    std::snprintf(label, sizeof label, "%d", static_cast<int>(number));
    if (iterator != nullptr) iterator->item_alive = true;
  }
  ~Thing() {
    if (iterator != nullptr) iterator->item_alive = false;
  }
  integer number;
  Counter* iterator;
  char label[8];
};
struct Book : Thing {
  static constexpr char const* kName = "book";
  using Thing::Thing;
};
struct Shelf : Thing {
  static constexpr char const* kName = "shelf";
  using Thing::Thing;
};
// Plain bytes: its grams.
struct Weight {
  static constexpr char const* kName = "weight";
  integer grams;
};
// Cannot be shown.
struct Stone {
  static constexpr char const* kName = "stone";
  integer size;
};

template <class T>
constexpr char const* TypeName() {
  if constexpr (std::is_void_v<T>) {
    return "";
  } else if constexpr (requires { T::kName; }) {
    return T::kName;
  } else {
    return InspectorTypeName<T>::kName;
  }
}

template <class T>
void Destroy(void const* value) {
  static_cast<T const*>(value)->~T();
}

template <class T>
T const* Seen(void const* value) {
  if constexpr (std::is_base_of_v<Thing, T>) static_cast<T const*>(value)->Check();
  return static_cast<T const*>(value);
}

std::string_view Text(inspector_string const& text) {
  return {reinterpret_cast<char const*>(text.start), text.length};
}

// Static, so that the evaluator finds the library they belong to.
Registration& Linked() {
  static std::array<Registration, 64> linked;
  static std::size_t used = 0;
  return linked.at(used++);
}

// A property of `Object` by a `Parameter` (void: of the world, by nothing): `Value(parameter,
// object)`.
template <class Parameter, class Object, auto Value>
void Plain(char const* singular, char const* plural, FingerprintFunction fingerprint = nullptr) {
  using Result = decltype(Value(Seen<Parameter>(nullptr), Seen<Object>(nullptr)));
  InspectorGet const get = [](void* result, void const* parameter, void const* object, void*,
                              void const*) {
    new (result) Result(Value(Seen<Parameter>(parameter), Seen<Object>(object)));
    return true;
  };
  Linked().Add(Register_Property, Unregister_Property, singular, plural, TypeName<Parameter>(),
               TypeName<Object>(), TypeName<Result>(), get, nullptr, fingerprint);
}

// `Limit(parameter, object)` values, made by `Make(n, counter, object)`.
template <class Parameter, class Object, auto Limit, auto Make>
void Iterated(char const* singular, char const* plural) {
  using Result = decltype(Make(integer(), std::declval<Counter*>(), Seen<Object>(nullptr)));
  InspectorGet const step = [](void* result, void const* parameter, void const* object, void* state,
                               void const*) {
    auto* const counter = static_cast<Counter*>(state);
    counter->Check();
    if (counter->item_alive) ++ledger.misused;
    if (counter->at >= Limit(Seen<Parameter>(parameter), Seen<Object>(object)))
      throw NoSuchObject();
    new (result) Result(Make(++counter->at, counter, Seen<Object>(object)));
    return true;
  };
  Linked().Add(
      Register_Iterated_Property, Unregister_Property, singular, plural, TypeName<Parameter>(),
      TypeName<Object>(), TypeName<Result>(), sizeof(Counter),
      [](void* state) { new (state) Counter; }, Destroy<Counter>, step, step, nullptr, nullptr);
}

template <class Source, auto Convert>
void Cast() {
  using Result = decltype(Convert(*Seen<Source>(nullptr)));
  Linked().Add(
      Register_Cast, Unregister_Cast, TypeName<Result>(), TypeName<Source>(), TypeName<Result>(),
      [](void* result, void const* source, void const*) {
        new (result) Result(Convert(*Seen<Source>(source)));
      },
      nullptr, nullptr);
}

template <class T, auto Apply>
void Operator(int code) {
  using Result = decltype(Apply(*Seen<T>(nullptr), *Seen<T>(nullptr)));
  Linked().Add(
      Register_Binary_Operator, Unregister_Binary_Operator, code, TypeName<T>(), TypeName<T>(),
      TypeName<Result>(),
      [](void* result, void const* left, void const* right, void const*) {
        new (result) Result(Apply(*Seen<T>(left), *Seen<T>(right)));
      },
      nullptr, nullptr);
}

void Type(char const* name, unsigned long size, InspectorDestroy destroy, char const* base,
          int fingerprinting = kNoFingerprinting) {
  Linked().Add(Register_Type, Unregister_Type, name, size, destroy, base, fingerprinting);
}

bool Fail(void* result, void const* parameter, void const*, void*, void const*) {
  integer const kind = *Seen<integer>(parameter);
  switch (kind) {
    case 0:
      throw NoSuchObject();
    case 1:
      throw OSError(-43);
    case 2:
      throw std::runtime_error("out of ink");
    case 3:
      throw 3;
    case 4:
      throw std::bad_alloc();
    case 5:
      ThrowRealOSError(kMemoryFullStatus);
    case 6:
      return false;
    default:
      new (result) integer(kind);
      return true;
  }
}

integer Swallow(void const*, void const*) try {
  while (true) {
    Check_For_Inspector_Interruption();
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  }
} catch (...) {
  throw NoSuchObject();
}

std::atomic<int> inside = 0;

bool Exclusive(void const*, void const*) {
  if (++inside != 1) ++ledger.misused;
  std::this_thread::sleep_for(std::chrono::microseconds(200));
  --inside;
  return true;
}

integer AsInteger(inspector_string const& text) {
  if (text.length == 0 || text.start[0] < '0' || text.start[0] > '9') throw NoSuchObject();
  return std::stoll(std::string(Text(text)));
}

bool Say(inspector_string const& text) {
  ledger.said += Text(text);
  return true;
}

inspector_string Label(void const*, Thing const* thing) {
  return {reinterpret_cast<unsigned char const*>(thing->label), std::strlen(thing->label)};
}

void OperatorsAndCasts() {
  using S = inspector_string;
  Operator<S, [](S a, S b) { return Text(a) == Text(b); }>(kOperatorEqual);
  Operator<S, [](S a, S b) { return Text(a) < Text(b); }>(kOperatorLess);
  Operator<S, [](S a, S b) { return InspectorText(std::string(Text(a)).append(Text(b))); }>(
      kOperatorJoin);
  Operator<S, [](S a, S b) { return Text(a).find(Text(b)) != std::string::npos; }>(
      kOperatorContains);
  Operator<S, [](S a, S b) { return Text(a).starts_with(Text(b)); }>(kOperatorStartsWith);

  using U = unsigned long;  // wraps: what overflows is none of the evaluator's business
  Operator<integer, [](U a, U b) { return a == b; }>(kOperatorEqual);
  Operator<integer, [](integer a, integer b) { return a < b; }>(kOperatorLess);
  Operator<integer, [](U a, U b) { return integer(a + b); }>(kOperatorAdd);
  Operator<integer, [](U a, U b) { return integer(a - b); }>(kOperatorSubtract);
  Operator<integer, [](U a, U b) { return integer(a * b); }>(kOperatorMultiply);

  Operator<Weight, [](Weight a, Weight b) { return a.grams < b.grams; }>(kOperatorLess);
  Operator<Weight, [](Weight a, Weight b) { return Weight{a.grams + b.grams}; }>(kOperatorAdd);

  Cast<integer, [](integer n) { return InspectorText(std::to_string(n)); }>();
  Cast<bool, [](bool is) { return InspectorText(is ? "true" : "false"); }>();
  Cast<Thing,
       [](Thing const& thing) { return InspectorText(std::string("thing ") + thing.label); }>();
  Cast<Weight, [](Weight weight) { return InspectorText(std::to_string(weight.grams) + " g"); }>();
  Cast<S, AsInteger>();
}

void WorldProperties() {
  using S = inspector_string;
  constexpr auto given = [](integer const* limit, auto*) { return *limit; };
  Iterated<void, void, [](auto...) { return 3; },
           [](integer n, Counter* counter, auto*) { return Shelf(n, counter); }>("shelf",
                                                                                 "shelves");
  Plain<integer, void, [](auto* number, auto*) {
    if (*number < 0 || 9 < *number) throw NoSuchObject();
    return Shelf(*number);
  }>("shelf", "shelves");
  Iterated<integer, void, given, [](integer n, auto...) { return n; }>("count", "counts");
  Iterated<integer, void, given, [](auto...) {
    static_cast<char*>(Allocate_Inspector_Memory(1 << 16))[1 << 15] = 'x';
    return InspectorText("bulk");
  }>("bulky", "bulkies");
  Plain<S, void, [](auto* text, auto*) { return Say(*text), InspectorText(Text(*text)); }>("say",
                                                                                           "says");
  Plain<S, void, [](auto* text, auto*) { return Say(*text); }>("yes", "yeses");
  Plain<S, void, [](auto* text, auto*) { return !Say(*text); }>("no", "noes");
  Linked().Property("fail", "fails", "integer", "integer", Fail);
  Plain<void, void, Swallow>("swallow", "swallows");
  Plain<void, void, Exclusive>("exclusive", "exclusives");
  Iterated<void, void, [](auto...) { return INT64_MAX; },
           [](integer n, auto...) {
             Check_For_Inspector_Interruption();
             return n;
           }>("endless", "endlesses");
  Linked().Add(
      Register_Iterated_Property, Unregister_Property, "unopened", "unopeneds", "", "", "integer",
      sizeof(Counter), [](void*) { throw NoSuchObject(); }, Destroy<Counter>,
      [](auto...) { return true; }, [](auto...) { return true; }, nullptr, nullptr);
  Plain<void, void, [](auto...) { return InspectorText("plain"); }>("twin", "twins");
  Iterated<void, void, [](auto...) { return 2; },
           [](integer n, auto...) { return InspectorText(n == 1 ? "a" : "b"); }>("twin", "twins");
  Plain<S, void, [](auto* text, auto*) {
    ++ledger.known_calls;
    if (text->length == 0) throw NoSuchObject();
    return InspectorText(Text(*text));
  }>("known", "knowns", DependsOnlyOnParameters);
  Plain<void, void, [](auto...) { return integer{7}; }>("build number", "build numbers");
  Linked().Property("ghost", "ghosts", "", "ghost", [](auto...) { return false; });
  Plain<void, void, [](auto...) { return Stone{1}; }>("stone", "stones");
  Plain<integer, void, [](auto* grams, auto*) { return Weight{*grams}; }>("weight", "weights");
}

void ObjectProperties() {
  Iterated<void, Shelf, [](auto*, auto* shelf) { return shelf->number; },
           [](integer n, Counter* counter, auto* shelf) {
             return Book(shelf->number * 10 + n, counter);
           }>("book", "books");
  Plain<integer, Shelf, [](auto* n, auto* shelf) { return Book(shelf->number * 10 + *n); }>(
      "book", "books");
  Plain<void, Shelf, [](auto...) { return InspectorText("overture"); }>("first title",
                                                                        "first titles");
  // Only the second shelf has a keeper, so that a plural skips the others.
  Plain<void, Shelf, [](auto*, auto* shelf) {
    return shelf->number == 2 ? InspectorText("Ann") : throw NoSuchObject();
  }>("keeper", nullptr);
  Plain<void, Thing, Label>("label", "labels");
  Plain<void, Book, Label>("title", "titles");
  Plain<void, Book, [](auto*, auto* book) { return book->number % 10 * 100; }>("page count",
                                                                               "page counts");
  Plain<void, Book, [](auto*, auto* book) { return Weight{book->number % 10}; }>("weight",
                                                                                 "weights");
}

// Properties come before their types, as static initialisation may have it.
struct Library {
  Library() {
    WorldProperties();
    ObjectProperties();
    OperatorsAndCasts();
    Type("book", sizeof(Book), Destroy<Book>, "thing");
    Type("shelf", sizeof(Shelf), Destroy<Shelf>, "");
    Type("thing", sizeof(Thing), Destroy<Thing>, "");
    Type("weight", sizeof(Weight), nullptr, "", kPlainBytes);
    Type("stone", sizeof(Stone), nullptr, nullptr);
    Linked().Add(
        Register_Cache, Unregister_Cache, [](Instant&, void*) { ++ledger.cache_clears; }, nullptr);
  }
} const library;

}  // namespace

std::string Shown(gatotu::Value const& value) {
  if (value.Type().kind != gatotu::ValueType::Kind::kTuple) return std::string(value.Text());
  std::string shown;
  for (auto const& member : value.Members()) {
    shown += (shown.empty() ? "(" : ", ") + Shown(member);
  }
  return shown + ")";
}

void ExpectLedgerBalances(std::string_view text) {
  EXPECT_EQ(ledger.living, 0) << text;
  EXPECT_EQ(ledger.misused, 0) << text;
  ledger.living = ledger.misused = 0;
}

std::string AnswerOf(gatotu::Expression const& expression, gatotu::EvaluateOptions const& options) {
  std::string answer;
  auto const evaluation = gatotu::Evaluate(
      expression,
      [&](gatotu::Value const& value) {
        if (!answer.empty()) answer += '|';
        answer += Shown(value);
        return true;
      },
      options);
  ExpectLedgerBalances(expression.Text());
  if (evaluation.IsAnswered()) return answer;
  return (expression.IsMany() ? answer : "") + "!" + evaluation.diagnostic.code;
}

std::string Answer(std::string_view text, gatotu::EvaluateOptions const& options) {
  auto const compilation = gatotu::Compile(text);
  if (compilation.expression != nullptr) return AnswerOf(*compilation.expression, options);
  std::string codes;
  for (auto const& diagnostic : compilation.diagnostics) codes += "?" + diagnostic.code;
  return codes;
}

std::string Repeat(std::string_view unit, std::size_t times) {
  std::string text;
  while (times-- > 0) text += unit;
  return text;
}
