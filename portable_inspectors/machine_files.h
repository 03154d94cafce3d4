// The files of the machine in use, as the sources of this room ask for them.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "evaluator/plugin/exceptions.h"
#include "machine/machine.h"

inline machine::FileSource const& MachineFiles() { return machine::CurrentMachine().Files(); }

// The machine has announced why there is no value.
template <typename T>
T OrNoSuchObject(machine::Fact<T> fact) {
  if (!fact) throw NoSuchObject();
  return std::move(fact).value();
}

inline void AppendName(std::string& folder_path, std::string_view name) {
  if (!folder_path.ends_with('/')) folder_path += '/';
  folder_path += name;
}

inline std::string JoinPath(std::string folder_path, std::string_view name) {
  AppendName(folder_path, name);
  return folder_path;
}

// Of a path without trailing "/"; the root's name and the parent of the root are the root.
inline std::string_view NameInPath(std::string_view path) {
  return path == "/" ? path : path.substr(path.rfind('/') + 1);
}
inline std::string_view ParentOfPath(std::string_view path) {
  std::size_t const end = path.rfind('/');
  return end == 0 || end == std::string_view::npos ? "/" : path.substr(0, end);
}
