#include "tests/evaluator/test_vocabulary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <new>
#include <stdexcept>
#include <thread>

Ledger ledger;

Registration::~Registration() { Withdraw(); }

bool Registration::Withdraw() {
  bool const withdrawn = withdraw_ != nullptr && withdraw_(block_);
  withdraw_ = nullptr;
  return withdrawn;
}

bool Registration::Keep(bool registered, bool (*withdraw)(void*)) {
  if (registered) withdraw_ = withdraw;
  return registered;
}

bool Registration::Type(char const* name, unsigned long size, InspectorDestroy destroy,
                        char const* base, int fingerprinting) {
  return Keep(Register_Type(block_, 512, name, size, destroy, base, fingerprinting),
              Unregister_Type);
}
bool Registration::Property(char const* singular, char const* plural, char const* parameter,
                            char const* object, char const* result, InspectorGet get,
                            FingerprintFunction fingerprint) {
  return Keep(Register_Property(block_, 128, singular, plural, parameter, object, result, get,
                                nullptr, fingerprint),
              Unregister_Property);
}
bool Registration::Iterated(char const* singular, char const* plural, char const* parameter,
                            char const* object, char const* result, unsigned long state_size,
                            InspectorConstruct construct, InspectorDestroy destroy,
                            InspectorGet first, InspectorGet next) {
  return Keep(
      Register_Iterated_Property(block_, 128, singular, plural, parameter, object, result,
                                 state_size, construct, destroy, first, next, nullptr, nullptr),
      Unregister_Property);
}
bool Registration::Cast(char const* name, char const* source, char const* result,
                        InspectorCast cast) {
  return Keep(Register_Cast(block_, 128, name, source, result, cast, nullptr, nullptr),
              Unregister_Cast);
}
bool Registration::Operator(int code, char const* left, char const* right, char const* result,
                            InspectorOperator apply) {
  return Keep(
      Register_Binary_Operator(block_, 128, code, left, right, result, apply, nullptr, nullptr),
      Unregister_Binary_Operator);
}
bool Registration::Cache(InspectorCacheClear clear) {
  return Keep(Register_Cache(block_, 64, clear, nullptr), Unregister_Cache);
}

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
  Thing(integer number, Counter* iterator) : number(number), iterator(iterator) {
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
  using Thing::Thing;
};
struct Shelf : Thing {
  using Thing::Thing;
};

template <class T>
void Destroy(void const* value) {
  static_cast<T const*>(value)->~T();
}

template <class T>
T const& Object(void const* object) {
  static_cast<T const*>(object)->Check();
  return *static_cast<T const*>(object);
}

integer Integer(void const* value) { return *static_cast<integer const*>(value); }

std::string_view Text(void const* value) {
  auto const& text = *static_cast<inspector_string const*>(value);
  return {reinterpret_cast<char const*>(text.start), text.length};
}

template <class T>
bool Give(void* result, T value) {
  if (result != nullptr) new (result) T(value);
  return true;
}

// Gives `limit` values, made by `Make(result, n, state)`.
template <auto Limit, auto Make>
bool Step(void* result, void const* parameter, void const* object, void* state, void const*) {
  if (result == nullptr) return true;
  auto& counter = *static_cast<Counter*>(state);
  counter.Check();
  if (counter.item_alive) ++ledger.misused;
  if (counter.at >= Limit(parameter, object)) throw NoSuchObject();
  Make(result, ++counter.at, counter, object);
  return true;
}

template <auto Limit, auto Make>
bool Count(Registration& registration, char const* singular, char const* plural,
           char const* parameter, char const* object, char const* result) {
  return registration.Iterated(
      singular, plural, parameter, object, result, sizeof(Counter),
      [](void* state) { new (state) Counter; }, Destroy<Counter>, Step<Limit, Make>,
      Step<Limit, Make>);
}

constexpr auto kParameter = [](void const* parameter, void const*) { return Integer(parameter); };

bool Say(void* result, void const* parameter) {
  if (result == nullptr) return false;
  ledger.said += Text(parameter);
  return true;
}

bool Fail(void* result, void const* parameter, void const*, void*, void const*) {
  if (result == nullptr) return true;
  switch (Integer(parameter)) {
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
      return Give(result, Integer(parameter));
  }
}

