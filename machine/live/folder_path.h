// The path of an open folder as its name in the one above, so that a walk holds each name once
// however deep it goes, and spells a path only where somebody wants to read it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace machine::live {

class FolderPath {
 public:
  explicit FolderPath(std::string_view start) : name_(start) {
    if (name_.ends_with('/')) name_.pop_back();
  }
  FolderPath(std::shared_ptr<FolderPath> above, std::string_view name)
      : above_(std::move(above)), name_(name) {}
  FolderPath(FolderPath const&) = delete;
  FolderPath& operator=(FolderPath const&) = delete;
  // One after another: there may be more levels than a recursion has room for.
  ~FolderPath() {
    while (above_ != nullptr && above_.use_count() == 1) above_ = std::move(above_->above_);
  }

  std::string const& Name() const { return name_; }

  std::string Text() const {
    std::vector<std::string const*> names;
    for (FolderPath const* at = this; at != nullptr; at = at->above_.get()) {
      names.push_back(&at->name_);
    }
    std::string text = *names.back();
    for (auto name = names.rbegin() + 1; name != names.rend(); ++name) (text += '/') += **name;
    return text.empty() ? "/" : text;
  }

 private:
  std::shared_ptr<FolderPath> above_;
  std::string name_;  // of the start all of its path, and nothing for the root
};

}  // namespace machine::live
