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
inspector_string Copy(inspector_string const& text) { return InspectorText(Text(text)); }

// Static, so that the evaluator finds the library they belong to.
Registration& Linked() {
  static std::array<Registration, 64> linked;
  static std::size_t used = 0;
  return linked.at(used++);
}

// A property of `Object` by a `Parameter` (void: of the world, by nothing): `Value(parameter,
// object)`. What computes it is a lambda that holds nothing.
template <class Parameter, class Object, class Value>
void Plain(char const* singular, char const* plural, Value,
           FingerprintFunction fingerprint = nullptr) {
  using Result = decltype(Value()(Seen<Parameter>(nullptr), Seen<Object>(nullptr)));
  InspectorGet const get = [](void* result, void const* parameter, void const* object, auto...) {
    new (result) Result(Value()(Seen<Parameter>(parameter), Seen<Object>(object)));
    return true;
  };
  Linked().Add(Register_Property, Unregister_Property, singular, plural, TypeName<Parameter>(),
               TypeName<Object>(), TypeName<Result>(), get, nullptr, fingerprint);
}

// `Limit(parameter, object)` values, made by `Make(n, counter, object)`.
template <class Parameter, class Object, class Limit, class Make>
void Iterated(char const* singular, char const* plural, Limit, Make) {
  using Result = decltype(Make()(integer(), std::declval<Counter*>(), Seen<Object>(nullptr)));
  InspectorGet const step = [](void* result, void const* parameter, void const* object, void* state,
                               void const*) {
    auto* const counter = static_cast<Counter*>(state);
    counter->Check();
    if (counter->item_alive) ++ledger.misused;
    if (counter->at >= Limit()(Seen<Parameter>(parameter), Seen<Object>(object)))
      throw NoSuchObject();
    new (result) Result(Make()(++counter->at, counter, Seen<Object>(object)));
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
  if (kind == 0) throw NoSuchObject();
  if (kind == 1) throw OSError(-43);
  if (kind == 2) throw std::runtime_error("out of ink");
  if (kind == 3) throw 3;
  if (kind == 4) throw std::bad_alloc();
  if (kind == 5) ThrowRealOSError(kMemoryFullStatus);
  if (kind == 6) return false;
  new (result) integer(kind);
  return true;
}

integer Swallow() try {
  while (true) {
    Check_For_Inspector_Interruption();
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  }
} catch (...) {
  throw NoSuchObject();
}

std::atomic<int> inside = 0;

bool Exclusive() {
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

inspector_string Label(Thing const& thing) {
  return {reinterpret_cast<unsigned char const*>(thing.label), std::strlen(thing.label)};
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
  Iterated<void, void>(
      "shelf", "shelves", [](auto...) { return 3; },
      [](integer n, Counter* counter, auto*) { return Shelf(n, counter); });
  Plain<integer, void>("shelf", "shelves", [](auto* number, auto*) {
    if (*number < 0 || *number > 9) throw NoSuchObject();
    return Shelf(*number);
  });
  Iterated<integer, void>("count", "counts", given, [](integer n, auto...) { return n; });
  Iterated<integer, void>("bulky", "bulkies", given, [](auto...) {
    static_cast<char*>(Allocate_Inspector_Memory(1 << 16))[1 << 15] = 'x';
    return InspectorText("bulk");
  });
  Plain<S, void>("say", "says", [](auto* text, auto*) { return Say(*text), Copy(*text); });
  Plain<S, void>("yes", "yeses", [](auto* text, auto*) { return Say(*text); });
  Plain<S, void>("no", "noes", [](auto* text, auto*) { return !Say(*text); });
  Linked().Property("fail", "fails", "integer", "integer", Fail);
  Plain<void, void>("swallow", "swallows", [](auto...) { return Swallow(); });
  Plain<void, void>("exclusive", "exclusives", [](auto...) { return Exclusive(); });
  Iterated<void, void>(
      "endless", "endlesses", [](auto...) { return INT64_MAX; },
      [](integer n, auto...) { return Check_For_Inspector_Interruption(), n; });
  Linked().Add(
      Register_Iterated_Property, Unregister_Property, "unopened", "unopeneds", "", "", "integer",
      sizeof(Counter), [](void*) { throw NoSuchObject(); }, Destroy<Counter>,
      [](auto...) { return true; }, [](auto...) { return true; }, nullptr, nullptr);
  Plain<void, void>("twin", "twins", [](auto...) { return InspectorText("plain"); });
  Iterated<void, void>(
      "twin", "twins", [](auto...) { return 2; },
      [](integer n, auto...) { return InspectorText(n == 1 ? "a" : "b"); });
  auto const known = [](auto* text, auto*) {
    ++ledger.known_calls;
    return text->length == 0 ? throw NoSuchObject() : Copy(*text);
  };
  Plain<S, void>("known", "knowns", known, DependsOnlyOnParameters);
  Plain<void, void>("build number", "build numbers", [](auto...) { return integer{7}; });
  Linked().Property("ghost", "ghosts", "", "ghost", [](auto...) { return false; });
  Plain<void, void>("stone", "stones", [](auto...) { return Stone{1}; });
  Plain<integer, void>("weight", "weights", [](auto* grams, auto*) { return Weight{*grams}; });
}

void ObjectProperties() {
  Iterated<void, Shelf>(
      "book", "books", [](auto*, auto* shelf) { return shelf->number; },
      [](integer n, Counter* at, auto* shelf) { return Book(shelf->number * 10 + n, at); });
  Plain<integer, Shelf>("book", "books",
                        [](auto* n, auto* shelf) { return Book(shelf->number * 10 + *n); });
  Plain<void, Shelf>("first title", "first titles",
                     [](auto...) { return InspectorText("overture"); });
  // Only the second shelf has a keeper, so that a plural skips the others.
  Plain<void, Shelf>("keeper", nullptr, [](auto*, auto* shelf) {
    return shelf->number == 2 ? InspectorText("Ann") : throw NoSuchObject();
  });
  Plain<void, Thing>("label", "labels", [](auto*, auto* thing) { return Label(*thing); });
  Plain<void, Book>("title", "titles", [](auto*, auto* book) { return Label(*book); });
  Plain<void, Book>("page count", "page counts",
                    [](auto*, auto* book) { return book->number % 10 * 100; });
  Plain<void, Book>("weight", "weights",
                    [](auto*, auto* book) { return Weight{book->number % 10}; });
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
