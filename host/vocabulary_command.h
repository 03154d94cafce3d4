// `gatotu vocabulary`: what can be asked, every registration a line.
#pragma once

#include <string>
#include <vector>

#include "host/answer_writer.h"
#include "host/output.h"

namespace gatotu::host {

struct VocabularyQuery {
  std::vector<std::string> words;  // each occurs in the singular or the plural
  std::string type;                // what can be asked of it, its bases' included; empty for any
};

void WriteVocabulary(VocabularyQuery const& query, Format format, Output& output);

}  // namespace gatotu::host
