// What the inspectors register, asked as the evaluator asks it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <concepts>
#include <cstddef>
#include <string>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_version.h"
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
// Its five numbers, and the text that it was read from.
inline std::string Shown(MacintoshPlatform::inspector_version const& version) {
  std::string text;
  for (int const number : {int{version.major}, int{version.minor}, int{version.bug_fix},
                           int{version.stage}, int{version.non_release_revision}}) {
    text += (text.empty() ? "" : " ") + std::to_string(number);
  }
  return version.text.Length() == 0 ? text : text + " " + version.text.Text();
}

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

inline std::string const kNone = "no such object";

// What a function answers, shown, or what it throws.
template <class Function>
std::string Told(Function&& function) {
  try {
    return Shown(function());
  } catch (NoSuchObject const&) {
    return kNone;
  } catch (MemoryFullError const& error) {
    return "memory full " + std::to_string(error.Code());
  } catch (OSError const& error) {
    return "error " + std::to_string(error.Code());
  }
}

// As `Ask`, for a value of any type that can be shown; or what is thrown.
inline std::string Answer(std::string const& phrase, std::string const& type = "",
                          void const* object = &kEmptyObject, void const* parameter = nullptr) {
  auto const* const found = RecordingEvaluator::Instance().Find("Property", phrase, type);
  std::string const result = found == nullptr ? "" : found->result;
  if (result == "boolean") return Told([&] { return found->Get<boolean>(parameter, object); });
  if (result == "integer") return Told([&] { return found->Get<integer>(parameter, object); });
  if (result == "time") return Told([&] { return found->Get<moment>(parameter, object); });
  if (result == "string") {
    return Told([&] { return found->Get<inspector_string>(parameter, object); });
  }
  if (result == "version") {
    return Told([&] { return found->Get<inspector_version>(parameter, object); });
  }
  return "no such property";
}

// The same of several properties of one object.
inline std::string Answers(std::vector<std::string> const& phrases, std::string const& type,
                           void const* object) {
  std::string text;
  for (std::string const& phrase : phrases) {
    text += (phrase == phrases.front() ? "" : ", ") + Answer(phrase, type, object);
  }
  return text;
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
