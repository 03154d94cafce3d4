#include "inspectors/files/special_item_iterator.h"

EnableableFile SpecialItemIteratorBase::First() {
  in_enabled_folder_ = true;
  try {
    return FirstEnabled();
  } catch (NoSuchObject const&) {
    return BeginDisabled();
  }
}

EnableableFile SpecialItemIteratorBase::Next() {
  if (!in_enabled_folder_) return NextDisabled();
  try {
    return NextEnabled();
  } catch (NoSuchObject const&) {
    return BeginDisabled();
  }
}

EnableableFile SpecialItemIteratorBase::BeginDisabled() {
  in_enabled_folder_ = false;
  return FirstDisabled();
}

EnableableFile SpecialItemIteratorBase::FirstEnabled() {
  current_ = EnabledFolder();
  return {files_.FirstFile(Of(), current_), true};
}

EnableableFile SpecialItemIteratorBase::NextEnabled() {
  return {files_.NextFile(Of(), current_), true};
}

EnableableFile SpecialItemIteratorBase::FirstDisabled() {
  current_ = DisabledFolder();
  return {files_.FirstFile(Of(), current_), false};
}

EnableableFile SpecialItemIteratorBase::NextDisabled() {
  return {files_.NextFile(Of(), current_), false};
}
