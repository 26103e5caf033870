#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace pulsemod::test {

/// What a test says that the meter answers. A message that has no answer here is a command.
class FakeMeter {
 public:
  /// A message arrives, without its terminator. The reply without terminator, if there is one.
  std::optional<std::string> receive(const std::string& message) {
    received.push_back(message);
    if (onMessage) onMessage(message);
    if (message.find("*CLS") != std::string::npos) errorIsReported = false;
    if (rejected.count(message) != 0) {
      errorIsReported = true;
      return std::nullopt;
    }
    if (answer) return answer(message);
    if (const auto next = onceReplies.find(message);
        next != onceReplies.end() && !next->second.empty()) {
      const std::string reply = next->second.front();
      next->second.pop_front();
      return reply;
    }
    if (const auto found = replies.find(message); found != replies.end()) return found->second;
    if (message.ends_with("*OPC?")) return operationComplete;
    return std::nullopt;
  }

  /// Fixed replies by exact message.
  std::map<std::string, std::string> replies;
  /// Replies that are used up, before the fixed ones.
  std::map<std::string, std::deque<std::string>> onceReplies;
  /// Messages that the meter refuses with an error.
  std::set<std::string> rejected;
  std::string operationComplete = "1";
  /// Stays set until the meter is told *CLS.
  bool errorIsReported = false;
  std::function<void(const std::string&)> onMessage;
  /// Answers in place of the fixed replies.
  std::function<std::optional<std::string>(const std::string&)> answer;

  /// Every message in its order, as it came, without its terminator.
  std::vector<std::string> received;
};

}  // namespace pulsemod::test
