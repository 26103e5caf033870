// Faults on demand: what goes wrong, with which message or call, and at which occurrence.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Meter.h"

namespace simmeter {

enum class FaultKind {
  // of a reply
  kLate,      // amount ms later
  kCut,       // only the first `amount` bytes, and then silence
  kShort,     // only the first `amount` bytes of the text, properly ended
  kEmpty,     // nothing but the terminator
  kMissing,   // no reply
  kGarble,    // every third byte of the text has its lowest bit flipped
  kReplace,   // the text is `text`; prefix and terminator stay
  kRaw,       // all bytes are `text`, prefix and terminator included
  kByteWise,  // one byte each `amount` ms
  kStall,     // a pause of `second` ms after `amount` bytes
  kHangUp,    // the link is lost
  // of a command
  kRefuse,  // refused as `refusal`, nothing is carried out
  // of a library call
  kError,    // the call fails with the error code `amount`
  kTimeOut,  // the call fails with a time-out after the board's time
  kStatus,   // ReadStatusByte gives `amount`
};

struct FaultRule {
  bool ofCall = false;      // of a library call, not of a message
  std::string match;        // how the message begins, or the call's name; empty: any
  std::uint64_t first = 1;  // occurrences, counted from 1, at which it strikes; both ends included
  std::uint64_t last = UINT64_MAX;
  FaultKind kind = FaultKind::kMissing;
  std::int64_t amount = 0;  // these three as the kind says
  std::int64_t second = 0;
  std::string text;
  Refusal refusal = Refusal::kExecution;
  std::string written;     // the rule as it stands in the scenario, for the transcript
  std::uint64_t seen = 0;  // occurrences so far
};

// Parses the value of a `fault =` line. Nothing when it cannot be understood.
std::optional<FaultRule> parseFault(std::string_view text);

class FaultPlan {
 public:
  FaultPlan() = default;
  explicit FaultPlan(std::vector<FaultRule> rules) : rules_(std::move(rules)) {}

  // Each counts one occurrence and returns the rules that strike now, in the scenario's order.
  // The result is valid until the next call.
  const std::vector<const FaultRule*>& onReply(std::string_view message);
  const std::vector<const FaultRule*>& onUnit(std::string_view unit);
  const std::vector<const FaultRule*>& onCall(std::string_view name);

  // How often a rule has struck so far.
  std::uint64_t strikes() const { return strikes_; }

 private:
  enum class Moment { kReply, kUnit, kCall };
  const std::vector<const FaultRule*>& strike(Moment moment, std::string_view text);

  std::vector<FaultRule> rules_;
  std::vector<const FaultRule*> struck_;
  std::uint64_t strikes_ = 0;
};

}  // namespace simmeter
