#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "RobotClient.h"

namespace endtoend {

/// A user who does whatever a window offers, in no order and at any moment. What it offers, a
/// descendant knows.
class UserAtRandom {
 public:
  /// One of the wishes, by their weights.
  void act();

  std::size_t actions() const { return index_; }
  /// What the user could not bring to its end, since a box came up or a menu item went grey.
  std::size_t givenUp() const { return givenUp_; }
  /// What came to no end for any other reason.
  const std::string& oddRefusals() const { return oddRefusals_; }
  /// "drags 120, edits 80" and so on.
  std::string summary() const;

 protected:
  struct Wish {
    const char* name;
    unsigned weight;
    std::function<void()> carryOut;
  };

  /// The same seed gives the same wishes; what comes of each depends on the program's speed as
  /// well.
  UserAtRandom(robot::RobotClient& hands, std::uint32_t seed);
  ~UserAtRandom() = default;
  UserAtRandom(const UserAtRandom&) = delete;
  UserAtRandom& operator=(const UserAtRandom&) = delete;

  virtual const std::vector<Wish>& wishes() const = 0;
  /// Comes before each wish, as a part of it.
  virtual void prepare() {}
  /// Lets go of the button and closes all boxes and menus.
  virtual void clearTheWay() = 0;

  /// Chooses a menu item; one that went grey meanwhile is soon given up.
  void trigger(const std::string& item);

  std::uint32_t number(std::uint32_t below) {
    return static_cast<std::uint32_t>(random_() % below);
  }
  bool oneIn(std::uint32_t times) { return number(times) == 0; }
  int between(int least, int most) {
    return least + static_cast<int>(number(static_cast<std::uint32_t>(most - least + 1)));
  }

  robot::RobotClient& hands_;

 private:
  void carryOut(const Wish& wish);

  std::uint32_t seed_;
  std::mt19937 random_;
  std::map<std::string, std::size_t> counts_;
  std::size_t index_ = 0;
  std::size_t givenUp_ = 0;
  std::string oddRefusals_;
};

}  // namespace endtoend