bool Swallow(void* result, void const*, void const*, void*, void const*) {
  if (result == nullptr) return true;
  try {
    while (true) {
      Check_For_Inspector_Interruption();
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
  } catch (...) {
    throw NoSuchObject();
  }
}

std::atomic<int> inside = 0;

bool Exclusive(void* result, void const*, void const*, void*, void const*) {
  if (result == nullptr) return true;
  if (++inside != 1) ++ledger.misused;
  std::this_thread::sleep_for(std::chrono::microseconds(200));
  --inside;
  return Give(result, true);
}

template <class T, auto Apply>
void Apply2(void* result, void const* left, void const* right, void const*) {
  using Result = decltype(Apply(*static_cast<T const*>(left), *static_cast<T const*>(right)));
  new (result) Result(Apply(*static_cast<T const*>(left), *static_cast<T const*>(right)));
}

template <class T, auto Apply>
void Operate(Registration& registration, int code, char const* type, char const* result) {
  registration.Operator(code, type, type, result, Apply2<T, Apply>);
}

void StringOperators(Registration* r) {
  using S = inspector_string;
  Operate<S, [](S const& a, S const& b) { return Text(&a) == Text(&b); }>(*r++, kOperatorEqual,
                                                                          "string", "boolean");
  Operate<S, [](S const& a, S const& b) { return Text(&a) < Text(&b); }>(*r++, kOperatorLess,
                                                                         "string", "boolean");
  Operate<S, [](S const& a, S const& b) {
    return InspectorText(std::string(Text(&a)).append(Text(&b)));
  }>(*r++, kOperatorJoin, "string", "string");
  Operate<S, [](S const& a, S const& b) { return Text(&a).find(Text(&b)) != std::string::npos; }>(
      *r++, kOperatorContains, "string", "boolean");
  Operate<S, [](S const& a, S const& b) { return Text(&a).starts_with(Text(&b)); }>(
      *r++, kOperatorStartsWith, "string", "boolean");
}

void IntegerOperators(Registration* r) {
  Operate<integer, [](integer a, integer b) { return a == b; }>(*r++, kOperatorEqual, "integer",
                                                                "boolean");
  Operate<integer, [](integer a, integer b) { return a < b; }>(*r++, kOperatorLess, "integer",
                                                               "boolean");
  using U = unsigned long;  // wraps: what overflows is none of the evaluator's business
  Operate<integer, [](integer a, integer b) { return integer(U(a) + U(b)); }>(*r++, kOperatorAdd,
                                                                              "integer", "integer");
  Operate<integer, [](integer a, integer b) { return integer(U(a) - U(b)); }>(
      *r++, kOperatorSubtract, "integer", "integer");
  Operate<integer, [](integer a, integer b) { return integer(U(a) * U(b)); }>(
      *r++, kOperatorMultiply, "integer", "integer");
}

// A weight is plain bytes: its grams.
struct Weight {
  integer grams;
};

void WeightOperators(Registration* r) {
  Operate<Weight, [](Weight a, Weight b) { return a.grams < b.grams; }>(*r++, kOperatorLess,
                                                                        "weight", "boolean");
  Operate<Weight, [](Weight a, Weight b) { return Weight{a.grams + b.grams}; }>(*r++, kOperatorAdd,
                                                                                "weight", "weight");
}

void Casts(Registration* r) {
  r++->Cast("string", "integer", "string", [](void* result, void const* source, void const*) {
    new (result) inspector_string(InspectorText(std::to_string(Integer(source))));
  });
  r++->Cast("string", "boolean", "string", [](void* result, void const* source, void const*) {
    new (result)
        inspector_string(InspectorText(*static_cast<bool const*>(source) ? "true" : "false"));
  });
  r++->Cast("string", "thing", "string", [](void* result, void const* source, void const*) {
    new (result)
        inspector_string(InspectorText(std::string("thing ") + Object<Thing>(source).label));
  });
  r++->Cast("string", "weight", "string", [](void* result, void const* source, void const*) {
    new (result) inspector_string(InspectorText(std::to_string(Integer(source)) + " g"));
  });
  r++->Cast("integer", "string", "integer", [](void* result, void const* source, void const*) {
    auto const text = Text(source);
    if (text.empty() || text[0] < '0' || text[0] > '9') throw NoSuchObject();
    new (result) integer(std::stoll(std::string(text)));
  });
}

void WorldProperties(Registration* r) {
  Count<[](auto...) { return 3; }, [](void* result, integer n, Counter& counter,
                                      void const*) { new (result) Shelf(n, &counter); }>(
      *r++, "shelf", "shelves", "", "", "shelf");
  r++->Property("shelf", "shelves", "integer", "", "shelf",
                [](void* result, void const* parameter, void const*, void*, void const*) {
                  if (Integer(parameter) < 0 || Integer(parameter) > 9) return false;
                  if (result != nullptr) new (result) Shelf(Integer(parameter), nullptr);
                  return true;
                });
  Count<kParameter, [](void* result, integer n, auto&...) { new (result) integer(n); }>(
      *r++, "count", "counts", "integer", "", "integer");
  Count<kParameter, [](void* result, integer, auto&...) {
    static_cast<char*>(Allocate_Inspector_Memory(1 << 16))[1 << 15] = 'x';
    new (result) inspector_string(InspectorText("bulk"));
  }>(*r++, "bulky", "bulkies", "integer", "", "string");
  r++->Property("say", "says", "string", "", "string",
                [](void* result, void const* parameter, void const*, void*, void const*) {
                  return !Say(result, parameter) || Give(result, InspectorText(Text(parameter)));
                });
  r++->Property("yes", "yeses", "string", "", "boolean",
                [](void* result, void const* parameter, void const*, void*, void const*) {
                  return !Say(result, parameter) || Give(result, true);
                });
  r++->Property("no", "noes", "string", "", "boolean",
                [](void* result, void const* parameter, void const*, void*, void const*) {
                  return !Say(result, parameter) || Give(result, false);
                });
  r++->Property("fail", "fails", "integer", "", "integer", Fail);
  r++->Property("swallow", "swallows", "", "", "integer", Swallow);
  r++->Property("exclusive", "exclusives", "", "", "boolean", Exclusive);
  Count<[](auto...) { return INT64_MAX; },
        [](void* result, integer n, auto&...) {
          Check_For_Inspector_Interruption();
          new (result) integer(n);
        }>(*r++, "endless", "endlesses", "", "", "integer");
  r++->Property("twin", "twins", "", "", "string",
                [](void* result, auto...) { return Give(result, InspectorText("plain")); });
  Count<[](auto...) { return 2; },
        [](void* result, integer n, auto&...) {
          new (result) inspector_string(InspectorText(n == 1 ? "a" : "b"));
        }>(*r++, "twin", "twins", "", "", "string");
  r++->Property(
      "known", "knowns", "string", "", "string",
      [](void* result, void const* parameter, void const*, void*, void const*) {
        if (result == nullptr) return true;
        ++ledger.known_calls;
        if (Text(parameter).empty()) throw NoSuchObject();
        return Give(result, InspectorText(Text(parameter)));
      },
      DependsOnlyOnParameters);
  r++->Property("build number", "build numbers", "", "", "integer",
                [](void* result, auto...) { return Give(result, integer{7}); });
  r++->Property("ghost", "ghosts", "", "", "ghost", [](auto...) { return false; });
  r++->Property("stone", "stones", "", "", "stone",
                [](void* result, auto...) { return Give(result, integer{1}); });
  r++->Property("weight", "weights", "integer", "", "weight",
                [](void* result, void const* parameter, auto...) {
                  return Give(result, Weight{Integer(parameter)});
                });
}

void ObjectProperties(Registration* r) {
  Count<[](void const*, void const* object) { return Object<Shelf>(object).number; },
        [](void* result, integer n, Counter& counter, void const* object) {
          new (result) Book(Object<Shelf>(object).number * 10 + n, &counter);
        }>(*r++, "book", "books", "", "shelf", "book");
  r++->Property("book", "books", "integer", "shelf", "book",
                [](void* result, void const* parameter, void const* object, void*, void const*) {
                  auto const number = Object<Shelf>(object).number * 10 + Integer(parameter);
                  if (result != nullptr) new (result) Book(number, nullptr);
                  return true;
                });
  r++->Property("first title", "first titles", "", "shelf", "string",
                [](void* result, auto...) { return Give(result, InspectorText("overture")); });
  // Only the second shelf has a keeper, so that a plural skips the others.
  r++->Property("keeper", nullptr, "", "shelf", "string",
                [](void* result, void const*, void const* object, void*, void const*) {
                  if (Object<Shelf>(object).number != 2) return false;
                  return Give(result, InspectorText("Ann"));
                });
  constexpr InspectorGet label = [](void* result, void const*, void const* object, void*,
                                    void const*) {
    auto const& thing = Object<Thing>(object);
    return Give(result, inspector_string{reinterpret_cast<unsigned char const*>(thing.label),
                                         std::strlen(thing.label)});
  };
  r++->Property("label", "labels", "", "thing", "string", label);
  r++->Property("title", "titles", "", "book", "string", label);
  r++->Property("page count", "page counts", "", "book", "integer",
                [](void* result, void const*, void const* object, void*, void const*) {
                  return Give(result, Object<Book>(object).number % 10 * 100);
                });
  r++->Property("weight", "weights", "", "book", "weight",
                [](void* result, void const*, void const* object, void*, void const*) {
                  return Give(result, Weight{Object<Book>(object).number % 10});
                });
}

// Properties come before their types, as static initialisation may have it.
struct Library {
  Library() {
    WorldProperties(world);
    ObjectProperties(objects);
    Casts(casts);
    StringOperators(strings);
    IntegerOperators(integers);
    WeightOperators(weights);
    types[0].Type("book", sizeof(Book), Destroy<Book>, "thing");
    types[1].Type("shelf", sizeof(Shelf), Destroy<Shelf>);
    types[2].Type("thing", sizeof(Thing), Destroy<Thing>);
    types[3].Type("weight", sizeof(Weight), nullptr, "", kPlainBytes);
    types[4].Type("stone", sizeof(integer), nullptr, nullptr, kNoFingerprinting);
    cache.Cache([](Instant&, void*) { ++ledger.cache_clears; });
  }
  Registration world[18], objects[9], casts[5], strings[5], integers[5], weights[2], types[5];
  Registration cache;
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
