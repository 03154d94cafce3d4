// Tests that ask the domain controller that `scripts/test-directory-server` started in the folder
// that GATOTU_TEST_DIRECTORY names. The parameter is "ldap" or "ldaps".
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

#include "machine/directory.h"

class DomainControllerTest : public testing::TestWithParam<char const*> {
 protected:
  void SetUp() override {
    char const* const folder = std::getenv("GATOTU_TEST_DIRECTORY");
    if (folder == nullptr) GTEST_SKIP() << "GATOTU_TEST_DIRECTORY names no server";
    auto values = ReadAssignments(std::string(folder) + "/environment");
    if (values.empty()) GTEST_SKIP() << "no server was started in " << folder;
    for (char const* name : {"LDAPTLS_CACERT", "LDAPSASL_NOCANON", "KRB5_CONFIG"}) {
      ::setenv(name, values[name].c_str(), 1);
    }
    settings.uri = std::string(GetParam()) + "://127.0.0.1";
    settings.bind_name = values["GATOTU_DIRECTORY_BIND_NAME"];
    settings.bind_password = values["GATOTU_DIRECTORY_PASSWORD"];
    machine::SetDirectorySettings(settings);
  }
  void TearDown() override { machine::SetDirectorySettings({}); }

  machine::DirectorySettings settings;

 private:
  // "NAME='value'", a line each.
  static std::map<std::string, std::string> ReadAssignments(std::string const& path) {
    std::map<std::string, std::string> values;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
      std::size_t const at = line.find('=');
      if (at == std::string::npos) continue;
      std::string value = line.substr(at + 1);
      std::erase(value, '\'');
      values[line.substr(0, at)] = value;
    }
    return values;
  }
};
