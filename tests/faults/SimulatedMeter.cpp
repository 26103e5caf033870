#include "SimulatedMeter.h"

#include <stdexcept>
#include <string_view>
#include <unordered_map>

namespace pulsemod::test {

namespace {

std::uint64_t extendedKey(std::uint64_t key, const std::string& text) {
  constexpr std::uint64_t prime = 0x100000001b3;
  for (const char character : text + "\n") {
    key = (key ^ static_cast<unsigned char>(character)) * prime;
  }
  return key;
}

simmeter::Meter modelWith(const std::vector<std::string>& setup) {
  simmeter::Meter model({});
  model.reset();
  for (const std::string& command : setup) {
    std::string ignored;
    bool isBlock = false;
    if (model.execute(command, ignored, isBlock) != simmeter::Refusal::kNone) {
      throw std::invalid_argument("setup refused: " + command);
    }
  }
  return model;
}

}  // namespace

SimulatedMeter::SimulatedMeter(const std::vector<std::string>& setup)
    : setup_(&setup), key_(0xcbf29ce484222325) {
  for (const std::string& command : setup) key_ = extendedKey(key_, command);
}

std::optional<std::string> SimulatedMeter::tell(const std::string& message) {
  static std::unordered_map<std::uint64_t, Answer> known;
  key_ = extendedKey(key_, message);
  messages_.push_back(message);
  auto found = known.find(key_);
  if (found == known.end()) found = known.emplace(key_, askModel()).first;
  errorIsReported = found->second.errorIsReported;
  return found->second.reply;
}

/// Tells the model all that it has missed; its answer to the last message.
SimulatedMeter::Answer SimulatedMeter::askModel() {
  if (!model_) model_ = modelWith(*setup_);
  Answer answer;
  while (told_ < messages_.size()) answer = carryOut(messages_[told_++]);
  return answer;
}

SimulatedMeter::Answer SimulatedMeter::carryOut(const std::string& message) {
  std::string text;
  bool isBlock = false;
  std::string_view rest = message;
  while (!rest.empty()) {
    const std::string_view unit = rest.substr(0, rest.find("; "));
    rest.remove_prefix(unit.size() == rest.size() ? unit.size() : unit.size() + 2);
    if (unit == "*CLS") {
      modelError_ = false;
    } else if (unit == "*OPC?") {
      text += '1';
    } else if (unit == "*IDN?") {
      text += model_->identity();
    } else if (unit != "*ESE 56") {
      std::string own;
      if (model_->execute(unit, own, isBlock) == simmeter::Refusal::kNone) {
        text += own;
      } else {
        modelError_ = true;
      }
    }
  }
  if (text.empty()) return {std::nullopt, modelError_};
  return {text + (isBlock ? "\n" : "\r\n"), modelError_};
}

}  // namespace pulsemod::test
