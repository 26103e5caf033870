#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "Edges.h"
#include "RobotClient.h"

namespace endtoend {

/// A user who does whatever the windows of the running program offer, in no order and at any
/// moment. Remembers what the meter must have been told in the end.
class RandomUser {
 public:
  /// The same seed gives the same wishes; what comes of each depends on the program's speed as
  /// well. `edges` are the times at the start.
  RandomUser(robot::RobotClient& hands, std::uint32_t seed, EdgeTimes edges);

  void act();
  /// Lets go of the button, closes all boxes and menus and stops the acquisition. What waits for
  /// the meter may bring up another box.
  void comeToRest();

  /// By the head of its command, the number's text of each parameter as it was entered last.
  const std::map<std::string, std::string>& lastEdits() const { return lastEdits_; }
  /// The time text that each edge showed at the last move of its last drag.
  const std::map<std::string, std::string>& lastDrags() const { return lastDrags_; }

  std::size_t actions() const { return index_; }
  /// What the user could not bring to its end, since a box came up or a menu item went grey.
  std::size_t givenUp() const { return givenUp_; }
  /// What came to no end for any other reason.
  const std::string& oddRefusals() const { return oddRefusals_; }
  /// "drags 120, edits 80" and so on.
  std::string summary() const;

 private:
  struct Point {
    int x = 0;
    int y = 0;
  };
  struct Wish {
    const char* name;
    unsigned weight;
    void (RandomUser::*carryOut)();
  };
  static const std::vector<Wish>& wishes();

  void hover();
  void pressSomewhere();
  void dragAnEdge();
  void editAParameter();
  void askForTheStopTime();
  void startOrStop();
  void tellTheMeter();
  void openAMenu();
  void chooseAFont();
  void lookAtComms();
  void resizeAWindow();
  void showOrHideReadouts();

  std::uint32_t number(std::uint32_t below) {
    return static_cast<std::uint32_t>(random_() % below);
  }
  bool oneIn(std::uint32_t times) { return number(times) == 0; }
  int between(int least, int most) {
    return least + static_cast<int>(number(static_cast<std::uint32_t>(most - least + 1)));
  }

  void lookAtTheGraph();
  Point somewhere();
  Point atAnEdge();
  void move(Point point);
  void press(Point point);
  void dragOn(Point from);
  void disturbThePress();
  void release();
  bool graphMayBeDead() const;
  std::size_t parameterToBlame() const;
  void rememberEdge();
  void answerTheInputBox();
  void trigger(const std::string& item);
  void clearTheWay();

  robot::RobotClient& hands_;
  std::uint32_t seed_;
  std::mt19937 random_;
  EdgeTimes edges_;
  std::map<std::string, std::string> lastEdits_;
  std::map<std::string, std::string> lastDrags_;
  std::map<std::string, std::size_t> counts_;
  std::size_t index_ = 0;
  std::size_t givenUp_ = 0;
  /// Of the graph, in pixels.
  int width_ = 1;
  int height_ = 1;
  Point pointer_;
  bool pressed_ = false;
  /// The edge that stood beside the pointer when the button went down.
  std::string grabbed_;
  std::string oddRefusals_;
};

}  // namespace endtoend
