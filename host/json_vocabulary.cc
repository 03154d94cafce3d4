#include "host/json_vocabulary.h"

#include <nlohmann/json.hpp>

namespace gatotu::host {

std::string JsonLineOf(VocabularyEntry const& entry, std::string_view kind, std::string_view room) {
  nlohmann::ordered_json const object = {
      {"kind", kind},
      {"singular", entry.singular},
      {"plural", entry.plural},
      {"parameter", entry.parameter},
      {"object", entry.object},
      {"result", entry.result},
      {"fingerprint", entry.depends_only_on_parameters ? "DOP" : ""},
      {"library", room},
  };
  return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

}  // namespace gatotu::host
