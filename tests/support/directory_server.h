// An LDAP server for tests on this machine's loopback, and one that breaks its promises.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>

// OpenLDAP's slapd in a folder of its own, with just enough schema to look like the directory of a
// domain "dc=test". It runs as long as this lives.
class DirectoryServer {
 public:
  static constexpr char kBindName[] = "cn=root,dc=test", kPassword[] = "secret";

  static bool IsInstalled();

  // Entries as LDIF, below "dc=test", which is there. `is_running` tells whether it started.
  explicit DirectoryServer(std::string const& entries);
  ~DirectoryServer();
  DirectoryServer(DirectoryServer const&) = delete;
  DirectoryServer& operator=(DirectoryServer const&) = delete;

  bool is_running() const { return is_running_; }
  std::uint16_t port() const { return port_; }
  std::string uri() const { return "ldap://127.0.0.1:" + std::to_string(port_); }
  // As after a crash and a new start: connections are gone.
  void Restart();

 private:
  bool Load(std::string const& entries) const;
  void Start();
  void Stop();

  std::filesystem::path folder_;
  std::uint16_t port_ = 0;
  pid_t process_ = -1;
  bool is_running_ = false;
};

// Passes connections on to a server, until so many bytes came back: then it goes silent, or hangs
// up.
class FaultyServer {
 public:
  enum class Fault { kSilence, kHangUp };

  // To no server at all with port 0.
  FaultyServer(std::uint16_t port, Fault fault, std::size_t after_bytes);
  ~FaultyServer();
  FaultyServer(FaultyServer const&) = delete;
  FaultyServer& operator=(FaultyServer const&) = delete;

  std::string uri() const { return "ldap://127.0.0.1:" + std::to_string(port_); }

 private:
  void Serve();
  void ServeOne(int client);

  std::uint16_t const target_;
  Fault const fault_;
  std::size_t const after_bytes_;
  std::uint16_t port_ = 0;
  int const listener_;
  std::atomic<bool> is_over_ = false;
  std::thread thread_;
};
