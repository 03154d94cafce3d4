// Contents that are copied while a capture is laid down, piece by piece, however large they are.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "machine/capture/recorded_item.h"
#include "machine/files.h"

namespace machine::capture {

// Where a content goes. False with `errno` set.
class ContentSink {
 public:
  virtual ~ContentSink() = default;
  // What came so far is worth nothing.
  virtual bool Restart() = 0;
  virtual bool Add(std::string_view bytes) = 0;
};

// Keeps it in a text of limited size.
class TextSink final : public ContentSink {
 public:
  TextSink(std::string& text, std::size_t most) : text_(text), most_(most) {}
  bool Restart() override;
  bool Add(std::string_view bytes) override;

 private:
  std::string& text_;
  std::size_t const most_;
};

class ContentTaker {
 public:
  // `most_of_file` for each, `room` for all together. The files are borrowed.
  ContentTaker(FileSource const& asked, std::uint64_t most_of_file, std::uint64_t room)
      : asked_(asked), most_of_file_(most_of_file), room_(room) {}

  // The content of a regular file, never what a link leads to. `item` is brought to the state in
  // which the file was copied.
  Fact<Done> Take(std::string const& path, ContentSink& sink, RecordedItem& item);

  // The files that were written to all the time. What they had is there.
  std::vector<std::string> const& changed() const { return changed_; }

 private:
  std::uint64_t Most() const { return most_of_file_ < room_ ? most_of_file_ : room_; }
  Absence TooLarge(std::string const& path) const;
  Fact<std::uint64_t> Copy(OpenFile& file, std::string const& path, std::uint64_t most,
                           ContentSink& sink) const;

  FileSource const& asked_;
  std::uint64_t const most_of_file_;
  std::uint64_t room_;
  std::vector<std::string> changed_;
};

}  // namespace machine::capture
