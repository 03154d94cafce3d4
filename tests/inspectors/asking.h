// What the inspectors register, asked as the evaluator asks it.
#pragma once

#include <cstddef>
#include <string>

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
inline std::string Shown(integer number) { return std::to_string(number); }
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
