#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Transcript.h"

namespace randomuse {

/// What the meter at one link wrote down, read as it grows.
class MeterRecord {
 public:
  explicit MeterRecord(simmeter::Transcript& transcript);

  /// Takes in what is new.
  void read();

  std::uint64_t messages() const { return messages_; }
  /// Profiles and curves that were asked for and handed over.
  std::uint64_t traces() const { return traces_; }
  std::uint64_t faults() const { return faults_; }
  /// A fault has struck, or the meter has refused something, and no other reply has come since: one
  /// may stay unread, or be waited for.
  bool isExcused() const { return struck_ || refused_; }
  /// What a fault has left in the meter's registers may still make a query fail.
  bool hasFaultPending() const { return faultPending_; }
  /// What the meter has refused still makes the next query over GPIB fail.
  bool hasRefusalPending() const { return refusalPending_; }
  /// A query that was interrupted without such a reason; empty for none.
  const std::string& complaint() const { return complaint_; }

 private:
  void take(std::string_view line);

  int file_;
  std::string unread_;
  std::string lastMessage_;
  std::uint64_t messages_ = 0;
  std::uint64_t traces_ = 0;
  std::uint64_t faults_ = 0;
  bool struck_ = false;
  bool refused_ = false;
  bool answered_ = false;
  bool faultPending_ = false;
  bool refusalPending_ = false;
  bool cleared_ = false;
  std::string complaint_;
};

}  // namespace randomuse
