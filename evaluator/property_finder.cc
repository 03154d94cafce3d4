#include "evaluator/property_finder.h"

#include <algorithm>
#include <set>
#include <vector>

#include "evaluator/spelling.h"

namespace gatotu {
namespace {

constexpr std::size_t kMostListed = 24;

bool ParameterFits(PropertyEntry const& property, TypeEntry const* parameter) {
  if (property.parameter == nullptr || parameter == nullptr) {
    return property.parameter == parameter;
  }
  return IsDerivedFrom(*parameter, *property.parameter);
}

std::string WithArticle(TypeEntry const& type) { return StaticType{&type, {}}.NameWithArticle(); }

// Names in order, at most kMostListed of them.
std::string JoinNames(std::set<std::string_view> const& names) {
  std::string joined;
  std::size_t count = 0;
  for (std::string_view name : names) {
    if (count++ == kMostListed) {
      joined += ", and " + std::to_string(names.size() - kMostListed) + " more";
      break;
    }
    if (!joined.empty()) joined += ", ";
    joined += name;
  }
  return joined;
}

template <class Visitor>
void ForTypeAndBases(TypeEntry const& type, Visitor&& visit) {
  int bases = 0;
  for (TypeEntry const* t = &type; t != nullptr && bases < 64; t = t->base, ++bases) visit(*t);
}

}  // namespace

FoundProperty PropertyFinder::Find(std::string_view phrase, TypeEntry const* parameter,
                                   TypeEntry const& object) const {
  FoundProperty found;
  auto const* uses = vocabulary_.FindPhrase(phrase);
  if (uses == nullptr) return found;
  ForTypeAndBases(object, [&](TypeEntry const& type) {
    if (found.property != nullptr) return;
    bool is_preferred = false;
    for (PhraseUse const& use : *uses) {
      if (use.property->object != &type || !ParameterFits(*use.property, parameter)) continue;
      bool prefers = use.is_plural == use.property->is_iterated;
      if (found.property != nullptr && (is_preferred || !prefers)) continue;
      found = {use.property, use.is_plural};
      is_preferred = prefers;
    }
  });
  return found;
}

// The phrase is right, but not with such a parameter.
bool PropertyFinder::ReportParameter(std::string_view phrase, Span span, TypeEntry const* parameter,
                                     TypeEntry const& object, FoundProperty& meant) {
  std::set<std::string> taken;
  auto const* uses = vocabulary_.FindPhrase(phrase);
  if (uses == nullptr) return false;
  ForTypeAndBases(object, [&](TypeEntry const& type) {
    for (PhraseUse const& use : *uses) {
      if (use.property->object != &type) continue;
      if (meant.property == nullptr) meant = {use.property, use.is_plural};
      taken.insert(use.property->parameter != nullptr ? WithArticle(*use.property->parameter)
                                                      : std::string("no parameter"));
    }
  });
  if (taken.empty()) return false;
  std::string message = '"' + std::string(phrase) + "\" takes ";
  for (auto row = taken.begin(); row != taken.end(); ++row) {
    message += (row == taken.begin() ? "" : " or ") + *row;
  }
  message += parameter != nullptr ? ", not " + WithArticle(*parameter) : ", and got none";
  if (parameter == nullptr && taken.size() == 1)
    message = '"' + std::string(phrase) + "\" needs " + *taken.begin();
  diagnostics_.Report("parameter-mismatch", span, std::move(message));
  return true;
}

FoundProperty PropertyFinder::Report(std::string_view phrase, Span span, TypeEntry const* parameter,
                                     TypeEntry const& object) {
  FoundProperty meant;
  if (ReportParameter(phrase, span, parameter, object, meant)) return meant;
  NearestName nearest(phrase);
  auto offer = [&](PropertyEntry const* property) {
    // Of two names as near, one that fits the parameter too is meant.
    if (nearest.Offer(property->singular)) meant = {property, false};
    if (nearest.Offer(property->plural)) meant = {property, true};
  };
  ForTypeAndBases(object, [&](TypeEntry const& type) {
    for (PropertyEntry const* property : vocabulary_.PropertiesOf(type)) {
      if (ParameterFits(*property, parameter)) offer(property);
    }
    for (PropertyEntry const* property : vocabulary_.PropertiesOf(type)) {
      if (!ParameterFits(*property, parameter)) offer(property);
    }
  });
  std::vector<std::string> notes;
  if (!object.name.empty()) notes.push_back(DescribeProperties(object));
  diagnostics_.Report("unknown-property", span,
                      WithArticle(object) + " has no property \"" + std::string(phrase) + '"',
                      nearest.Found(), std::move(notes));
  return meant;
}

void PropertyFinder::ReportUnknown(std::string_view phrase, Span span) {
  NearestName nearest(phrase);
  for (PropertyEntry const* property : vocabulary_.Properties()) {
    nearest.Offer(property->singular);
    nearest.Offer(property->plural);
  }
  diagnostics_.Report("unknown-property", span,
                      "nothing has a property \"" + std::string(phrase) + '"', nearest.Found());
}

std::string PropertyFinder::DescribeProperties(TypeEntry const& type) const {
  std::set<std::string_view> names;
  ForTypeAndBases(type, [&](TypeEntry const& t) {
    for (PropertyEntry const* property : vocabulary_.PropertiesOf(t)) {
      names.insert(property->singular);
    }
  });
  std::string described =
      WithArticle(type) + " has: " + (names.empty() ? "nothing" : JoinNames(names));
  std::string casts = DescribeCasts(type);
  return casts.empty() ? described : described + " (as: " + casts + ')';
}

std::string PropertyFinder::DescribeCasts(TypeEntry const& type) const {
  std::set<std::string_view> names;
  ForTypeAndBases(type, [&](TypeEntry const& t) {
    for (CastEntry const* cast : vocabulary_.CastsOf(t)) names.insert(cast->name);
  });
  return JoinNames(names);
}

}  // namespace gatotu
