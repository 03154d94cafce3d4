// What every directory record has: the computer's, a user's, a group's.
#pragma once

#include <cstdint>
#include <string>

#include "evaluator/plugin/export.h"
#include "evaluator/plugin/values.h"

// How far a record has got that the host keeps.
inline constexpr std::uint32_t kNeverFilled = 0;
inline constexpr std::uint32_t kRequestPending = 1;
inline constexpr std::uint32_t kFilledFromDirectory = 2;

// Plain values, copied freely. Texts are bytes as the directory gave them.
class GATOTU_API ActiveDirectoryBase {
 public:
  virtual ~ActiveDirectoryBase() = default;

  // Back to a record that never was filled.
  virtual void ClearData();
  virtual std::string const& GetDistinguishedName() const { return distinguished_name_; }
  // When the record was last read from the directory; 1970 for never.
  virtual Instant GetLastSampleTime() const { return sample_time_; }
  // Why the distinguished name could not be read last time, else empty.
  virtual std::string const& GetErrorMessage() const { return error_message_; }
  // Failed readings since the last that succeeded.
  virtual std::uint32_t GetErrorCount() const { return error_count_; }
  // The body gives the elements that all records share.
  virtual std::string ToXml() const = 0;
  virtual std::uint32_t GetCacheState() const { return cache_state_; }

  std::string const& GetName() const { return name_; }

  void SetName(std::string name) { name_ = std::move(name); }
  void SetDistinguishedName(std::string name) { distinguished_name_ = std::move(name); }
  void SetErrorMessage(std::string message) { error_message_ = std::move(message); }
  void SetLastSampleTime(Instant time) { sample_time_ = time; }
  void SetErrorCount(std::uint32_t count) { error_count_ = count; }
  void SetCacheState(std::uint32_t state) { cache_state_ = state; }

 protected:
  ActiveDirectoryBase() = default;
  explicit ActiveDirectoryBase(std::string name) : name_(std::move(name)) {}
  // Copied as part of a whole record only.
  ActiveDirectoryBase(ActiveDirectoryBase const&) = default;
  ActiveDirectoryBase(ActiveDirectoryBase&&) = default;
  ActiveDirectoryBase& operator=(ActiveDirectoryBase const&) = default;
  ActiveDirectoryBase& operator=(ActiveDirectoryBase&&) = default;

 private:
  std::string name_;
  std::string distinguished_name_;
  std::string error_message_;
  Instant sample_time_;
  std::uint32_t error_count_ = 0;
  std::uint32_t cache_state_ = kNeverFilled;
};
