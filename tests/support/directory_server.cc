#include "tests/support/directory_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <vector>

namespace {

constexpr char kServer[] = "/usr/sbin/slapd", kLoader[] = "/usr/sbin/slapadd";

// The attributes are those of a domain; "%" stands for the folder.
constexpr char kConfiguration[] = R"(include /etc/ldap/schema/core.schema
attributetype ( 1.1.2.1 NAME 'sAMAccountName' EQUALITY caseIgnoreMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )
attributetype ( 1.1.2.2 NAME 'objectCategory' EQUALITY caseIgnoreMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )
attributetype ( 1.1.2.3 NAME 'objectSid' EQUALITY octetStringMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.40 )
attributetype ( 1.1.2.4 NAME 'tokenGroups' EQUALITY octetStringMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.40 )
attributetype ( 1.1.2.5 NAME 'displayName' EQUALITY caseIgnoreMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )
attributetype ( 1.1.2.6 NAME 'unixHomeDirectory' EQUALITY caseExactMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )
attributetype ( 1.1.2.7 NAME 'dNSHostName' EQUALITY caseIgnoreMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )
objectclass ( 1.1.3.1 NAME 'account' SUP top STRUCTURAL MUST ( cn $ sAMAccountName ) MAY ( objectCategory $ objectSid $ tokenGroups $ displayName $ unixHomeDirectory $ dNSHostName $ uidNumber $ gidNumber $ distinguishedName $ member ) )
objectclass ( 1.1.3.2 NAME 'user' SUP account STRUCTURAL )
objectclass ( 1.1.3.3 NAME 'group' SUP account STRUCTURAL )
objectclass ( 1.1.3.4 NAME 'computer' SUP user STRUCTURAL )
pidfile %/pid
modulepath /usr/lib/ldap
moduleload back_mdb
sizelimit unlimited
database mdb
maxsize 268435456
dbnosync
suffix dc=test
rootdn cn=root,dc=test
rootpw secret
directory %/data
)";

std::string WithFolder(std::string text, std::string const& folder) {
  for (std::size_t at; (at = text.find('%')) != std::string::npos;) text.replace(at, 1, folder);
  return text;
}

sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

int Connect(std::uint16_t port) {
  int const socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in const address = Loopback(port);
  if (::connect(socket, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0) {
    return socket;
  }
  ::close(socket);
  return -1;
}

// A listening socket on a port that was free.
int Listen(std::uint16_t& port) {
  int const socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = Loopback(0);
  ::bind(socket, reinterpret_cast<sockaddr const*>(&address), sizeof address);
  ::listen(socket, 8);
  socklen_t size = sizeof address;
  ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  port = ntohs(address.sin_port);
  return socket;
}

pid_t Spawn(std::initializer_list<std::string> words) {
  std::vector<char*> arguments;
  for (std::string const& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t quiet;
  ::posix_spawn_file_actions_init(&quiet);
  ::posix_spawn_file_actions_addopen(&quiet, 1, "/dev/null", O_WRONLY, 0);
  ::posix_spawn_file_actions_addopen(&quiet, 2, "/dev/null", O_WRONLY, 0);
  pid_t process = -1;
  int const error =
      ::posix_spawn(&process, arguments[0], &quiet, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&quiet);
  return error == 0 ? process : -1;
}

}  // namespace

bool DirectoryServer::IsInstalled() { return ::access(kServer, X_OK) == 0; }

DirectoryServer::DirectoryServer(std::string const& entries) {
  std::string pattern = std::filesystem::temp_directory_path() / "directory-XXXXXX";
  folder_ = ::mkdtemp(pattern.data());
  ::close(Listen(port_));
  if (Load(entries)) Start();
}

DirectoryServer::~DirectoryServer() {
  Stop();
  std::filesystem::remove_all(folder_);
}

bool DirectoryServer::Load(std::string const& entries) const {
  std::filesystem::create_directory(folder_ / "data");
  std::ofstream(folder_ / "conf") << WithFolder(kConfiguration, folder_);
  std::ofstream(folder_ / "entries")
      << "dn: dc=test\nobjectClass: dcObject\nobjectClass: organization\ndc: test\no: test\n\n"
      << entries;
  int status = -1;
  ::waitpid(Spawn({kLoader, "-q", "-f", folder_ / "conf", "-l", folder_ / "entries"}), &status, 0);
  return status == 0;
}

void DirectoryServer::Start() {
  process_ = Spawn({kServer, "-f", folder_ / "conf", "-h", uri(), "-d", "0"});
  for (int i = 0; i < 500 && !is_running_; ++i) {
    int const socket = Connect(port_);
    is_running_ = socket >= 0;
    if (is_running_) ::close(socket);
    if (!is_running_) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

void DirectoryServer::Stop() {
  if (process_ <= 0) return;
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
  process_ = -1;
  is_running_ = false;
}

void DirectoryServer::Restart() {
  Stop();
  Start();
}

FaultyServer::FaultyServer(std::uint16_t port, Fault fault, std::size_t after_bytes)
    : target_(port), fault_(fault), after_bytes_(after_bytes), listener_(Listen(port_)) {
  thread_ = std::thread([this] { Serve(); });
}

FaultyServer::~FaultyServer() {
  is_over_ = true;
  thread_.join();
  ::close(listener_);
}

void FaultyServer::Serve() {
  while (!is_over_) {
    pollfd waiting = {listener_, POLLIN, 0};
    if (::poll(&waiting, 1, 20) <= 0) continue;
    int const client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) continue;
    ServeOne(client);
    ::close(client);
  }
}

void FaultyServer::ServeOne(int client) {
  int const server = target_ == 0 ? -1 : Connect(target_);
  std::size_t left = after_bytes_;
  while (!is_over_ && (left > 0 || fault_ == Fault::kSilence)) {
    pollfd ends[] = {{client, POLLIN, 0}, {left > 0 ? server : -1, POLLIN, 0}};
    if (::poll(ends, 2, 20) <= 0) continue;
    char bytes[4096];
    if (ends[0].revents != 0) {
      ssize_t const size = ::recv(client, bytes, sizeof bytes, 0);
      if (size <= 0) break;
      if (server >= 0) ::send(server, bytes, static_cast<std::size_t>(size), MSG_NOSIGNAL);
    }
    if (ends[1].revents != 0) {
      ssize_t const size = ::recv(server, bytes, std::min(left, sizeof bytes), 0);
      if (size <= 0) break;
      ::send(client, bytes, static_cast<std::size_t>(size), MSG_NOSIGNAL);
      left -= static_cast<std::size_t>(size);
    }
  }
  if (server >= 0) ::close(server);
}
