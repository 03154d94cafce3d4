#include "frameworks/CoreFoundation/bundle_languages.h"

#include <algorithm>
#include <iterator>

namespace bundle_languages {
namespace {

// The names that folders had before the codes of ISO 639, some of which are still in use.
struct Language {
  std::string_view code, name;
};
constexpr Language kLanguages[] = {
    {"ar", "Arabic"},     {"cs", "Czech"},    {"da", "Danish"},    {"de", "German"},
    {"el", "Greek"},      {"en", "English"},  {"es", "Spanish"},   {"fi", "Finnish"},
    {"fr", "French"},     {"he", "Hebrew"},   {"hr", "Croatian"},  {"hu", "Hungarian"},
    {"is", "Icelandic"},  {"it", "Italian"},  {"ja", "Japanese"},  {"ko", "Korean"},
    {"nb", "Norwegian"},  {"nl", "Dutch"},    {"no", "Norwegian"}, {"pl", "Polish"},
    {"pt", "Portuguese"}, {"ro", "Romanian"}, {"ru", "Russian"},   {"sk", "Slovak"},
    {"sv", "Swedish"},    {"th", "Thai"},     {"tr", "Turkish"},   {"uk", "Ukrainian"},
    {"zh", "Chinese"},
};

// Chinese is written in two ways, which the folders tell and the environment's regions imply.
struct Script {
  std::string_view region, script;
};
constexpr Script kChineseScripts[] = {
    {"CN", "Hans"}, {"SG", "Hans"}, {"TW", "Hant"}, {"HK", "Hant"}, {"MO", "Hant"}};

bool IsNameByte(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
         c == '-';
}

bool IsName(std::string_view text) {
  constexpr std::size_t kLongest = 64;
  return !text.empty() && text.size() <= kLongest &&
         std::all_of(text.begin(), text.end(), IsNameByte);
}

// "de_AT.UTF-8@euro" is the language "de_AT"; the C locale is none.
std::string_view LanguageOf(std::string_view locale) {
  locale = locale.substr(0, locale.find_first_of(".@"));
  return locale == "C" || locale == "POSIX" ? std::string_view() : locale;
}

void AddOnce(std::vector<std::string>& names, std::string_view name) {
  if (std::find(names.begin(), names.end(), name) == names.end()) names.emplace_back(name);
}

// The first of the three that is set names the locale; only where that is a language does the list
// of languages count.
std::string LocaleOf(machine::EnvironmentSource const& environment) {
  for (char const* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    auto const locale = environment.Variable(name);
    if (locale && !locale->empty()) return std::string(LanguageOf(*locale));
  }
  return {};
}

void AddList(std::vector<std::string>& languages, std::string_view list) {
  while (!list.empty()) {
    std::size_t const end = std::min(list.find(':'), list.size());
    std::string_view const language = LanguageOf(list.substr(0, end));
    if (IsName(language)) AddOnce(languages, language);
    list.remove_prefix(std::min(end + 1, list.size()));
  }
}

std::string With(std::string text, char from, char to) {
  std::replace(text.begin(), text.end(), from, to);
  return text;
}

void AddScript(std::vector<std::string>& names, std::string_view region) {
  for (Script const& row : kChineseScripts) {
    if (row.region == region) AddOnce(names, "zh-" + std::string(row.script));
  }
}

}  // namespace

std::vector<std::string> Preferred(machine::EnvironmentSource const& environment) {
  std::vector<std::string> languages;
  std::string const locale = LocaleOf(environment);
  if (IsName(locale)) {
    if (auto const list = environment.Variable("LANGUAGE")) AddList(languages, *list);
    AddOnce(languages, locale);
  }
  if (languages.empty()) languages.emplace_back("en");
  return languages;
}

std::vector<std::string> FolderNames(std::string_view language) {
  if (!IsName(language)) return {};
  std::size_t const end = language.find_first_of("_-");
  std::string_view const code = language.substr(0, end);
  std::vector<std::string> names{std::string(language)};
  AddOnce(names, With(std::string(language), '-', '_'));
  AddOnce(names, With(std::string(language), '_', '-'));
  if (code == "zh" && end != language.npos) AddScript(names, language.substr(end + 1));
  AddOnce(names, code);
  for (Language const& row : kLanguages) {
    if (row.code == code) AddOnce(names, row.name);
    if (row.name == language) AddOnce(names, row.code);
  }
  return names;
}

std::vector<std::string> Candidates(std::vector<std::string> const& preferred,
                                    std::string_view development_region) {
  std::vector<std::string> names;
  auto const add = [&](std::string_view language) {
    for (std::string const& name : FolderNames(language)) AddOnce(names, name);
  };
  for (std::string const& language : preferred) add(language);
  add(development_region);
  AddOnce(names, "Base");
  add("en");
  return names;
}

}  // namespace bundle_languages
