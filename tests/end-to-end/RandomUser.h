#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Edges.h"
#include "UserAtRandom.h"

namespace endtoend {

/// A user who does whatever the windows of the running program offer, in no order and at any
/// moment. Remembers what the meter must have been told in the end.
class RandomUser : public UserAtRandom {
 public:
  /// The same seed gives the same wishes; what comes of each depends on the program's speed as
  /// well. `edges` are the times at the start.
  RandomUser(robot::RobotClient& hands, std::uint32_t seed, EdgeTimes edges);

  /// Lets go of the button, closes all boxes and menus and stops the acquisition. What waits for
  /// the meter may bring up another box.
  void comeToRest();

  /// By the head of its command, the number's text of each parameter as it was entered last.
  const std::map<std::string, std::string>& lastEdits() const { return lastEdits_; }
  /// The time text that each edge showed at the last move of its last drag.
  const std::map<std::string, std::string>& lastDrags() const { return lastDrags_; }

 private:
  struct Point {
    int x = 0;
    int y = 0;
  };
  const std::vector<Wish>& wishes() const override { return wishes_; }
  void prepare() override;
  void clearTheWay() override;

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

  std::vector<Wish> wishes_;
  EdgeTimes edges_;
  std::map<std::string, std::string> lastEdits_;
  std::map<std::string, std::string> lastDrags_;
  /// Of the graph, in pixels.
  int width_ = 1;
  int height_ = 1;
  Point pointer_;
  bool pressed_ = false;
  /// The edge that stood beside the pointer when the button went down.
  std::string grabbed_;
};

}  // namespace endtoend
