// Reaching a server: connection, encryption, bind.
#include <arpa/inet.h>
#include <sys/time.h>

#include <algorithm>
#include <string_view>

#include "machine/export.h"
#include "machine/live/directory_ldap_library.h"

namespace machine::live {
namespace {

constexpr std::size_t kLargestMessage = std::size_t{64} << 20;

// "ldaps", "ldap" or "ldapi", however it is written.
std::string SchemeOf(std::string_view uri) {
  std::string scheme(uri.substr(0, uri.find(':')));
  std::ranges::transform(scheme, scheme.begin(), [](char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
  });
  return scheme;
}

std::string_view HostOf(std::string_view uri) {
  std::size_t const start = uri.find("://");
  if (start == std::string_view::npos) return {};
  std::string_view host = uri.substr(start + 3);
  host = host.substr(0, host.find('/'));
  if (host.starts_with('[')) return host.substr(1, host.find(']') - 1);
  return host.substr(0, host.find(':'));
}

// No name is trusted with this: whoever answers for names may send us anywhere.
bool IsOnThisMachine(std::string_view uri) {
  std::string_view const host = HostOf(uri);
  in_addr address;
  bool const is_address = ::inet_pton(AF_INET, std::string(host).c_str(), &address) == 1;
  return SchemeOf(uri) == "ldapi" || host == "::1" ||
         (is_address && ntohl(address.s_addr) >> 24 == 127);
}

std::vector<std::string> SplitUris(std::string_view text) {
  constexpr char kBetween[] = " ,\t";
  std::vector<std::string> uris;
  for (;;) {
    std::size_t const start = text.find_first_not_of(kBetween);
    if (start == std::string_view::npos) return uris;
    text.remove_prefix(start);
    std::size_t const length = std::min(text.find_first_of(kBetween), text.size());
    uris.emplace_back(text.substr(0, length));
    text.remove_prefix(length);
  }
}

std::string TextOption(LDAP* handle, int option) {
  char* text = nullptr;
  ::ldap_get_option(handle, option, &text);
  std::string const copy = text == nullptr ? "" : text;
  ::ldap_memfree(text);
  return copy;
}

// Nothing is asked of people: what the mechanism does not find by itself it does without.
int AnswerNothing(LDAP*, unsigned, void*, void*) { return LDAP_SUCCESS; }

Absence Refused(std::string const& uri, char const* why) {
  return {Outcome::kPermissionRefused, uri, why};
}

class Connector {
 public:
  Connector(LdapServer const& server, std::string uri, Patience const& patience)
      : server_(server), uri_(std::move(uri)), patience_(patience) {}

  Fact<std::unique_ptr<LdapConnection>> Connect() {
    LDAP* handle = nullptr;
    int const error = ::ldap_initialize(&handle, uri_.c_str());
    handle_.reset(handle);
    if (error != LDAP_SUCCESS) return FailureOf(nullptr, error, uri_);
    SetOptions();
    Fact<Bound> const bound = server_.bind_name.empty() ? BindWithTicket() : BindWithPassword();
    if (!bound) return bound.absence();
    return MakeLdapConnection(std::move(handle_), std::move(uri_));
  }

 private:
  struct Bound {};

  // A referral names a server that nobody configured.
  void SetOptions() {
    int const version = LDAP_VERSION3;
    ::ldap_set_option(handle_.get(), LDAP_OPT_PROTOCOL_VERSION, &version);
    ::ldap_set_option(handle_.get(), LDAP_OPT_REFERRALS, LDAP_OPT_OFF);
    timeval const time = TimeLeft(patience_);
    ::ldap_set_option(handle_.get(), LDAP_OPT_NETWORK_TIMEOUT, &time);
    ::ldap_set_option(handle_.get(), LDAP_OPT_TIMEOUT, &time);
    Sockbuf* buffer = nullptr;
    ber_len_t largest = kLargestMessage;
    if (::ldap_get_option(handle_.get(), LDAP_OPT_SOCKBUF, &buffer) == 0 && buffer != nullptr) {
      ::ber_sockbuf_ctrl(buffer, LBER_SB_OPT_SET_MAX_INCOMING, &largest);
    }
  }

