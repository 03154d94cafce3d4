// Searching, page by page.
#include <algorithm>
#include <optional>

#include "machine/live/directory_ldap_library.h"

namespace machine::live {
namespace {

// What a server may send in answer to one search.
constexpr std::size_t kMostEntries = 200'000, kMostBytes = std::size_t{256} << 20;
constexpr std::size_t kPage = 500;

struct FreeElement {
  void operator()(BerElement* element) const { ::ber_free(element, 0); }
};
struct FreeText {
  void operator()(char* text) const { ::ldap_memfree(text); }
};
struct FreeValues {
  void operator()(berval** values) const { ::ldap_value_free_len(values); }
};
struct FreeControl {
  void operator()(LDAPControl* control) const { ::ldap_control_free(control); }
};
struct FreeControls {
  void operator()(LDAPControl** controls) const { ::ldap_controls_free(controls); }
};

std::size_t Append(LdapEntry& entry, char const* name, berval** values) {
  std::vector<std::string> copies;
  std::size_t bytes = 0;
  for (berval** value = values; value != nullptr && *value != nullptr; ++value) {
    copies.emplace_back((*value)->bv_val, (*value)->bv_len);
    bytes += (*value)->bv_len;
  }
  if (!copies.empty()) entry.attributes.emplace_back(name, std::move(copies));
  return bytes;
}

class Connection final : public LdapConnection {
 public:
  Connection(LdapHandle handle, std::string uri)
      : handle_(std::move(handle)), uri_(std::move(uri)), base_(ConfiguredBase()) {}

  std::string const& uri() const override { return uri_; }
  std::string const& configured_base() const override { return base_; }
  bool is_usable() const override { return is_usable_; }
  Fact<std::vector<LdapEntry>> Search(LdapSearch const& search, Patience const& patience) override;

 private:
  struct Answer {
    std::vector<LdapEntry> entries;
    std::size_t bytes = 0;
    std::string cookie;  // empty after the last page
  };

  Fact<int> Send(LdapSearch const& search, Patience const& patience, std::string const& cookie,
                 std::size_t page) const;
  // What ends the page; nothing when it ended well.
  std::optional<Absence> ReadPage(LdapSearch const& search, Patience const& patience, int number,
                                  Answer& answer);
  std::optional<Absence> ReadEnd(LdapSearch const& search, LDAPMessage* message, Answer& answer);
  void ReadEntry(LDAPMessage* message, Answer& answer) const;

