// The files of a special folder and of its counterpart for disabled ones, as one sequence or two,
// and those of one name in either. All is of the system domain.
//
// Folders inside are no items. What is missing, be it a file or a folder, is `NoSuchObject`, which
// ends a sequence; whatever else goes wrong passes.
#pragma once

#include "evaluator/plugin/exceptions.h"
#include "inspectors/files/enableable_file.h"
#include "inspectors/files/special_folder.h"
#include "portable_inspectors/filesystem_object_iterator.h"

class SpecialItemIteratorBase {
 public:
  // The enabled ones, then the disabled ones, each in the order of their folder.
  EnableableFile First();
  EnableableFile Next();

  EnableableFile FirstEnabled();
  EnableableFile NextEnabled();
  EnableableFile FirstDisabled();
  EnableableFile NextDisabled();

 protected:
  ~SpecialItemIteratorBase() = default;

 private:
  virtual folder EnabledFolder() const = 0;
  virtual folder DisabledFolder() const = 0;

  EnableableFile BeginDisabled();

  folder current_;
  filesystem_object_iterator files_;
  bool in_enabled_folder_ = false;
};

template <MacFileType enabled, MacFileType disabled>
class SpecialItemIterator final : public SpecialItemIteratorBase {
 private:
  folder EnabledFolder() const override { return special_folder<enabled>(); }
  folder DisabledFolder() const override { return special_folder<disabled>(); }
};

template <MacFileType code>
file special_file(inspector_string const& name) {
  return file_of(name, special_folder<code>());
}

// At most two: the enabled one of that name, then the disabled one.
template <MacFileType enabled, MacFileType disabled>
class NamedSpecialItemIterator {
 public:
  EnableableFile First(inspector_string const& name) {
    disabled_is_to_come_ = true;
    try {
      return {special_file<enabled>(name), true};
    } catch (NoSuchObject const&) {
      return Next(name);
    }
  }

  EnableableFile Next(inspector_string const& name) {
    if (!disabled_is_to_come_) throw NoSuchObject();
    disabled_is_to_come_ = false;
    return {special_file<disabled>(name), false};
  }

 private:
  bool disabled_is_to_come_ = false;
};