  // Inside TLS the mechanism's own encryption is switched off, which servers demand.
  Fact<Bound> BindWithTicket() {
    bool const has_tls = SchemeOf(uri_) == "ldaps";
    ::ldap_set_option(handle_.get(), LDAP_OPT_X_SASL_SECPROPS,
                      const_cast<char*>(has_tls ? "maxssf=0" : "minssf=56"));
    int const error =
        ::ldap_sasl_interactive_bind_s(handle_.get(), nullptr, "GSSAPI", nullptr, nullptr,
                                       LDAP_SASL_QUIET, &AnswerNothing, nullptr);
    if (error != LDAP_SUCCESS) return FailureOf(handle_.get(), error, uri_);
    return Bound{};
  }

  Fact<Bound> BindWithPassword() {
    // A bind without password succeeds as nobody.
    if (server_.bind_password.empty()) return Refused(uri_, "no password for a simple bind");
    bool const is_safe = SchemeOf(uri_) == "ldaps" || SchemeOf(uri_) == "ldapi";
    bool const may_be_clear = server_.allows_clear_loopback && IsOnThisMachine(uri_);
    if (!is_safe && !may_be_clear) {
      Fact<Bound> const encrypted = StartEncryption();
      if (!encrypted) return encrypted;
    }
    berval password = {server_.bind_password.size(),
                       const_cast<char*>(server_.bind_password.data())};
    int number = 0;
    int const error = ::ldap_sasl_bind(handle_.get(), server_.bind_name.c_str(), LDAP_SASL_SIMPLE,
                                       &password, nullptr, nullptr, &number);
    return Finish(error, number);
  }

  Fact<Bound> StartEncryption() {
    int number = 0;
    int const error = ::ldap_start_tls(handle_.get(), nullptr, nullptr, &number);
    Fact<Bound> const agreed = Finish(error, number);
    if (!agreed) return agreed;
    int const shaken = ::ldap_install_tls(handle_.get());
    if (shaken != LDAP_SUCCESS) return FailureOf(handle_.get(), shaken, uri_);
    return Bound{};
  }

  // Waits for the one answer to a request.
  Fact<Bound> Finish(int error, int number) {
    if (error != LDAP_SUCCESS) return FailureOf(handle_.get(), error, uri_);
    Fact<LdapMessage> const message = NextMessage(handle_.get(), number, patience_, uri_);
    if (!message) return message.absence();
    int result = LDAP_OTHER;
    error = ::ldap_parse_result(handle_.get(), message->get(), &result, nullptr, nullptr, nullptr,
                                nullptr, 0);
    if (error == LDAP_SUCCESS) error = result;
    if (error != LDAP_SUCCESS) return FailureOf(handle_.get(), error, uri_);
    return Bound{};
  }

  LdapServer const& server_;
  std::string uri_;
  Patience const& patience_;
  LdapHandle handle_;
};

class Engine final : public LdapEngine {
 public:
  // The first server that answers. Each has its share of the time, the last one all that is left.
  Fact<std::unique_ptr<LdapConnection>> Connect(LdapServer const& server,
                                                Patience const& patience) override {
    BrokenPipesKept const kept;
    std::string const uris = server.uri.empty() ? TextOption(nullptr, LDAP_OPT_URI) : server.uri;
    Fact<std::unique_ptr<LdapConnection>> connection =
        Absence{Outcome::kAbsent, "LDAP", "no server is configured"};
    std::vector<std::string> const in_order = WithSilentOnesLast(SplitUris(uris));
    std::size_t left = in_order.size();
    for (std::string const& uri : in_order) {
      if (connection || patience.is_over()) break;
      Patience const share(patience, patience.Left() / left--);
      connection = Connector(server, uri, share).Connect();
      if (!connection && share.is_over()) NoteSilence(uri);
    }
    return connection;
  }
};

}  // namespace

std::string ConfiguredBase() { return TextOption(nullptr, LDAP_OPT_DEFBASE); }

}  // namespace machine::live

extern "C" MACHINE_API machine::live::LdapEngine* FrameworksLdapEngine() {
  static machine::live::Engine engine;
  return &engine;
}
