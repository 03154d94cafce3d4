// The readers of account records: what an XML text says of one goes into the record it is bound to.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "inspectors/activedirectory/directory/simple_xml_parser.h"

// The text is of another version of the format than `GetParserVersion`.
class ADLocalComputerXmlParserVersionMismatchException {
 public:
  ADLocalComputerXmlParserVersionMismatchException() = default;
  ADLocalComputerXmlParserVersionMismatchException(
      ADLocalComputerXmlParserVersionMismatchException const&) = default;
  virtual ~ADLocalComputerXmlParserVersionMismatchException() = default;
};
class ADUserXmlParserVersionMismatchException {
 public:
  ADUserXmlParserVersionMismatchException() = default;
  ADUserXmlParserVersionMismatchException(ADUserXmlParserVersionMismatchException const&) = default;
  virtual ~ADUserXmlParserVersionMismatchException() = default;
};

// The elements that computers and users share. Fields collect text wherever they stand, and reach
// the record only from directly inside it; a group takes what was collected when it ends. Any
// element that is not known here hides the fields behind it until the next section begins or a
// group ends.
class DirectoryRecordXmlParser : public SimpleXMLParserPL {
 public:
  void StartElement(std::string const& name, std::vector<XMLAttribute*> const&) override;
  void EndElement(std::string const& name) override;
  void Characters(std::string const& text) override;

 protected:
  enum class Field {
    kNone,
    kVersion,
    kName,
    kSid,
    kDistinguishedName,
    kErrorMessage,
    kGroupsErrorMessage,
    kErrorCount,
    kSampleTime,
    kCacheState,
    kDomain,
  };

  // The record outlives the parser. Each class gives the element that a whole record is.
  DirectoryRecordXmlParser(ActiveDirectoryAccount& record, std::string_view record_element);

  // `kNone` for the name of no field.
  virtual Field FieldNamed(std::string_view name) const;
  virtual void StoreField(Field field);
  [[noreturn]] virtual void ThrowVersionMismatch() const = 0;
  std::string& Text(Field field) { return texts_[static_cast<std::size_t>(field)]; }

 private:
  // What a group starts anew with.
  static constexpr Field kGroupFields[] = {Field::kName, Field::kDistinguishedName,
                                           Field::kErrorMessage, Field::kSampleTime, Field::kSid};

  enum class Section { kNone, kRecord, kGroups, kGroup };

  void StartRecord();
  void StartGroup();
  void EndGroup();
  void EndGroups();
  void StoreSampleTime(ActiveDirectoryBase& record);
  std::uint32_t Number(Field field);
  void RequireVersion();
  void SpendWork(std::size_t bytes);

  ActiveDirectoryAccount& record_;
  std::string_view record_element_;
  Section section_ = Section::kNone;
  Field field_ = Field::kNone;
  std::array<std::string, static_cast<std::size_t>(Field::kDomain) + 1> texts_;
  std::vector<ActiveDirectoryGroup> groups_;
  // Bytes that the groups take up, and that this parser may still copy.
  std::size_t groups_size_ = 0;
  std::size_t work_left_;
};

class ActiveDirectoryLocalComputerXmlParser : public DirectoryRecordXmlParser {
 public:
  explicit ActiveDirectoryLocalComputerXmlParser(ActiveDirectoryLocalComputer& record)
      : DirectoryRecordXmlParser(record, "Computer") {}

  static std::string const& GetParserVersion();

 private:
  [[noreturn]] void ThrowVersionMismatch() const override;
};

class ActiveDirectoryUserXmlParser : public DirectoryRecordXmlParser {
 public:
  explicit ActiveDirectoryUserXmlParser(ActiveDirectoryLocalUser& record)
      : DirectoryRecordXmlParser(record, "User"), user_(record) {}

  static std::string const& GetParserVersion();

 private:
  Field FieldNamed(std::string_view name) const override;
  void StoreField(Field field) override;
  [[noreturn]] void ThrowVersionMismatch() const override;

  ActiveDirectoryLocalUser& user_;
};
