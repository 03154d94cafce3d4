// Stand-ins for what tells whose machine a capture is of. The same name has the same stand-in
// wherever it is found. They are drawn at random and the table of them is written nowhere, so
// nobody finds the way back.
//
// A stand-in is as long as what it stands for: sizes, offsets and binary forms stay as they are.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace machine::capture {

class Pseudonyms {
 public:
  // To be replaced where it stands as a word or as words; letter case does not count. What has no
  // letter is no name.
  void AddName(std::string_view name);
  // None of the words becomes a stand-in, so that two files never get one name.
  void Avoid(std::string_view text);
  // To be replaced where it is the whole of a value, whatever bytes it has.
  void AddBytes(std::string_view bytes) { bytes_.emplace(bytes); }

  // The text with stand-ins for names, and for anything with the form of a UUID or an Ethernet
  // address.
  std::string Replaced(std::string_view text);

 private:
  enum class Alphabet { kNames, kHexadecimal, kBytes };

  // How long the name is that begins at a word; 0 for none.
  std::size_t NameAt(std::string_view text, std::size_t at, std::size_t word_size) const;
  // As many bytes as the text has, in its letter case.
  void Replace(std::string_view text, Alphabet alphabet, char* replaced);
  void ReplaceWords(std::string_view name, char* replaced);
  std::string StandIn(std::string_view text, Alphabet alphabet);
  std::string Draw(std::string_view text, Alphabet alphabet);

  // By their first words, in lower case.
  std::unordered_map<std::string, std::vector<std::string>> names_by_word_;
  std::unordered_set<std::string> names_, bytes_, used_;
  std::map<std::string, std::string, std::less<>> stand_ins_;
};

}  // namespace machine::capture
