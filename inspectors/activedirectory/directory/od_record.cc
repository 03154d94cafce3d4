#include "inspectors/activedirectory/directory/od_record.h"

#include <algorithm>

std::vector<ODAttribute> ODRecord::Attributes() const {
  std::vector<ODAttribute> attributes;
  answer_->ForEachAttribute(index_, [&](AutoODAttrEntryAttrValueList const& attribute) {
    ODAttribute& read = attributes.emplace_back();
    read.name = NameOf(*attribute.entry.Get());
    if (attribute.entry.Get()->fAttributeValueCount != 0) {
      read.value = answer_->FirstValue(attribute);
    }
  });
  std::ranges::sort(attributes, {}, &ODAttribute::name);
  return attributes;
}

void ODRecordList::Add(AnsweredRecords answer) {
  if (answer.count() == 0) return;
  size_ += answer.count();
  answers_.push_back(std::make_shared<AnsweredRecords const>(std::move(answer)));
}

std::optional<ODRecord> ODRecordList::Next(Place& place) const {
  if (place.answer == answers_.size()) return {};
  auto const& answer = answers_[place.answer];
  if (place.index < answer->count()) return ODRecord(answer, ++place.index);
  place = {place.answer + 1, 0};
  return Next(place);
}
