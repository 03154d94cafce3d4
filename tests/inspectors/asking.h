// What the inspectors register, asked as the evaluator asks it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <concepts>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "portable_inspectors/moment.h"
#include "tests/support/recording_evaluator.h"

inline unsigned char const* Bytes(std::string const& text) {
  return reinterpret_cast<unsigned char const*>(text.data());
}

// A parameter, for as long as the text stands.
inline inspector_string Name(std::string const& text) { return {Bytes(text), text.size()}; }

inline std::string Shown(inspector_string const& text) {
  return {reinterpret_cast<char const*>(text.start), text.length};
}
template <std::integral Number>
std::string Shown(Number number) {
  return std::to_string(number);
}
inline std::string Shown(boolean truth) { return truth ? "true" : "false"; }
inline std::string Shown(moment time) { return std::to_string(time.MicrosecondsSince1970()); }

// Stands for any object that is empty.
inline constexpr std::max_align_t kEmptyObject{};

// The value of a plain property, by its phrase and the type that it is asked of.
template <class Result>
Result Ask(std::string const& phrase, std::string const& type = "",
           void const* object = &kEmptyObject, void const* parameter = nullptr) {
  auto const* const found = RecordingEvaluator::Instance().Find("Property", phrase, type);
  if (found == nullptr) throw "not registered";
  return found->Get<Result>(parameter, object);
}

// What a function answers, shown, or what it throws.
template <class Function>
std::string Told(Function&& function) {
  try {
    return Shown(function());
  } catch (NoSuchObject const&) {
    return "no such object";
  } catch (MemoryFullError const& error) {
    return "memory full " + std::to_string(error.Code());
  } catch (OSError const& error) {
    return "error " + std::to_string(error.Code());
  }
}

// Each element of an iteration to its end, shown by the function; thousands of one without end.
template <class Iterator, class Show, class... Object>
auto All(Iterator&& iterator, Show const& show, Object const&... object) {
  std::vector<decltype(show(iterator.First(object...)))> all;
  try {
    all.push_back(show(iterator.First(object...)));
    while (all.size() < 5000) all.push_back(show(iterator.Next(object...)));
  } catch (NoSuchObject const&) {
  }
  return all;
}

// The registrations of these names and of what they name, in order: plural and types, and the size
// where there is one. None of them may be kept.
inline std::vector<std::string> RegisteredOf(std::set<std::string> const& types) {
  std::vector<std::string> lines;
  for (RecordedRegistration const& each : RecordingEvaluator::Instance().registered) {
    if (!types.contains(each.name) && !types.contains(each.object)) continue;
    EXPECT_EQ(each.fingerprint, nullptr);
    lines.push_back(each.call == "Type" ? each.name : each.plural + " of " + each.object);
    if (!each.parameter.empty()) lines.back() += " by " + each.parameter;
    if (each.size != 0) lines.back() += " " + std::to_string(each.size);
  }
  return lines;
}
