// The facts of a capture's `machine.plist`, or of another property list, by their keys.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "machine/capture/record.h"

namespace machine::capture {

// A value in a property list, borrowed, with its place: "machine.plist: Processes[3].pid". What
// holds something else than what is asked for is malformed, a missing one too.
class Field {
 public:
  Field(Record const* value, std::string path) : value_(value), path_(std::move(path)) {}

  bool exists() const { return value_ != nullptr; }
  std::string const& path() const { return path_; }

  // Of a dictionary or an array; of anything else it does not exist.
  Field operator[](std::string_view key) const;
  Field operator[](std::size_t index) const;
  // Of an array; 0 and none of anything else.
  std::size_t count() const;
  std::vector<Field> Items() const;

  // A string, or data, whose bytes may be anything.
  Fact<std::string> Text() const;
  Fact<std::int64_t> Integer(std::int64_t least, std::int64_t most) const;
  Fact<std::uint64_t> Unsigned(std::uint64_t most) const;
  Fact<bool> Truth() const;
  Fact<RecordDate> Date() const;

  template <typename Value>
  Value const* As() const {
    return value_ == nullptr ? nullptr : value_->As<Value>();
  }
  Absence Malformed(std::string why) const;
  Absence NoDictionary() const { return Malformed("not a dictionary"); }

 private:
  Record const* value_;
  std::string path_;
};

// Before the keys in the places of a capture's document.
inline constexpr char kDocumentPlace[] = "machine.plist: ";
// With the reason where the capture lacks something that the machine may have had.
void AnnounceMissing(Absence const& absence);

// Of an item of a list that is left out of it as malformed: with what is wrong.
void AnnounceLeftOut(Absence const& absence);

// An absence as it was recorded: a text, or a dictionary with "Reason" and more.
Record RecordOf(Absence const& absence);
bool IsAbsence(Field const& field);
// What the recording does not say is as in `whole`.
Absence AbsenceIn(Field const& field, Absence whole);

class Facts {
 public:
  explicit Facts(Record document) : document_(std::move(document)) {}

  Field operator[](std::string_view key) const;
  // Whether the capture says anything of a key, or of a key within a dictionary: a value, one that
  // is malformed, or the reason why there is none.
  bool Knows(std::string const& key) const;
  bool Knows(std::string const& group, std::string const& key) const;
  // Whether only what was asked is recorded under a key, so that the rest is not known.
  bool IsPartial(std::string_view key) const;
  // Why there is no such fact, announced. The name is a key, or "Environment.HOME".
  Absence Missing(std::string const& name) const;

  // A value by one of the questions of `Field`, announced.
  template <typename Read>
  auto Ask(std::string const& key, Read&& read) const {
    return Answer((*this)[key], key, read);
  }
  template <typename Read>
  auto Ask(std::string const& group, std::string const& key, Read&& read) const {
    Field const whole = (*this)[group];
    std::string const name = group + "." + key;
    if (!whole.exists() || whole.As<RecordDictionary>() != nullptr) {
      return Answer(whole[key], name, read);
    }
    // What stands there instead is not the value of any key.
    return Answer(whole, name,
                  [](Field const& field) -> decltype(read(field)) { return field.NoDictionary(); });
  }
  Fact<std::string> Text(std::string const& key) const;
  Fact<std::string> Text(std::string const& group, std::string const& key) const;

 private:
  template <typename Read>
  auto Answer(Field const& field, std::string const& name, Read&& read) const
      -> decltype(read(field)) {
    if (!field.exists()) return Missing(name);
    auto fact = read(field);
    Announce(field.path(), fact.outcome());
    return fact;
  }

  Record document_;
};

}  // namespace machine::capture
