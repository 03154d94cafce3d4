#include "inspectors/system/country.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "inspectors/system/country_codes.h"

country country_of(unsigned char const* name, unsigned long length) {
  static TokenTable<std::uint32_t> const Countries(kCountryCodes);
  std::uint32_t const* const code = Countries.LookFor(ConstData(name, length));
  if (code == nullptr) throw NoSuchObject();
  return {*code};
}

namespace {

Type<country, kNoFingerprinting> country_type;
NamedGlobalProperty<country> country_named("country", "countries", country_of, nullptr);
RelationEqual<country, country> country_equal(nullptr);

}  // namespace
