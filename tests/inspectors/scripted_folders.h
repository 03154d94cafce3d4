// Special folders as a test has them: while one of these lives, `FSFindFolder` answers from it and
// not from the machine. Nothing is remembered from before or for later.
#pragma once

#include <CoreServices/CoreServices.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

class ScriptedFolders {
 public:
  ScriptedFolders();
  ~ScriptedFolders();
  ScriptedFolders(ScriptedFolders const&) = delete;
  ScriptedFolders& operator=(ScriptedFolders const&) = delete;

  // As the evaluator lets them be forgotten.
  static void Forget();

  using Key = std::pair<int, OSType>;  // domain and code

  std::map<Key, std::string> paths;  // what is not here is not found
  std::vector<Key> asked;            // each call, in order
  int creations = 0;                 // calls that wanted the folder to be made
  // Runs when a folder has been found, before the caller has a look at it.
  std::function<void()> after_finding;
};
