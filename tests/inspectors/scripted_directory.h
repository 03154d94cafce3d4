// The directory that the users' inspectors look into, as a test scripts it.
#pragma once

#include <map>
#include <string>

#include "evaluator/plugin/exceptions.h"
#include "inspectors/users/user.h"

class DirectoryFailed : public DebuggableException {};

// There is one at a time, for as long as it lives. `DirectoryFailed` for a name that it lacks, and
// for everything once `fails` is set.
class ScriptedDirectory {
 public:
  ScriptedDirectory();
  ~ScriptedDirectory();
  ScriptedDirectory(ScriptedDirectory const&) = delete;
  ScriptedDirectory& operator=(ScriptedDirectory const&) = delete;

  void AddUser(std::string const& name, std::string const& id);

  std::map<std::string, ODRecord> users;
  bool fails = false;
};