  LdapHandle const handle_;
  std::string const uri_, base_;
  bool is_usable_ = true;
};

Fact<int> Connection::Send(LdapSearch const& search, Patience const& patience,
                           std::string const& cookie, std::size_t page) const {
  std::vector<char*> attributes;
  for (std::string const& name : search.attributes) {
    attributes.push_back(const_cast<char*>(name.c_str()));
  }
  attributes.push_back(nullptr);
  berval value = {cookie.size(), const_cast<char*>(cookie.data())};
  LDAPControl* control = nullptr;
  ::ldap_create_page_control(handle_.get(), static_cast<ber_int_t>(page), &value, 0, &control);
  std::unique_ptr<LDAPControl, FreeControl> const owned(control);
  LDAPControl* controls[] = {control, nullptr};
  timeval time = TimeLeft(patience);
  int number = 0;
  int const error =
      ::ldap_search_ext(handle_.get(), search.base.c_str(),
                        search.is_of_base_only ? LDAP_SCOPE_BASE : LDAP_SCOPE_SUBTREE,
                        search.filter.c_str(), attributes.data(), 0,
                        search.is_of_base_only ? nullptr : controls, nullptr, &time, 0, &number);
  if (error != LDAP_SUCCESS) return FailureOf(handle_.get(), error, uri_);
  return number;
}

void Connection::ReadEntry(LDAPMessage* message, Answer& answer) const {
  LdapEntry& entry = answer.entries.emplace_back();
  if (std::unique_ptr<char, FreeText> const name(::ldap_get_dn(handle_.get(), message)); name) {
    entry.name = name.get();
  }
  BerElement* position = nullptr;
  using Text = std::unique_ptr<char, FreeText>;
  Text name(::ldap_first_attribute(handle_.get(), message, &position));
  std::unique_ptr<BerElement, FreeElement> const owned(position);
  while (name != nullptr) {
    std::unique_ptr<berval*, FreeValues> const values(
        ::ldap_get_values_len(handle_.get(), message, name.get()));
    answer.bytes += Append(entry, name.get(), values.get());
    name.reset(::ldap_next_attribute(handle_.get(), message, position));
  }
}

std::optional<Absence> Connection::ReadEnd(LdapSearch const& search, LDAPMessage* message,
                                           Answer& answer) {
  int result = LDAP_OTHER;
  LDAPControl** controls = nullptr;
  int const error =
      ::ldap_parse_result(handle_.get(), message, &result, nullptr, nullptr, nullptr, &controls, 0);
  std::unique_ptr<LDAPControl*, FreeControls> const owned(controls);
  if (error != LDAP_SUCCESS) return FailureOf(handle_.get(), error, uri_);
  // What was there a moment ago may be gone, and a referral leads elsewhere.
  bool const is_gone = search.is_of_base_only && result == LDAP_NO_SUCH_OBJECT;
  if (is_gone || result == LDAP_REFERRAL) return {};
  if (result != LDAP_SUCCESS) return FailureOf(handle_.get(), result, uri_);
  LDAPControl* const page = ::ldap_control_find(LDAP_CONTROL_PAGEDRESULTS, controls, nullptr);
  ber_int_t count = 0;
  berval cookie = {};
  if (page == nullptr ||
      ::ldap_parse_pageresponse_control(handle_.get(), page, &count, &cookie) != LDAP_SUCCESS) {
    return {};
  }
  answer.cookie.assign(cookie.bv_val == nullptr ? "" : cookie.bv_val, cookie.bv_len);
  ::ber_memfree(cookie.bv_val);
  return {};
}

std::optional<Absence> Connection::ReadPage(LdapSearch const& search, Patience const& patience,
                                            int number, Answer& answer) {
  for (;;) {
    Fact<LdapMessage> const message = NextMessage(handle_.get(), number, patience, uri_);
    // Whatever went wrong with the connection, the next question finds a new one.
    if (!message) is_usable_ = false;
    if (!message && patience.is_over()) NoteSilence(uri_);
    if (!message) return message.absence();
    int const kind = ::ldap_msgtype(message->get());
    if (kind == LDAP_RES_SEARCH_RESULT) return ReadEnd(search, message->get(), answer);
    if (kind != LDAP_RES_SEARCH_ENTRY) continue;
    ReadEntry(message->get(), answer);
    bool const is_enough = search.limit != 0 && answer.entries.size() >= search.limit;
    bool const is_too_much = answer.entries.size() > kMostEntries || answer.bytes > kMostBytes;
    if (!is_enough && !is_too_much) continue;
    ::ldap_abandon_ext(handle_.get(), number, nullptr, nullptr);
    if (is_too_much) return Absence{Outcome::kMalformed, uri_, "more than can be read"};
    answer.cookie.clear();
    return {};
  }
}

Fact<std::vector<LdapEntry>> Connection::Search(LdapSearch const& search,
                                                Patience const& patience) {
  BrokenPipesKept const kept;
  Answer answer;
  std::size_t const page = search.limit == 0 ? kPage : std::min(kPage, search.limit);
  do {
    Fact<int> const number = Send(search, patience, answer.cookie, page);
    if (!number) is_usable_ = false;
    if (!number) return number.absence();
    answer.cookie.clear();
    if (auto const failure = ReadPage(search, patience, *number, answer)) return *failure;
  } while (!answer.cookie.empty());
  NoteAnswer(uri_);
  return std::move(answer.entries);
}

}  // namespace

std::unique_ptr<LdapConnection> MakeLdapConnection(LdapHandle handle, std::string uri) {
  return std::make_unique<Connection>(std::move(handle), std::move(uri));
}

}  // namespace machine::live
