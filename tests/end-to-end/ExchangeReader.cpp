#include "ExchangeReader.h"

#include <algorithm>

namespace endtoend {

std::string ExchangeReader::read(const std::string& passHead) {
  while (!isAtEnd()) {
    const std::size_t begin = at_;
    if (readExchange() && at_ > begin) continue;
    tell(begin);
    at_ = std::max(at_, begin + 1);
    while (!isAtEnd() && next() != passHead) ++at_;
  }
  return broken_;
}

bool ExchangeReader::take(const std::string& message) {
  const bool isThere = !isAtEnd() && next() == message;
  if (isThere) ++at_;
  return isThere;
}

bool ExchangeReader::takeHead(const std::string& head) {
  const bool isThere = !isAtEnd() && next().starts_with(head);
  if (isThere) ++at_;
  return isThere;
}

bool ExchangeReader::takeClear() { return take("*CLS; *OPC?"); }

bool ExchangeReader::mayClear() {
  takeClear();
  return true;
}

bool ExchangeReader::tellAndAsk(const std::string& commandHead, const std::string& question) {
  if (isAtEnd() || !next().starts_with(commandHead)) return false;
  if (at_ + 1 >= messages_.size() || messages_[at_ + 1] != question) return false;
  ++at_;
  return ask(question);
}

void ExchangeReader::tell(std::size_t begin) {
  constexpr std::size_t shown = 12;
  broken_ += "message " + std::to_string(begin) + ":\n";
  for (std::size_t i = begin; i < std::min(begin + shown, messages_.size()); ++i) {
    broken_ += (i == at_ ? "--> " : "    ") + messages_[i] + "\n";
  }
}

}  // namespace endtoend
