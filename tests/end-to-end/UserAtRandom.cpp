#include "UserAtRandom.h"

#include <chrono>
#include <sstream>

namespace endtoend {

namespace {

constexpr std::chrono::milliseconds shortPatience{3000};
constexpr std::chrono::milliseconds longPatience{60000};

}  // namespace

UserAtRandom::UserAtRandom(robot::RobotClient& hands, std::uint32_t seed)
    : hands_(hands), seed_(seed) {
  hands_.giveUpAt("messageBox");
  hands_.setLimit(longPatience);
}

void UserAtRandom::trigger(const std::string& item) {
  hands_.setLimit(shortPatience);
  try {
    hands_.trigger(item);
  } catch (...) {
    hands_.setLimit(longPatience);
    throw;
  }
  hands_.setLimit(longPatience);
}

void UserAtRandom::act() {
  // Numbers of its own for each action: one that takes another course changes none after it.
  std::seed_seq seeds{seed_, static_cast<std::uint32_t>(index_++)};
  random_.seed(seeds);
  std::uint32_t weights = 0;
  for (const Wish& wish : wishes()) weights += wish.weight;
  std::uint32_t chosen = number(weights);
  for (const Wish& wish : wishes()) {
    if (chosen < wish.weight) return carryOut(wish);
    chosen -= wish.weight;
  }
}

void UserAtRandom::carryOut(const Wish& wish) {
  ++counts_[wish.name];
  try {
    prepare();
    wish.carryOut();
  } catch (const robot::RobotRefusal& refusal) {
    ++givenUp_;
    const std::string reason = refusal.what();
    const bool isUsual = reason.find("messageBox is in the way") != std::string::npos ||
                         reason.find("is not enabled") != std::string::npos;
    if (!isUsual) oddRefusals_ += reason + "\n";
    clearTheWay();
  }
}

std::string UserAtRandom::summary() const {
  std::ostringstream text;
  for (const auto& [name, count] : counts_) text << name << ' ' << count << ", ";
  text << "given up " << givenUp_;
  return text.str();
}

}  // namespace endtoend
