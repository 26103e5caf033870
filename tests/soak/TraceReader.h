#pragma once

#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "Ledger.h"

namespace soak {

/// Bits of the status byte with which a query fails or goes on.
inline constexpr int messageAvailable = 0x10;
inline constexpr int eventStatus = 0x20;

/// The mark of a profile: its number in the meter, taken from its last point; see `number-traces`.
Ledger::Mark markOfLevel(double dbm);
/// The mark of a curve, which bears no number: a hash of its shares.
class CurveMark {
 public:
  void add(float share);
  Ledger::Mark value() const { return value_; }

 private:
  Ledger::Mark value_ = 1469598103934665603U;
};

/// Reads what goes over the link, independently of the program: which of the meter's replies is a
/// whole trace, and which.
class TraceReader {
 public:
  explicit TraceReader(Ledger& ledger) : ledger_(ledger) {}

  /// The fault that may strike now: what a reply that is not whole counts for.
  void expectFate(Fate fate) { fate_ = fate; }

  void message(std::string_view text);
  /// The reply to the last message has ended; with its prefix and its end.
  void reply(std::string_view bytes);
  /// The program has taken what came for the whole reply, or for none.
  void accepted();
  void failed() { found_ = {}; }

 private:
  enum class What { nothing, whole, part };
  struct Found {
    What what = What::nothing;
    Ledger::Mark mark = 0;
  };
  Found readBlock(std::string_view bytes) const;
  Found readText(std::string_view bytes) const;
  Found readCurve(std::string_view bytes) const;
  Found spoilt() const;

  Ledger& ledger_;
  Fate fate_ = Fate::shown;
  std::string previous_;
  std::string message_;
  Found found_;
};

}  // namespace soak
